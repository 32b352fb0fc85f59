import QtQuick 2.13
import QtQuick.Controls 2.13

// One calibration record: pose and camera models, each number with five decimals.
Frame {
    id: control

    property var calibration

    function list(key) {
        return calibration && key in calibration ? calibration[key] : []
    }

    Column {
        spacing: 5

        Label {
            text: qsTr("Translation")
            font.bold: true
        }

        NumberGrid {
            objectName: "translation"
            numbers: control.list("translation")
        }

        Label {
            text: qsTr("Rotation")
            font.bold: true
        }

        NumberGrid {
            objectName: "rotation"
            numbers: control.list("rotation")
        }

        Label {
            objectName: "ucmHeading"
            text: qsTr("UCM")
            font.bold: true
            visible: control.list("ucms").length > 0
        }

        Repeater {
            objectName: "ucms"
            model: control.list("ucms")

            CalibrationUcmView {
                ucm: modelData
            }
        }

        Label {
            objectName: "pdcmHeading"
            text: qsTr("PDCM")
            font.bold: true
            visible: control.list("pdcms").length > 0
        }

        Repeater {
            objectName: "pdcms"
            model: control.list("pdcms")

            CalibrationPdcmView {
                pdcm: modelData
            }
        }
    }
}
