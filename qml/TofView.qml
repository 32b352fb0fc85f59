import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import Qt.labs.settings 1.0
import ImagePainter 1.0
import ObjectsData 1.0

// The time-of-flight depth picture, with read-outs at the mouse and in a box.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false
    property bool tofCenterPixelSwitchChecked: false
    property alias tofPainter: painter
    // The pixel under the mouse, or the last one that was.
    property int _x: 0
    property int _y: 0

    readonly property var tof: camera && camera.tof ? camera.tof : null

    function objectList() {
        var objects = camera ? camera.objects : null
        return objects && objects.source === ObjectsData.TOF ? objects.objects : []
    }

    Settings {
        id: options
        category: "TofView"
        property alias horizontalFlip: control.horizontalFlip
        property alias verticalFlip: control.verticalFlip
        property alias colorize: colorizeCheckbox.checked
        property alias maxDistance: maxDistanceSlider.value
        property alias minDistance: minDistanceSlider.value
        property alias framerate: tofFramerateSlider.value
    }

    ImagePainter {
        id: painter
        objectName: "painter"
        anchors.fill: parent
        source: control.tof ? control.tof.image : null
        horizontalFlip: control.horizontalFlip
        verticalFlip: control.verticalFlip
        tofData: control.tof
        objects: control.objectList()
        colorize: colorizeCheckbox.checked
        maxDistance: maxDistanceSlider.value
        minDistance: minDistanceSlider.value

        onTopLeftPointChanged: console.log("width changed")
        onSourceWidthChanged: {
            console.log("Source width changed")
            centerBox.sendX()
            centerBox.sendY()
        }

        MouseArea {
            objectName: "pointerArea"
            anchors.fill: parent
            hoverEnabled: true
            onClicked: {
                if (!control.minimized)
                    control.clicked()
            }
            onDoubleClicked: control.doubleClicked()
            // A pointer that comes in one leap and rests has entered, but not changed its position inside.
            onEntered: readPixel()
            onPositionChanged: readPixel()

            function readPixel() {
                var corner = painter.topLeftPoint
                var ratio = painter.imageRation
                if (corner.x < mouseX && mouseX < painter.sourceWidth * ratio + corner.x
                        && corner.y < mouseY && mouseY < painter.sourceHeight * ratio + corner.y) {
                    control._x = (mouseX - corner.x) / ratio
                    control._y = (mouseY - corner.y) / ratio
                }
                if (control.tof) {
                    control.tof.setX(control._x)
                    control.tof.setY(control._y)
                }
            }
        }

        AverageBox {
            id: centerBox
            objectName: "centerBox"
            picture: painter
            stream: control.tof
            visible: control.tofCenterPixelSwitchChecked
            onDoubleClicked: control.doubleClicked()
            // The new width came before the ratio that belongs to it, and a box that was dropped doesn't move.
            onRatioChanged: {
                sendX()
                sendY()
            }
        }
    }

    StreamLabel {
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.tof && control.tof.image
              ? "[TOF]  " + control.tof.image.width + "x" + control.tof.image.height + "@"
                + control.tof.dataFrameRate.toFixed(0) + "fps" : ""
    }

    StreamLabel {
        objectName: "depthLabel"
        anchors { bottom: parent.bottom; left: parent.left; margins: 5 }
        room: control.width - 10
        visible: control.tof !== null && control.tof.pixelShow
        text: control.tof ? "x: " + control._x + " ,y: " + control._y + " depth: " + control.tof.depth + "mm"
                            + (control.tofCenterPixelSwitchChecked ? "  avg depth: " + control.tof.centerAvgPx + "mm" : " ")
                          : ""
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

        OptionButton {
            id: settingsButton
            objectName: "settingsButton"
            icon.source: "qrc:/images/settings"
            visible: false
        }
    }

    // The panel offers the same; here are the stored values and the painter's defaults.
    Column {
        id: settingsPage
        objectName: "settingsPage"
        anchors.centerIn: parent
        visible: false

        CheckBox {
            id: colorizeCheckbox
            objectName: "colorizeCheckbox"
            text: qsTr("Colorize")
            checked: true
        }

        Label {
            text: qsTr("Maximal distance:")
        }

        Slider {
            id: maxDistanceSlider
            objectName: "maxDistanceSlider"
            from: 0.1
            to: 7.5
            value: 1.0
            onValueChanged: {
                if (control.tof)
                    control.tof.maxDistance = value
            }
        }

        Label {
            text: qsTr("Minimum distance:")
        }

        Slider {
            id: minDistanceSlider
            objectName: "minDistanceSlider"
            from: 0.1
            to: 7.5
            value: 0.1
            onValueChanged: {
                if (control.tof)
                    control.tof.minDistance = value
            }
        }

        Label {
            text: qsTr("Framerate:")
        }

        Slider {
            id: tofFramerateSlider
            objectName: "tofFramerateSlider"
            from: 5
            to: 30
            stepSize: 5
            value: 15
            onValueChanged: tofFramerateTimer.restart()
        }

        Timer {
            id: tofFramerateTimer
            interval: 500
            onTriggered: {
                if (control.tof)
                    control.tof.framerate = tofFramerateSlider.value
            }
        }

        Label {
            text: qsTr("Mode:")
        }

        ComboBox {
            id: modeComboBox
            objectName: "modeComboBox"
            textRole: "text"
            currentIndex: 1
            model: ListModel {
                ListElement { text: qsTr("IQMIX_DF"); value: 0 }
                ListElement { text: qsTr("IQMIX_SF"); value: 1 }
                ListElement { text: qsTr("LABELIZE_DF"); value: 2 }
                ListElement { text: qsTr("LABELIZE_SF"); value: 3 }
                ListElement { text: qsTr("M2MIX_DF"); value: 4 }
                ListElement { text: qsTr("M2MIX_SF"); value: 5 }
            }
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.tof)
                    control.tof.setLibWorkMode(model.get(currentIndex).value)
            }
        }

        Label {
            text: qsTr("Distance Mode:")
        }

        ComboBox {
            id: distanceModeComboBox
            objectName: "distanceModeComboBox"
            textRole: "text"
            currentIndex: 1
            model: ListModel {
                ListElement { text: qsTr("Short"); value: 1 }
                ListElement { text: qsTr("Middle"); value: 1 }
                ListElement { text: qsTr("Long"); value: 2 }
            }
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.tof)
                    control.tof.setDistanceMode(model.get(currentIndex).value)
            }
        }

        ComboBox {
            id: frequencyCombox
            objectName: "frequencyCombox"
            model: ["SF", "DF"]
            currentIndex: 0
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.tof)
                    control.tof.frequency = currentIndex
            }
        }

        ComboBox {
            id: resolutionCombox
            objectName: "resolutionCombox"
            model: ["VGA", "QVGA"]
            currentIndex: 0
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.tof)
                    control.tof.resolution = currentIndex
            }
        }

        Label {
            text: "FPS: "
        }

        ComboBox {
            id: combox
            objectName: "combox"
            model: ["5", "10", "15", "20", "25", "30"]
            currentIndex: 5
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.tof)
                    control.tof.fps = currentIndex
            }
        }

        Label {
            text: "SonyTofMode: "
        }

        ComboBox {
            id: sonyTofModecombox
            objectName: "sonyTofModecombox"
            model: ["IQMIX", "LABELIZE", "M2MIX"]
            currentIndex: 0
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.tof)
                    control.tof.mode = currentIndex
            }
        }

        Row {
            CustomSwitch {
                id: tofShowDepthSwitch
                objectName: "tofShowDepthSwitch"
                onCheckedChanged: {
                    if (control.tof)
                        control.tof.pixelShow = checked
                }
            }

            CustomSwitch {
                id: tofCenterPixelSwitch
                objectName: "tofCenterPixelSwitch"
                onCheckedChanged: {
                    if (control.tof)
                        control.tof.setEnableCenterAvgPx(checked)
                }
            }
        }
    }
}
