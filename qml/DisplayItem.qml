import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Controls.impl 2.13

// The frame of every stream view: its buttons, and the states that the layout uses.
Page {
    id: control

    property bool maximized: false
    property bool optionsVisible: false
    property bool active: true
    property bool showSaveImageButton: false
    property bool showPathButton: false
    property string path: ""
    property alias imgPopup: imgSavePopup
    // The view's place in the side model; -1 for none.
    property int modelIndex: -1
    property bool minimized: true

    signal clicked()
    signal doubleClicked()
    signal saveImage()
    signal imgPressAndHold()
    signal maximize()
    signal closeSensor()

    onClicked: optionsVisible = !optionsVisible
    onDoubleClicked: {
        optionsVisible = false
        maximized = !maximized
    }

    background: Rectangle {
        color: "#0e1418"
        border.color: "#243440"
    }

    MouseArea {
        anchors.fill: parent
        onClicked: {
            if (!control.minimized)
                control.clicked()
        }
        onDoubleClicked: control.doubleClicked()
    }

    ToolButton {
        id: closeBtn
        objectName: "closeBtn"
        z: 10
        anchors { top: parent.top; topMargin: 5; right: parent.right }
        width: 32
        height: 32
        padding: 4
        icon { source: "qrc:/images/close"; width: 20; height: 20 }
        visible: Qt.platform.os !== "android"
        ToolTip.visible: hovered
        ToolTip.delay: 500
        ToolTip.text: "Stop this Sensor"
        onClicked: control.closeSensor()
    }

    ToolButton {
        id: maxBtn
        objectName: "maxBtn"
        z: 10
        anchors { top: parent.top; topMargin: 5; right: closeBtn.left }
        width: 32
        height: 32
        padding: 4
        icon { source: "qrc:/images/maximize"; width: 20; height: 20 }
        visible: Qt.platform.os !== "android"
        ToolTip.visible: hovered
        ToolTip.delay: 500
        ToolTip.text: "Maximize this Sensor"
        onClicked: control.maximize()
    }

    ToolButton {
        id: imgBtn
        objectName: "imgBtn"
        z: 10
        anchors { top: parent.top; topMargin: 5; right: maxBtn.left }
        width: 32
        height: 32
        padding: 4
        icon { source: "qrc:images/image"; width: 20; height: 20 }
        visible: control.showSaveImageButton
        ToolTip.visible: hovered
        ToolTip.delay: 500
        ToolTip.text: "Save image"
        onClicked: control.saveImage()
        onPressAndHold: control.imgPressAndHold()
    }

    ToolButton {
        id: pathBtn
        objectName: "pathBtn"

        property string path: ""

        z: 10
        anchors { top: parent.top; topMargin: 5; right: maxBtn.left }
        width: 32
        height: 32
        padding: 4
        icon { source: "qrc:images/path"; color: checked ? "red" : "white"; width: 20; height: 20 }
        visible: control.showPathButton
        checkable: true
        enabled: uuidSelector.count > 0
        ToolTip.visible: hovered
        ToolTip.delay: 500
        ToolTip.text: "Save path"
        onHoveredChanged: window.isHeaderHovered = hovered
        onCheckedChanged: {
            var camera = listener.cameras[uuidSelector.currentIndex]
            var saved = camera ? camera.setRecordingSlam(checked) : ""
            if (saved !== "")
                path = saved
        }
        onPressAndHold: tools.openUrl(path)
    }

    Popup {
        id: imgSavePopup
        objectName: "imgSavePopup"

        property alias imgText: imgText

        x: control.width - width
        y: imgBtn.y + 50
        width: infoIcon.width + imgText.implicitWidth + 10
        height: 32
        padding: 0
        modal: false

        enter: Transition {
            NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 250 }
        }
        exit: Transition {
            NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 250 }
        }

        onAboutToShow: popTimer.start()

        contentItem: Item {
            ColorImage {
                id: infoIcon
                anchors.verticalCenter: parent.verticalCenter
                source: "qrc:images/info"
                color: "white"
            }

            Text {
                id: imgText
                anchors { left: infoIcon.right; leftMargin: 5; verticalCenter: parent.verticalCenter }
                color: "white"
            }
        }

        Timer {
            id: popTimer
            interval: 3000
            onTriggered: imgSavePopup.close()
        }
    }
}
