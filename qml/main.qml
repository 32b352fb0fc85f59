import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import Qt.labs.settings 1.0

// Tool bar, device selector and one page per device, with the dialogs over them.
Rectangle {
    id: window
    objectName: "mainWindow"

    property bool fullscreen: false
    property bool isHeaderHovered: false
    // Where the last capture went: a press and hold on the capture buttons opens it.
    property string path: ""
    property string onlineDocumentation: "https://docs.quivra.example/qvsdk/"

    width: parent ? parent.width : 0
    height: parent ? parent.height : 0
    color: "transparent"

    function currentCamera() {
        var row = uuidSelector.currentIndex
        return row >= 0 && row < devices.count ? devices.get(row).device : null
    }

    function rowOf(camera) {
        for (var row = 0; row < devices.count; ++row) {
            if (devices.get(row).device === camera)
                return row
        }
        return -1
    }

    // A list of its own, in step with the listener's row by row: a model that is replaced as a whole would destroy
    // and rebuild every page each time a device comes or goes, and jump to the first.
    function follow(cameras) {
        var current = currentCamera()
        for (var row = devices.count - 1; row >= 0; --row) {
            if (cameras.indexOf(devices.get(row).device) < 0)
                devices.remove(row)
        }
        for (var i = 0; i < cameras.length; ++i) {
            var listed = rowOf(cameras[i])
            if (listed < 0)
                devices.insert(i, { uuid: cameras[i].uuid, device: cameras[i] })
            else if (listed !== i)
                devices.move(listed, i, 1)
        }
        var kept = current ? rowOf(current) : -1
        // By the method: an assignment would cut the binding to the selector.
        if (kept >= 0)
            cameraViews.setCurrentIndex(kept)
    }

    function showInfos(dialog) {
        var camera = currentCamera()
        dialog.infos = camera ? camera.info : undefined
        dialog.open()
    }

    function toggleDrawer() {
        var drawer = cameraViews.currentItem ? cameraViews.currentItem.cameraDrawer : null
        if (!drawer)
            return
        if (drawer.visible)
            drawer.close()
        else
            drawer.open()
    }

    function documentation() {
        if (Qt.platform.os === "linux")
            return "/usr/share/doc/qvsdk/index.html"
        return Qt.platform.os === "windows" ? "doc/index.html" : onlineDocumentation
    }

    function openDocumentation() {
        var guide = documentation()
        if (!tools.openUrl(guide))
            console.log("The documentation can't be opened, the guide or a browser is missing:", guide)
    }

    function keepPath(saved) {
        if (saved !== "")
            path = saved
    }

    Component.onCompleted: {
        TranslateController.loadLanguage(mainSettings.currentLanguageIndex)
        follow(listener.cameras)
        // Escape would close the tip over the button that opened a dialog, and leave the dialog.
        ToolTip.toolTip.closePolicy = Popup.NoAutoClose
    }

    Settings {
        id: mainSettings
        category: "Settings"
        property int currentLanguageIndex: 0
    }

    ListModel {
        id: devices
    }

    Connections {
        target: listener
        function onCamerasChanged() {
            window.follow(listener.cameras)
        }
    }

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: window.fullscreen = !window.fullscreen
    }

    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }

    Page {
        id: mainPage
        anchors.fill: parent
        background: Item {}

        header: ToolBar {
            id: toolBar
            objectName: "toolBar"

            background: Rectangle {
                implicitHeight: 40
                color: "#3E4D59"
            }

            RowLayout {
                anchors.fill: parent
                anchors.rightMargin: 5
                spacing: 0

                HeaderButton {
                    id: menuButton
                    objectName: "menuButton"
                    icon.source: "qrc:images/list"
                    enabled: uuidSelector.count > 0
                    hint: qsTr("Menu List")
                    onHoveredChanged: window.isHeaderHovered = hovered
                    onClicked: window.toggleDrawer()
                }

                ComboBox {
                    id: uuidSelector
                    objectName: "uuidSelector"

                    property bool bActived: false

                    implicitWidth: window.width / (Qt.platform.os === "android" ? 5 : 10)
                    implicitHeight: toolBar.background.implicitHeight
                    topInset: 0
                    bottomInset: 0
                    leftPadding: 6
                    rightPadding: 6
                    hoverEnabled: true
                    model: devices
                    textRole: "uuid"
                    displayText: "Add Source"
                    currentIndex: cameraViews.currentIndex

                    onHoveredChanged: window.isHeaderHovered = hovered
                    onActivated: bActived = true
                    onCurrentIndexChanged: {
                        var camera = window.currentCamera()
                        if (camera)
                            console.debug(JSON.stringify(camera.info, null, 2))
                    }

                    indicator: Item {}

                    contentItem: Text {
                        text: uuidSelector.displayText
                        font: uuidSelector.font
                        color: "white"
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        elide: Text.ElideRight
                    }

                    background: Rectangle {
                        color: uuidSelector.pressed ? "#243440" : uuidSelector.hovered ? "#586773" : "transparent"
                    }

                    delegate: ItemDelegate {
                        width: uuidSelector.width
                        highlighted: uuidSelector.highlightedIndex === index
                        hoverEnabled: uuidSelector.hoverEnabled
                        leftPadding: 6
                        rightPadding: 6
                        contentItem: Text {
                            text: model.uuid
                            font: uuidSelector.font
                            // Like devices differ in their last letters.
                            fontSizeMode: Text.HorizontalFit
                            minimumPixelSize: 9
                            color: "white"
                            elide: Text.ElideRight
                            verticalAlignment: Text.AlignVCenter
                        }
                        ToolTip.visible: hovered && contentItem.truncated
                        ToolTip.delay: 500
                        ToolTip.text: model.uuid
                    }

                    popup: Popup {
                        y: uuidSelector.height - 1
                        width: uuidSelector.width
                        implicitHeight: contentItem.implicitHeight + 2
                        padding: 1

                        contentItem: ListView {
                            clip: true
                            implicitHeight: contentHeight
                            model: uuidSelector.popup.visible ? uuidSelector.delegateModel : null
                            currentIndex: uuidSelector.highlightedIndex
                            ScrollIndicator.vertical: ScrollIndicator {}
                        }

                        background: Rectangle {
                            color: "#3E4D59"
                            border.color: "grey"
                        }
                    }
                }

                HeaderButton {
                    id: infoButton
                    objectName: "infoButton"
                    icon.source: "qrc:images/info"
                    enabled: uuidSelector.count > 0
                    hint: qsTr("Info")
                    onHoveredChanged: window.isHeaderHovered = hovered
                    onClicked: window.showInfos(infoDialog)
                    onPressAndHold: window.showInfos(calibrationDialog)
                }

                HeaderButton {
                    id: saveImagesButton
                    objectName: "saveImagesButton"
                    icon.source: "qrc:images/image"
                    visible: false
                    enabled: uuidSelector.count > 0
                    hint: qsTr("Save images")
                    onClicked: window.path = window.currentCamera().saveImages()
                    onPressAndHold: tools.openUrl(window.path)
                }

                HeaderButton {
                    id: saveVideoButton
                    objectName: "saveVideoButton"
                    icon.source: checked ? "qrc:images/videocam_off" : "qrc:images/videocam"
                    icon.color: checked ? "red" : "white"
                    visible: false
                    enabled: uuidSelector.count > 0
                    checkable: true
                    checked: false
                    hint: qsTr("Save video")
                    onCheckedChanged: window.keepPath(window.currentCamera().setRecording(checked))
                    onPressAndHold: tools.openUrl(window.path)
                }

                HeaderButton {
                    id: savePathButton
                    objectName: "savePathButton"
                    icon.source: "qrc:images/path"
                    icon.color: checked ? "red" : "white"
                    visible: false
                    enabled: uuidSelector.count > 0
                    checkable: true
                    checked: false
                    hint: qsTr("Save path")
                    onCheckedChanged: window.keepPath(window.currentCamera().setRecordingSlam(checked))
                    onPressAndHold: tools.openUrl(window.path)
                }

                Item {
                    Layout.fillWidth: true
                }

                HeaderButton {
                    id: documentationButton
                    objectName: "documentationButton"
                    icon.source: "qrc:images/description"
                    hint: qsTr("Documentation")
                    onHoveredChanged: window.isHeaderHovered = hovered
                    onClicked: window.openDocumentation()
                }

                Image {
                    objectName: "maker"
                    source: "qrc:images/quivra_white"
                    sourceSize.height: 2 * 0.75 * toolBar.background.implicitHeight
                    fillMode: Image.PreserveAspectFit
                    antialiasing: true
                    Layout.preferredWidth: paintedWidth
                    Layout.preferredHeight: 0.75 * toolBar.height
                    Layout.alignment: Qt.AlignVCenter
                }
            }
        }

        SwipeView {
            id: cameraViews
            objectName: "cameraViews"
            anchors.fill: parent
            currentIndex: uuidSelector.currentIndex

            Repeater {
                id: repeater
                model: uuidSelector.model

                CameraView {
                    camera: device
                    topMargin: mainPage.header.height
                }
            }
        }
    }

    Rectangle {
        objectName: "veil"
        anchors.fill: parent
        color: "black"
        opacity: versionDialog.visible || infoDialog.visible || calibrationDialog.visible ? 0.65 : 0
        visible: opacity > 0

        Behavior on opacity {
            NumberAnimation { duration: 250 }
        }

        MouseArea {
            anchors.fill: parent
            onClicked: {
                versionDialog.close()
                infoDialog.close()
                calibrationDialog.close()
            }
        }
    }

    // In the overlay like the panel, so that they stand above it.
    VersionDialog {
        id: versionDialog
        objectName: "versionDialog"
        parent: Overlay.overlay
        anchors.centerIn: parent

        function showVersion(v) {
            sdkversion = v
            open()
        }
    }

    InfoDialog {
        id: infoDialog
        objectName: "infoDialog"
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(implicitWidth, window.width - 40)
        height: Math.min(implicitHeight, window.height - 40)
    }

    CalibrationDialog {
        id: calibrationDialog
        objectName: "calibrationDialog"
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(implicitWidth, window.width - 40)
        height: Math.min(implicitHeight, window.height - 40)
    }
}
