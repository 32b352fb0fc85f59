import QtQuick 2.13
import ImagePainter 1.0

// The infrared picture of the time-of-flight camera.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false

    readonly property var tofIr: camera && camera.tofIr ? camera.tofIr : null

    ImagePainter {
        id: painter
        objectName: "painter"
        anchors.fill: parent
        source: control.tofIr ? control.tofIr.image : null
        horizontalFlip: control.horizontalFlip
        verticalFlip: control.verticalFlip

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onClicked: {
                if (!control.minimized)
                    control.clicked()
            }
            onDoubleClicked: control.doubleClicked()
        }
    }

    StreamLabel {
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.tofIr && control.tofIr.image
              ? "[TOF IR]  " + control.tofIr.image.width + "x" + control.tofIr.image.height + "@"
                + control.tofIr.dataFrameRate.toFixed(0) + "fps" : ""
    }
}
