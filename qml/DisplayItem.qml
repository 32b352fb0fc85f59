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
    // The room at the top left that the buttons leave to the view's read-out.
    readonly property real captionWidth: (imgBtn.visible ? imgBtn.x : pathBtn.visible ? pathBtn.x : maxBtn.x) - 10
    // The row at the top that the buttons take.
    readonly property real buttonsBottom: closeBtn.y + closeBtn.height

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

    FrameButton {
        id: closeBtn
        objectName: "closeBtn"
        anchors { top: parent.top; topMargin: 5; right: parent.right }
        icon.source: "qrc:/images/close"
        visible: Qt.platform.os !== "android"
        hint: "Stop this Sensor"
        onClicked: control.closeSensor()
    }

    FrameButton {
        id: maxBtn
        objectName: "maxBtn"
        anchors { top: parent.top; topMargin: 5; right: closeBtn.left }
        icon.source: "qrc:/images/maximize"
        visible: Qt.platform.os !== "android"
        hint: "Maximize this Sensor"
        onClicked: control.maximize()
    }

    FrameButton {
        id: imgBtn
        objectName: "imgBtn"
        anchors { top: parent.top; topMargin: 5; right: maxBtn.left }
        icon.source: "qrc:images/image"
        visible: control.showSaveImageButton
        hint: "Save image"
        quiet: imgSavePopup.visible
        onClicked: control.saveImage()
        onPressAndHold: control.imgPressAndHold()
    }

    FrameButton {
        id: pathBtn
        objectName: "pathBtn"

        property string path: ""

        anchors { top: parent.top; topMargin: 5; right: maxBtn.left }
        icon.source: "qrc:images/path"
        icon.color: checked ? "red" : "white"
        visible: control.showPathButton
        checkable: true
        enabled: uuidSelector.count > 0
        hint: "Save path"
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
        // A popup that Escape closes holds off the window's shortcuts while it stands.
        closePolicy: Popup.CloseOnPressOutside

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
