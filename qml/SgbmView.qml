import QtQuick 2.13
import QtQuick.Controls 2.13
import Qt.labs.settings 1.0
import ImagePainter 1.0

// The stereo depth picture, with read-outs at the mouse and in a box.
DisplayItem {
    id: control

    property var camera: null
    property bool horizontalFlip: false
    property bool verticalFlip: false
    property bool sgbmCenterPixelSwitchChecked: false
    property alias centerBox: centerBox
    // The pixel under the mouse, or the last one that was.
    property int _x: 0
    property int _y: 0

    readonly property var sgbm: camera && camera.sgbm ? camera.sgbm : null

    Settings {
        id: options
        category: "SgbmView"
        property alias horizontalFlip: control.horizontalFlip
        property alias verticalFlip: control.verticalFlip
    }

    ImagePainter {
        id: painter
        objectName: "painter"
        anchors.fill: parent
        source: control.sgbm ? control.sgbm.image : null
        horizontalFlip: control.horizontalFlip
        verticalFlip: control.verticalFlip

        onTopLeftPointChanged: console.log("width changed")

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
                if (control.sgbm) {
                    control.sgbm.setX(control._x)
                    control.sgbm.setY(control._y)
                }
            }
        }

        AverageBox {
            id: centerBox
            objectName: "centerBox"
            picture: painter
            stream: control.sgbm
            visible: control.sgbmCenterPixelSwitchChecked
            onDoubleClicked: control.doubleClicked()
        }
    }

    StreamLabel {
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.sgbm && control.sgbm.image
              ? "[SGBM]  " + control.sgbm.image.width + "x" + control.sgbm.image.height + "@"
                + control.sgbm.frameRate.toFixed(0) + "fps" : ""
    }

    StreamLabel {
        objectName: "depthLabel"
        anchors { bottom: parent.bottom; left: parent.left; margins: 5 }
        room: control.width - 10
        visible: control.sgbm !== null && control.sgbm.pixelShow
        text: control.sgbm ? "x: " + control._x + " ,y: " + control._y + " depth: " + control.sgbm.depth
                             + (control.sgbmCenterPixelSwitchChecked ? "  avg depth: " + control.sgbm.centerAvgPx : "")
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

    Flickable {
        id: settingsPage
        objectName: "settingsPage"
        anchors { fill: parent; topMargin: 40; rightMargin: 60; leftMargin: 10; bottomMargin: 10 }
        contentHeight: settings.height
        clip: true
        visible: settingsButton.checked && control.optionsVisible

        Column {
            id: settings

            Row {
                id: scrollSettings
                spacing: 15

                SwitchRow {
                    id: sgbmDewarpSwitch
                    objectName: "sgbmDewarpSwitch"
                    caption: qsTr("Dewarp:")
                    checked: true
                    onCheckedChanged: {
                        if (control.sgbm)
                            control.sgbm.setEnableDewarp(checked)
                    }
                }

                SwitchRow {
                    id: sgbmCenterPixelSwitch
                    objectName: "sgbmCenterPixelSwitch"
                    caption: qsTr("AVG PX:")
                    checked: false
                    onCheckedChanged: {
                        if (control.sgbm)
                            control.sgbm.setEnableCenterAvgPx(checked)
                    }
                }

                SwitchRow {
                    id: sgbmDepthOrDisparitySwitch
                    objectName: "sgbmDepthOrDisparitySwitch"
                    caption: qsTr("Depth:")
                    checked: true
                    onCheckedChanged: {
                        if (control.sgbm)
                            control.sgbm.setDepth(checked)
                    }
                }

                SwitchRow {
                    id: sgbmFillholesOrMaskSwitch
                    objectName: "sgbmFillholesOrMaskSwitch"
                    caption: qsTr("Fillholes:")
                    checked: true
                    onCheckedChanged: {
                        if (control.sgbm)
                            control.sgbm.setEnableFillHoles(checked)
                    }
                }

                SwitchRow {
                    id: sgbmSourceSwitch
                    objectName: "sgbmSourceSwitch"
                    caption: qsTr("Show depth:")
                    checked: false
                    onCheckedChanged: {
                        if (control.sgbm)
                            control.sgbm.pixelShow = checked
                    }
                }
            }

            Row {
                spacing: 5

                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Resolution:     ")
                }

                ComboBox {
                    id: sgbmResolutionComboBox
                    objectName: "sgbmResolutionComboBox"
                    textRole: "text"
                    currentIndex: 0
                    model: ListModel {
                        ListElement { text: "VGA"; value: 0 }
                        ListElement { text: "720P"; value: 1 }
                    }
                    onCurrentIndexChanged: {
                        if (currentIndex >= 0 && control.sgbm)
                            control.sgbm.setSgbmResolution(model.get(currentIndex).value)
                    }
                }
            }

            SpinRow {
                id: sgbmZoomSpinBox
                objectName: "sgbmZoomSpinBox"
                caption: qsTr("Zoom [%]")
                from: 100
                to: 500
                stepSize: 10
                value: 100
                onValueChanged: {
                    if (control.sgbm)
                        control.sgbm.setZoomFactor(value / 100)
                }
            }

            SpinRow {
                id: sgbmBaselineSpinBox
                objectName: "sgbmBaselineSpinBox"
                caption: qsTr("baseline [mm]")
                from: 1
                to: 120
                stepSize: 1
                value: 80
                onValueChanged: {
                    if (control.sgbm)
                        control.sgbm.setBaseline(value / 1000)
                }
            }

            SpinRow {
                id: sgbmFovSpinBox
                objectName: "sgbmFovSpinBox"
                caption: qsTr("FOV [px]")
                from: 50
                to: 300
                stepSize: 1
                value: 96
                onValueChanged: {
                    if (control.sgbm)
                        control.sgbm.setFOV(value)
                }
            }

            SpinRow {
                id: sgbmMaxDisparitySpinBox
                objectName: "sgbmMaxDisparitySpinBox"
                from: 0
                to: 255
                stepSize: 1
                value: 230
                onValueChanged: {
                    if (control.sgbm)
                        control.sgbm.setMaxDisparity(value)
                }
            }

            SpinRow {
                id: sgbmModeSpinBox
                objectName: "sgbmModeSpinBox"
                caption: qsTr("Mode")
                from: 0
                to: 2
                stepSize: 1
                value: 0
            }

            SpinRow {
                id: sgbmMaxDistanceSpinBox
                objectName: "sgbmMaxDistanceSpinBox"
                caption: qsTr("Max Distance[mm]")
                from: 1001
                to: 65535
                stepSize: 1
                value: 8000
                onValueChanged: {
                    if (control.sgbm)
                        control.sgbm.setMaxDistance(value)
                }
            }

            SpinRow {
                id: sgbmMinDistanceSpinBox
                objectName: "sgbmMinDistanceSpinBox"
                caption: qsTr("Min Distance[mm]")
                from: 1
                to: 65535
                stepSize: 1
                value: 100
                onValueChanged: {
                    if (control.sgbm)
                        control.sgbm.setMinDistance(value)
                }
            }

            Column {
                objectName: "holeColumn"
                visible: control.optionsVisible && sgbmFillholesOrMaskSwitch.checked && sgbmDepthOrDisparitySwitch.checked

                SpinRow {
                    id: sgbmHoleSizeSpinBox
                    objectName: "sgbmHoleSizeSpinBox"
                    caption: qsTr("Hole size")
                    from: 0
                    to: 5
                    stepSize: 1
                    value: 0
                    onValueChanged: {
                        if (control.sgbm)
                            control.sgbm.setHoleSize(value)
                    }
                }

                SpinRow {
                    id: sgbmHoleMinSpinBox
                    objectName: "sgbmHoleMinSpinBox"
                    caption: qsTr("Hole min")
                    from: 1
                    to: 1000
                    stepSize: 1
                    value: 500
                    onValueChanged: {
                        if (control.sgbm)
                            control.sgbm.setHoleMin(value)
                    }
                }

                SpinRow {
                    id: sgbmHoleMaxSpinBox
                    objectName: "sgbmHoleMaxSpinBox"
                    caption: qsTr("Hole max")
                    from: 1001
                    to: 65535
                    stepSize: 1
                    value: 10000
                    onValueChanged: {
                        if (control.sgbm)
                            control.sgbm.setHoleMax(value)
                    }
                }
            }

            Column {
                objectName: "boxColumn"
                visible: control.optionsVisible && sgbmCenterPixelSwitch.checked

                SpinRow {
                    id: sgbmCenterWidthSpinBox
                    objectName: "sgbmCenterWidthSpinBox"
                    caption: qsTr("AVG PX Width")
                    from: 1
                    to: 100
                    stepSize: 1
                    value: 50
                    onValueChanged: {
                        if (control.sgbm)
                            control.sgbm.setCenterAvgWidth(value)
                        centerBox.width = value
                    }
                }

                SpinRow {
                    id: sgbmCenterHeightSpinBox
                    objectName: "sgbmCenterHeightSpinBox"
                    caption: qsTr("AVG PX Height")
                    from: 1
                    to: 100
                    stepSize: 1
                    value: 50
                    onValueChanged: {
                        if (control.sgbm)
                            control.sgbm.setCenterAvgHeight(value)
                        centerBox.height = value
                    }
                }
            }
        }
    }
}
