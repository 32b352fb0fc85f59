import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Scene3D 2.13
import Qt.labs.settings 1.1
import Tof3dData 1.0

// The coloured points of the ToF camera in space.
DisplayItem {
    id: control

    property var camera: null

    readonly property var tof3d: camera && camera.tof3d ? camera.tof3d : null

    Settings {
        category: "Tof3DView"
        property alias freeView: freeViewCheckBox.checked
        property alias slamSource: slamSourceSwitch.checked
    }

    QtObject {
        id: d

        readonly property var slamSource: {
            if (!control.camera)
                return null
            return (slamSourceSwitch.checked ? control.camera.slam : control.camera.edge) || null
        }
    }

    Scene3D {
        id: scene3d

        objectName: "scene3d"
        anchors.fill: parent
        visible: parent.width > 0
        focus: true
        aspects: ["input", "logic"]
        cameraAspectRatioMode: Scene3D.AutomaticAspectRatio

        Tof3DScene {
            position: d.slamSource ? d.slamSource.position.vector : Qt.vector3d(0, 0, 0)
            orientation: d.slamSource ? d.slamSource.orientation.quaternion : Qt.quaternion(0, 0, 0, 1)
            viewVector: d.slamSource ? d.slamSource.orientation.viewVector : Qt.vector3d(0, 0, 1)
            viewCenter: d.slamSource ? d.slamSource.orientation.viewCenter(d.slamSource.position.vector,
                                                                           d.slamSource.orientation.viewVector)
                                     : Qt.vector3d(0, 0, 1)
            matrix: d.slamSource ? d.slamSource.matrix
                                 : Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1)
            freeView: freeViewCheckBox.checked
            pointCloud: control.tof3d ? control.tof3d.pointCloud : null
        }
    }

    StreamLabel {
        id: fpsLabel

        objectName: "fpsLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        text: control.camera && control.camera.tof ? "@" + control.camera.tof.dataFrameRate.toFixed(0) + "fps" : ""
    }

    Page {
        objectName: "sourcePage"
        anchors { left: parent.left; top: fpsLabel.bottom; margins: 5 }
        visible: !control.minimized

        background: Rectangle {
            color: "black"
            opacity: 0.5
        }

        header: Row {
            padding: 5

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Edge")
            }

            Switch {
                id: slamSourceSwitch

                objectName: "slamSourceSwitch"
                checked: true
                onCheckedChanged: control.camera.tof3d.source = checked ? Tof3dData.Source.SLAM : Tof3dData.Source.EDGE
            }

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Mixed")
            }
        }
    }

    Column {
        anchors { top: parent.top; right: parent.right; margins: 5 }
        visible: !control.minimized

        CheckBox {
            id: freeViewCheckBox

            objectName: "freeViewCheckBox"
            text: qsTr("Free view")
        }

        CheckBox {
            objectName: "colorizeCheckBox"
            text: qsTr("Use RGB")
            enabled: control.tof3d !== null && control.tof3d.rgbAvailable
            checked: control.tof3d !== null && control.tof3d.rgbAvailable
            onCheckedChanged: {
                if (control.tof3d)
                    control.tof3d.colorize = checked
            }
        }
    }
}
