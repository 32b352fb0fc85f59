import QtQuick 2.13
import QtQuick.Controls 2.13
import Qt.labs.settings 1.0
import ImagePainter 1.0
import ObjectsData 1.0

// One colour camera.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false
    property alias rgbPainter: painter
    property var rgbImg: rgb ? rgb.image : null
    property string rgbName: "[RGB]"

    readonly property var rgb: camera && camera.rgb ? camera.rgb : null
    readonly property double frameRate: !rgb ? 0 : rgbImg === rgb.image ? rgb.dataFrameRate : rgb.dataFrameRate2

    function objectList() {
        var objects = camera ? camera.objects : null
        return objects && objects.source === ObjectsData.RGB ? objects.objects : []
    }

    Settings {
        id: options
        category: "RgbView"
        property alias horizontalFlip: control.horizontalFlip
        property alias verticalFlip: control.verticalFlip
    }

    ImagePainter {
        id: painter
        objectName: "painter"
        anchors.fill: parent
        source: control.rgb ? control.rgbImg : null
        horizontalFlip: control.horizontalFlip
        verticalFlip: control.verticalFlip
        objects: control.objectList()
        tofData: control.camera && control.camera.tof ? control.camera.tof : null
        sgbmData: control.camera && control.camera.sgbm ? control.camera.sgbm : null
    }

    StreamLabel {
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.rgb && control.rgbImg ? control.rgbName + "  " + control.rgbImg.width + "x" + control.rgbImg.height
                                              + "@" + control.frameRate.toFixed(0) + "fps" : ""
    }

    Column {
        id: optionsColumn
        objectName: "optionsColumn"
        anchors { top: parent.top; topMargin: 40; right: parent.right; rightMargin: 5 }
        width: 48
        spacing: -10
        visible: control.optionsVisible

        OptionButton {
            id: hFlipButton
            objectName: "hFlipButton"
            icon.source: "qrc:/images/vertical_flip"
            checked: control.horizontalFlip
            onCheckedChanged: options.horizontalFlip = checked
        }

        OptionButton {
            id: vFlipButton
            objectName: "vFlipButton"
            icon.source: "qrc:/images/vertical_flip"
            rotation: 90
            checked: control.verticalFlip
            onCheckedChanged: options.verticalFlip = checked
        }
    }

    // The panel offers the same; nothing opens this page.
    Column {
        id: settingsPage
        anchors.centerIn: parent
        visible: false

        ComboBox {
            id: resolutionComboBox
            textRole: "text"
            currentIndex: 0
            model: ListModel {
                ListElement { text: "1920x1080"; value: 0 }
                ListElement { text: "1280x720"; value: 1 }
                ListElement { text: "640x480"; value: 2 }
            }
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.rgb)
                    control.rgb.resolution = model.get(currentIndex).value
            }
        }

        Label {
            text: qsTr("Framerate:")
        }

        Slider {
            id: rgbFramerateSlider
            from: 6
            to: 30
            stepSize: 1
            value: 30
            onValueChanged: rgbFramerateTimer.restart()
        }

        Timer {
            id: rgbFramerateTimer
            interval: 500
            onTriggered: {
                if (control.rgb)
                    control.rgb.framerate = rgbFramerateSlider.value
            }
        }

        Row {
            visible: false

            Repeater {
                model: ["Preview", "Capture", "Video"]

                Button {
                    text: modelData
                    onClicked: {
                        if (control.rgb)
                            control.rgb.mode = index
                    }
                }
            }
        }
    }
}
