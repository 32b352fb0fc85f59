import QtQuick 2.13
import ImagePainter 1.0

// Colour and depth in one picture.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false

    readonly property var rgbd: camera && camera.rgb && camera.tof && camera.rgbd ? camera.rgbd : null

    ImagePainter {
        id: painter
        objectName: "painter"
        anchors.fill: parent
        source: control.rgbd ? control.rgbd.image : null
        horizontalFlip: control.horizontalFlip
        verticalFlip: control.verticalFlip
        // The detector has no source for this picture.
        objects: []
    }

    StreamLabel {
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: "[RGBD]  "
    }
}
