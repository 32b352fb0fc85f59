import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import Qt.labs.settings 1.0
import ImagePainter 1.0

// One of the two cameras that watch the eyes.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false
    property string sourceName: "left"
    property var source: !eyetracking ? null : sourceName === "left" ? eyetracking.left : eyetracking.right

    readonly property var eyetracking: camera && camera.eyetracking ? camera.eyetracking : null

    function sendExposure() {
        if (!eyetracking)
            return
        if (eyetrackingExposureModeSwitch.checked)
            eyetracking.setManualExposure(eyetrackingExposureGainSpinBox.value, eyetrackingExposureTimeSpinBox.value)
        else
            eyetracking.setAutoExposure()
    }

    function sendManualExposure() {
        if (eyetracking)
            eyetracking.setManualExposure(eyetrackingExposureGainSpinBox.value, eyetrackingExposureTimeSpinBox.value)
    }

    Settings {
        id: options
        category: "EyetrackingView"
        property alias horizontalFlip: control.horizontalFlip
        property alias verticalFlip: control.verticalFlip
        property alias source: control.sourceName
        property bool ledOn: false

        onLedOnChanged: {
            if (!control.eyetracking)
                return
            control.eyetracking.setLED(0, 8, ledOn ? 255 : 0)
            control.eyetracking.setLED(1, 8, ledOn ? 255 : 0)
        }
    }

    ImagePainter {
        id: painter
        objectName: "painter"
        anchors.fill: parent
        source: control.source
        horizontalFlip: control.horizontalFlip
        verticalFlip: control.verticalFlip
    }

    StreamLabel {
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.source ? control.source.width + "x" + control.source.height + "@" + painter.fps.toFixed(0) + "fps" : ""
    }

    ColumnLayout {
        objectName: "exposurePage"
        anchors.centerIn: parent
        visible: control.optionsVisible

        Row {
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("manual")
            }

            Switch {
                id: eyetrackingExposureModeSwitch
                objectName: "eyetrackingExposureModeSwitch"
                onCheckedChanged: control.sendExposure()
            }

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("auto")
            }
        }

        RowLayout {
            visible: !eyetrackingExposureModeSwitch.checked

            Label {
                text: qsTr("Exposure Gain")
                Layout.fillWidth: true
            }

            SpinBox {
                id: eyetrackingExposureGainSpinBox
                objectName: "eyetrackingExposureGainSpinBox"
                from: 0
                to: 255
                stepSize: 5
                value: 150
                onValueChanged: control.sendManualExposure()
            }
        }

        RowLayout {
            visible: !eyetrackingExposureModeSwitch.checked

            Label {
                text: qsTr("Exposure Time [0.1ms]")
                Layout.fillWidth: true
            }

            SpinBox {
                id: eyetrackingExposureTimeSpinBox
                objectName: "eyetrackingExposureTimeSpinBox"
                from: 0
                to: 330
                stepSize: 10
                value: 150
                onValueChanged: control.sendManualExposure()
            }
        }
    }

    StreamLabel {
        objectName: "caption"
        anchors { bottom: parent.bottom; left: parent.left; margins: 5 }
        visible: control.optionsVisible
        text: control.sourceName === "left" ? qsTr("Left") : qsTr("Right")

        MouseArea {
            anchors.fill: parent
            onClicked: control.sourceName = control.sourceName === "left" ? "right" : "left"
        }
    }

    Column {
        objectName: "optionsColumn"
        anchors { top: parent.top; topMargin: 40; right: parent.right; rightMargin: 5 }
        spacing: 5
        visible: control.optionsVisible

        Image {
            objectName: "hFlipImage"
            width: 32
            height: 32
            source: "qrc:/images/vertical_flip"

            MouseArea {
                anchors.fill: parent
                onClicked: options.horizontalFlip = !options.horizontalFlip
            }
        }

        Image {
            objectName: "vFlipImage"
            width: 32
            height: 32
            rotation: 90
            source: "qrc:/images/vertical_flip"

            MouseArea {
                anchors.fill: parent
                onClicked: options.verticalFlip = !options.verticalFlip
            }
        }

        Image {
            objectName: "ledImage"
            width: 32
            height: 32
            source: "qrc:/images/led"
            opacity: options.ledOn ? 1.0 : 0.5

            MouseArea {
                anchors.fill: parent
                onClicked: options.ledOn = !options.ledOn
            }
        }
    }
}
