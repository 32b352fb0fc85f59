import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13

// The calibrations of one kind of camera, two side by side.
Page {
    id: control

    property var infos
    readonly property var calibration: infos && infos["calibration"] ? infos["calibration"][calib.currentText] : []

    visible: false
    title: qsTr("Calibration info")
    padding: 10

    function open() {
        visible = true
    }

    function close() {
        visible = false
    }

    header: DialogHeader {
        title: control.title
        onQuit: control.close()
    }

    contentItem: ColumnLayout {
        spacing: 10

        ComboBox {
            id: calib
            objectName: "calib"
            model: ["stereo", "color", "tof"]
        }

        Flickable {
            implicitWidth: Math.max(calibrations.width, 300)
            implicitHeight: calibrations.height
            contentWidth: calibrations.width
            contentHeight: calibrations.height
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            Layout.fillWidth: true
            Layout.fillHeight: true

            ScrollBar.vertical: ScrollBar {}
            ScrollBar.horizontal: ScrollBar {}

            Grid {
                id: calibrations
                objectName: "calibrations"
                columns: 2
                spacing: 5

                Repeater {
                    objectName: "calibrationRepeater"
                    model: control.calibration

                    CalibrationDisplay {
                        calibration: modelData
                    }
                }
            }
        }
    }
}
