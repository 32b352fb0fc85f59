import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import Qt.labs.settings 1.0
import ImagePainter 1.0
import ObjectsData 1.0

// The fisheye cameras: one of them in full, or all of them in a grid.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false
    property bool showPoints: true
    property bool showGrid: false
    property int resolutionIndex: 0

    readonly property var stereo: camera && camera.stereo ? camera.stereo : null

    function setCNNRunning(enabled) {
        painter.CNNRunning = enabled
        for (var i = 0; i < painters.count; ++i)
            painters.itemAt(i).CNNRunning = enabled
    }

    function imageOf(index) {
        var fisheye = stereo ? stereo.image(index) : null
        return fisheye ? fisheye.image : null
    }

    function objectsOf(index) {
        var objects = camera ? camera.objects : null
        if (!objects)
            return []
        var shown = (objects.source === ObjectsData.Left && index === 0)
                || (objects.source === ObjectsData.Right && index === 1)
        return shown ? objects.objects : []
    }

    Settings {
        id: options
        category: "StereoView"
        property alias horizontalFlip: control.horizontalFlip
        property alias verticalFlip: control.verticalFlip
        property alias showPoints: control.showPoints
        property alias autoExposure: autoExposure.checked
        property alias gain: gainSlider.value
        property alias brightness: brightnessSlider.value
    }

    Item {
        id: imContainer
        objectName: "imContainer"
        anchors.fill: parent

        property bool dispatched: gridButton.checked
        // The camera on show.
        property int value: 0

        function name(index) {
            var count = control.stereo ? control.stereo.count : 0
            if (count === 2)
                return index === 0 ? qsTr("Left") : index === 1 ? qsTr("Right") : ""
            return count === 4 ? qsTr("Cam") + index : ""
        }

        ImagePainter {
            id: painter
            objectName: "painter"
            anchors.fill: parent
            visible: !imContainer.dispatched
            source: control.imageOf(imContainer.value)
            horizontalFlip: imContainer.value < 2 ? control.horizontalFlip : !control.horizontalFlip
            verticalFlip: imContainer.value < 2 ? control.verticalFlip : !control.verticalFlip
            showPoints: control.showPoints
            tofData: control.camera && control.camera.tof ? control.camera.tof : null
            objects: control.objectsOf(imContainer.value)

            StreamLabel {
                objectName: "caption"
                anchors { bottom: parent.bottom; left: parent.left; margins: 5 }
                text: imContainer.name(imContainer.value)
            }
        }

        GridLayout {
            anchors.fill: parent
            visible: imContainer.dispatched
            columns: 2
            rowSpacing: 2
            columnSpacing: 2

            Repeater {
                id: painters
                objectName: "painters"
                model: control.stereo ? control.stereo.count : 0

                ImagePainter {
                    id: gridPainter
                    objectName: "gridPainter" + index
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    source: control.imageOf(index)
                    horizontalFlip: control.horizontalFlip
                    verticalFlip: control.verticalFlip
                    showPoints: control.showPoints
                    tofData: control.camera && control.camera.tof ? control.camera.tof : null
                    objects: control.objectsOf(index)
                    Component.onCompleted: gridPainter.CNNRunning = true

                    StreamLabel {
                        objectName: "gridCaption" + index
                        anchors { bottom: parent.bottom; left: parent.left; margins: 5 }
                        text: imContainer.name(index)
                    }

                    MouseArea {
                        anchors.fill: parent
                        onClicked: {
                            if (control.minimized)
                                return
                            imContainer.value = index
                            gridButton.checked = false
                        }
                        onDoubleClicked: control.doubleClicked()
                    }
                }
            }
        }
    }

    StreamLabel {
        id: infoLabel
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.stereo ? "[STEREO]  " + control.stereo.width + "x" + control.stereo.height + "@"
                               + control.stereo.dataFrameRate.toFixed(0) + "fps" : ""
    }

    ToolButton {
        id: gridButton
        objectName: "gridButton"
        anchors { top: infoLabel.bottom; left: parent.left }
        width: 48
        height: 48
        checkable: true
        checked: control.showGrid
        icon.source: "qrc:/images/view_module"
        onCheckedChanged: control.showGrid = checked
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
            id: pointsButton
            objectName: "pointsButton"
            icon.source: "qrc:/images/point"
            checked: control.showPoints
            onCheckedChanged: options.showPoints = checked
        }

        OptionButton {
            id: brightnessButton
            icon.source: "qrc:/images/settings"
            visible: false
        }

        OptionButton {
            id: advancedButton
            icon.source: "qrc:/images/settings"
            visible: false
        }

        OptionButton {
            id: settingsButton
            icon.source: "qrc:/images/settings"
            visible: false
        }
    }

    // The pages of the three invisible buttons. The settings restore their controls at the start.
    Column {
        visible: false
        anchors.centerIn: parent

        Row {
            Label {
                text: qsTr("Resolution:     ")
            }

            ComboBox {
                id: stereoResolutionComboBox
                objectName: "stereoResolutionComboBox"
                textRole: "text"
                currentIndex: 0
                model: ListModel {
                    ListElement { text: qsTr("VGA"); value: 2 }
                    ListElement { text: qsTr("720P"); value: 3 }
                }
                onCurrentIndexChanged: {
                    control.resolutionIndex = currentIndex
                    if (!control.stereo)
                        return
                    if (currentIndex === 1) {
                        slamButton.checked = false
                        slamButton.checkable = false
                    } else if (currentIndex === 0) {
                        slamButton.checkable = true
                    }
                    if (currentIndex >= 0)
                        control.stereo.setResolution(model.get(currentIndex).value)
                }
            }
        }

        CheckBox {
            id: autoExposure
            objectName: "autoExposure"
            text: qsTr("Auto Exposure")
            checked: true
            onCheckedChanged: {
                if (control.stereo)
                    control.stereo.autoExposure = checked
            }
        }

        GridLayout {
            columns: 3
            enabled: !autoExposure.checked

            Label {
                text: qsTr("Gain:")
            }

            Slider {
                id: gainSlider
                objectName: "gainSlider"
                from: 1
                to: 16
                stepSize: 1
                value: 10
                onValueChanged: {
                    if (!autoExposure.checked && control.stereo)
                        control.stereo.gain = value
                }
            }

            Label {
                text: gainSlider.value.toFixed(0)
            }

            Label {
                text: qsTr("Brightness:")
            }

            Slider {
                id: brightnessSlider
                objectName: "brightnessSlider"
                from: 1
                to: 65
                stepSize: 1
                value: 10
                onValueChanged: {
                    if (!autoExposure.checked && control.stereo)
                        control.stereo.brightness = value
                }
            }

            Label {
                text: brightnessSlider.value.toFixed(0) + "ms"
            }
        }

        Row {
            Label {
                text: qsTr("UVC Mode")
            }

            ComboBox {
                id: modeComboBox
                textRole: "text"
                currentIndex: 4
                model: ListModel {
                    ListElement { text: qsTr("No stream"); value: 0 }
                    ListElement { text: qsTr("Video only"); value: 1 }
                    ListElement { text: qsTr("Demo + MixedMode"); value: 2 }
                    ListElement { text: qsTr("Demo + MixedMode + 3D Points"); value: 5 }
                    ListElement { text: qsTr("Debug + DebugStruct"); value: 3 }
                    ListElement { text: qsTr("Debug + DebugStruct + 3D Points"); value: 4 }
                }
                onCurrentIndexChanged: {
                    if (currentIndex >= 0 && control.stereo)
                        control.stereo.mode = model.get(currentIndex).value
                }
            }
        }
    }
}
