import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import QtQml.Models 2.13
import Qt.labs.settings 1.1

// The page of one device: the drawer with every switch and setting at the left, the views of the streams that are on
// beside it.
Item {
    id: view

    property var camera: null
    property int topMargin: 0
    property alias cameraDrawer: drawer
    readonly property bool landscape: width > height
    property real rcScale: 0.9
    property alias saveSettings: presets.saveSettings
    readonly property alias defaultSettings: presets.defaultSettings
    readonly property alias unusedModel: content.unusedModel
    readonly property alias uniqueModel: content.uniqueModel
    readonly property alias sideModel: content.sideModel
    readonly property alias gridView: content.gridView
    readonly property alias uniqueView: content.uniqueView
    readonly property alias sideView: content.sideView

    readonly property bool compact: width < 750
    property bool completed: false

    // Numbers of the colour maps; what is left out isn't offered.
    readonly property var colorSchemes: [
        { name: "DEFAULT", value: 0 },
        { name: "BONE", value: 1 },
        { name: "JET", value: 2 },
        { name: "WINTER", value: 3 },
        { name: "OCEAN", value: 5 },
        { name: "SUMMER", value: 6 },
        { name: "CIVIDIS", value: 17 }
    ]

    // The control and its property that belong to each row of the presets' table.
    readonly property var presetControls: [
        [imumodeComboBox, "currentIndex"],
        [modeComboBox, "currentIndex"],
        [sourceCheckbox, "checked"],
        [planesSourceComboBox, "currentIndex"],
        [tofShowDepthSwitch, "checked"],
        [tofCenterPixelSwitch, "checked"],
        [colorSchemeCombobox, "currentIndex"],
        [maxDistanceSlider, "value"],
        [minDistanceSlider, "value"],
        [tofFramerateSlider, "value"],
        [distanceModeComboBox, "currentIndex"],
        [frequencyCombox, "currentIndex"],
        [resolutionCombox, "currentIndex"],
        [fpscombox, "currentIndex"],
        [sonyTofModecombox, "currentIndex"],
        [resolutionComboBox, "currentIndex"],
        [rgbFramerateSlider, "value"],
        [sgbmDewarpSwitch, "checked"],
        [sgbmCenterPixelSwitch, "checked"],
        [sgbmDepthOrDisparitySwitch, "checked"],
        [sgbmFillholesOrMaskSwitch, "checked"],
        [sgbmSourceSwitch, "checked"],
        [sgbmResolutionComboBox, "currentIndex"],
        [sgbmZoomSpinBox, "value"],
        [sgbmBaselineSpinBox, "value"],
        [sgbmFovSpinBox, "value"],
        [sgbmMaxDisparitySpinBox, "value"],
        [sgbmModeSpinBox, "value"],
        [sgbmMaxDistanceSpinBox, "value"],
        [sgbmMinDistanceSpinBox, "value"],
        [sgbmHoleSizeSpinBox, "value"],
        [sgbmHoleMinSpinBox, "value"],
        [sgbmHoleMaxSpinBox, "value"],
        [sgbmCenterWidthSpinBox, "value"],
        [sgbmCenterHeightSpinBox, "value"],
        [menuAutoCloseCheckbox, "checked"],
        [multiSlamCheckbox, "checked"]
    ]

    /// Whether the device has this model.
    function has(model) {
        return !!camera && !!camera[model]
    }

    /// Whether the ToF switch may be clicked. What the other models have as a property is a method here.
    function tofReady() {
        if (!has("tof"))
            return true
        const ready = camera.tof.isEnable
        return typeof ready === "function" ? camera.tof.isEnable() : ready !== false
    }

    function madeBy(manufacturer) {
        return has("tof") && camera.tof.manufacturer === manufacturer
    }

    /// The value of a combo box's current item; -1 without one.
    function itemValue(box) {
        if (box.currentIndex < 0)
            return -1
        return box.isListModel ? box.model.get(box.currentIndex).value : box.model[box.currentIndex].value
    }

    // Presets

    /// Moves the controls to the values that it is called with, one an argument, in the order of the presets' table;
    /// their handlers reach the device. What a damaged or foreign store holds beyond a control's entries, or where it
    /// holds an empty text for a number, leaves that control as it is.
    function setAllSettings() {
        const values = arguments
        presetControls.forEach(function(entry, i) {
            const control = entry[0]
            const property = entry[1]
            const value = property === "checked" ? !!values[i] : values[i] === "" ? NaN : Number(values[i])
            const fits = property !== "currentIndex" || (value >= -1 && value < control.count)
            if (control[property] !== value && !isNaN(value) && fits)
                control[property] = value
        })
    }

    function saveAllSettings(index, name) {
        presets.write(index, name, presetControls.map(function(entry) { return entry[0][entry[1]] }))
    }

    function resortAllSettings(to, from) {
        presets.copy(to, from)
    }

    function loadPreset(fallbacks) {
        // The box takes its first index while the stored values are still on their way.
        if (!completed)
            return
        const index = allSettingsCombobox.currentIndex
        if (index === 0) {
            setAllSettings.apply(view, presets.defaults())
        } else if (index > 0) {
            fallbacks.sgbmResolution = has("sgbm") ? camera.sgbm.resolution : 0
            setAllSettings.apply(view, presets.values(index - 1, fallbacks))
        }
    }

    function savePreset() {
        if (allSettingsCombobox.count >= 11)
            return
        const name = allSettingsCombobox.contTxt.text
        saveAllSettings(allSettingsCombobox.count - 1, name)
        presetNames.append({ text: name })
        allSettingsCombobox.currentIndex = allSettingsCombobox.count - 1
    }

    function deletePreset() {
        const index = allSettingsCombobox.currentIndex
        const count = allSettingsCombobox.count
        for (let i = index - 1; i <= count - 3; ++i)
            resortAllSettings(i, i + 1)
        presets.release(count - 2)
        presetNames.remove(index)
        if (allSettingsCombobox.count - 1 < index)
            allSettingsCombobox.currentIndex = allSettingsCombobox.count - 1
    }

    // Streams

    /// The picture callback of the stereo model goes in before SLAM starts, so that SLAM works while stereo is off.
    function controlSlam(checked) {
        const onEdge = has("edge") && camera.edge.enabled
        console.log("camera.edge.enabled == " + (onEdge ? "true" : "false"))
        if (has("stereo"))
            camera.stereo.registerFisheyeCameras(checked)
        if (onEdge)
            camera.edge.control(checked)
        else if (has("slam"))
            camera.slam.control(checked)
    }

    function clearPlanes(source) {
        const edge = source > 1
        const planes = edge ? camera.edgePlanes : camera.planes
        if (!planes)
            return
        if (source % 2 === 0)
            planes.clearTofPlanes()
        else
            planes.clearStereoPlanes()
    }

    function applyCnnSource() {
        const source = itemValue(cnnCombobox)
        if (source < 0)
            return
        rgbView.rgbPainter.CNNRunning = source === 3
        stereoView.setCNNRunning(source !== 3)
        if (has("objects")) {
            camera.objects.source = source
            camera.objects.updateCNNSource()
        }
    }

    function enableCnn(checked) {
        if (checked) {
            if (has("objects")) {
                camera.objects.setModelDescriptor(tools.filepath(cnnModelDescriptor.model))
                camera.objects.setModel(tools.filepath(cnnModel.model))
            }
            applyCnnSource()
        } else {
            rgbView.rgbPainter.CNNRunning = false
            stereoView.setCNNRunning(false)
        }
        if (has("objects")) {
            camera.objects.setEnabled(checked)
            camera.objects.control(checked)
        }
    }

    // Views

    function saveImage(item, name) {
        item.path = listener.cameras[uuidSelector.currentIndex].saveImages(name)
        showPath(item)
    }

    function showPath(item) {
        item.imgPopup.imgText.text = qsTr("Save image to: ") + item.path
        item.imgPopup.open()
    }

    function tellSize(model, item) {
        if (has(model))
            camera[model].setViewSize(item.width, item.height)
    }

    Component.onCompleted: {
        if (content.mode !== 1)
            content.mode = 0
        completed = true
        presets.names().forEach(function(name) { presetNames.append({ text: name }) })
        loadPreset({})
    }

    PresetStore {
        id: presets
    }

    Settings {
        category: "CameraView"
        property alias mode: content.mode
    }

    QtObject {
        id: p
        objectName: "p"

        readonly property int count: [imuButton, stereoButton, rgbButton, tofButton, slamButton, sgbmButton, tof3DButton,
            irButton].filter(function(button) { return button.checked }).length
    }

    ButtonGroup {
        id: group

        exclusive: false
    }

    ListModel {
        id: presetNames

        ListElement { text: "Default" }
    }

    Timer {
        id: tofFramerateTimer

        interval: 500
        onTriggered: if (view.has("tof")) camera.tof.framerate = tofFramerateSlider.value
    }

    Timer {
        id: rgbFramerateTimer

        interval: 500
        onTriggered: if (view.has("rgb")) camera.rgb.framerate = rgbFramerateSlider.value
    }

    Popup {
        id: drawer
        objectName: "drawer"

        // Below all else that opens over the page.
        z: -1

        width: Math.max(0.19 * parent.width, 340)
        height: parent.height
        padding: 0
        modal: false
        focus: true
        // With the page, which has the window to itself or shares it with those of other devices.
        visible: !view.SwipeView.view || view.SwipeView.isCurrentItem
        closePolicy: menuAutoCloseCheckbox.checked ? Popup.CloseOnEscape | Popup.CloseOnReleaseOutside
                                                   : Popup.NoAutoClose
        font.pointSize: 10

        background: Rectangle {
            color: "#242C33"
        }

        contentItem: ColumnLayout {
            spacing: 0

            // A popup that closes on Escape keeps the shortcuts of all that lies below it to itself: of several drawers
            // the top one answers.
            Shortcut {
                sequence: "Ctrl+Q"
                // While the drawer is closed this would be a second one beside the window's, and neither would fire.
                enabled: drawer.visible && menuAutoCloseCheckbox.checked
                onActivated: Qt.quit()
            }

            Flickable {
                id: flickable
                objectName: "flickable"

                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                contentWidth: width
                contentHeight: buttonColumn.height
                interactive: contentHeight > height
                boundsBehavior: Flickable.StopAtBounds

                ScrollBar.vertical: ScrollBar {
                    width: 8
                }

                Column {
                    id: buttonColumn
                    objectName: "buttonColumn"

                    width: flickable.width
                    topPadding: 15
                    bottomPadding: 15
                    spacing: 2

                    // Device

                    SectionBody {
                        PanelRow {
                            caption: qsTr("UUID: ")
                            captionWidth: 60
                            height: 28

                            Label {
                                objectName: "uuidLabel"
                                width: Math.min(implicitWidth, drawer.width - 100)
                                text: view.camera ? view.camera.uuid : ""
                                elide: Text.ElideMiddle
                                horizontalAlignment: Text.AlignRight
                            }
                        }

                        PanelRow {
                            caption: qsTr("Preset: ")
                            captionWidth: 60

                            CustomEditCombobox {
                                id: allSettingsCombobox
                                objectName: "allSettingsCombobox"

                                width: 150
                                anchors.verticalCenter: parent.verticalCenter
                                transformOrigin: Item.Right
                                editable: true
                                textRole: "text"
                                model: presetNames
                                onActivated: view.loadPreset({ tofColorize: 0, menuAutoClose: false })
                                onCurrentIndexChanged: view.loadPreset({ tofColorize: false, menuAutoClose: true })
                            }

                            ToolButton {
                                objectName: "savePresetButton"
                                text: qsTr(" Save ")
                                onClicked: view.savePreset()
                            }

                            ToolButton {
                                objectName: "deletePresetButton"
                                text: qsTr("Delete")
                                enabled: allSettingsCombobox.currentIndex !== 0
                                onClicked: view.deletePreset()
                            }
                        }
                    }

                    // IMU

                    SectionHeader {
                        CustomLabel {
                            id: imuText
                            objectName: "imuText"

                            text: qsTr("IMU")
                        }

                        StreamSwitch {
                            id: imuButton
                            objectName: "imuButton"

                            compact: view.compact
                            enabled: view.has("imu")
                            ButtonGroup.group: group
                            onCheckedChanged: content.requestUpdateGrid()
                            onClicked: camera.imu.control(checked)
                        }
                    }

                    SectionBody {
                        visible: imuText.checked

                        PanelRow {
                            id: imuModeRow

                            caption: qsTr("IMU Mode")

                            PanelComboBox {
                                id: imumodeComboBox
                                objectName: "imumodeComboBox"

                                implicitWidth: 0.8 * (imuModeRow.width - imuModeRow.captionTextWidth)
                                isListModel: true
                                currentIndex: 1
                                model: ListModel {
                                    ListElement { name: qsTr("VSlam only"); value: 0 }
                                    ListElement { name: qsTr("VSlam+IMU"); value: 1 }
                                    ListElement { name: qsTr("IMU only"); value: 2 }
                                    ListElement { name: qsTr("Fusion on host"); value: 4 }
                                }
                                onCurrentIndexChanged: {
                                    if (currentIndex >= 0 && view.has("imu"))
                                        camera.imu.mode = view.itemValue(imumodeComboBox)
                                }
                            }
                        }
                    }

                    // Stereo

                    SectionHeader {
                        CustomLabel {
                            id: stereoText
                            objectName: "stereoText"

                            text: qsTr("Stereo")
                        }

                        StreamSwitch {
                            id: stereoButton
                            objectName: "stereoButton"

                            compact: view.compact
                            enabled: view.has("stereo")
                            ButtonGroup.group: group
                            onCheckedChanged: content.requestUpdateGrid()
                            onClicked: camera.stereo.control(checked)
                        }
                    }

                    SectionBody {
                        visible: stereoText.checked

                        Column {
                            visible: false

                            PanelRow {
                                caption: qsTr("Resolution:     ")

                                PanelComboBox {
                                    id: stereoResolutionComboBox
                                    objectName: "stereoResolutionComboBox"

                                    width: 150
                                    isListModel: true
                                    currentIndex: 0
                                    model: ListModel {
                                        ListElement { name: qsTr("VGA"); value: 2 }
                                        ListElement { name: qsTr("720P"); value: 3 }
                                    }
                                    onCurrentIndexChanged: {
                                        if (!view.has("stereo"))
                                            return
                                        if (currentIndex === 1 && slamButton.checked)
                                            slamButton.checked = false
                                        camera.stereo.setResolution(view.itemValue(stereoResolutionComboBox))
                                    }
                                }
                            }
                        }

                        PanelCheckBox {
                            id: autoExposure
                            objectName: "autoExposure"

                            scale: view.rcScale
                            text: qsTr("Auto Exposure")
                            checked: true
                            onCheckedChanged: if (view.has("stereo")) camera.stereo.autoExposure = checked
                        }

                        Column {
                            id: exposureGrid
                            objectName: "exposureGrid"

                            width: parent.width
                            spacing: 2
                            enabled: !autoExposure.checked

                            PanelSlider {
                                id: gainSlider
                                objectName: "gainSlider"

                                caption: qsTr("Gain:")
                                valueWidth: 35
                                from: 1
                                to: 16
                                stepSize: 1
                                value: 10
                                onValueChanged: {
                                    if (!autoExposure.checked && view.has("stereo"))
                                        camera.stereo.gain = value
                                }
                            }

                            PanelSlider {
                                id: brightnessSlider
                                objectName: "brightnessSlider"

                                caption: qsTr("Brightness:")
                                valueWidth: 35
                                from: 1
                                to: 65
                                stepSize: 1
                                value: 10
                                unit: "ms"
                                onValueChanged: {
                                    if (!autoExposure.checked && view.has("stereo"))
                                        camera.stereo.brightness = value
                                }
                            }
                        }

                        PanelRow {
                            caption: qsTr("UVC Mode")
                            visible: stereoText.checked && advanced

                            PanelComboBox {
                                id: modeComboBox
                                objectName: "modeComboBox"

                                width: 250
                                isListModel: true
                                currentIndex: 4
                                model: ListModel {
                                    ListElement { name: qsTr("No stream"); value: 0 }
                                    ListElement { name: qsTr("Video only"); value: 1 }
                                    ListElement { name: qsTr("Demo + MixedMode"); value: 2 }
                                    ListElement { name: qsTr("Demo + MixedMode + 3D Points"); value: 5 }
                                    ListElement { name: qsTr("Debug + DebugStruct"); value: 3 }
                                    ListElement { name: qsTr("Debug + DebugStruct + 3D Points"); value: 4 }
                                }
                                onCurrentIndexChanged: {
                                    if (currentIndex < 0)
                                        return
                                    const value = view.itemValue(modeComboBox)
                                    console.debug("Mode set to", value)
                                    if (view.has("stereo"))
                                        camera.stereo.mode = value
                                }
                            }
                        }
                    }

                    // SLAM

                    SectionHeader {
                        CustomLabel {
                            id: slamText
                            objectName: "slamText"

                            text: qsTr("SLAM")
                        }

                        // A disabled switch isn't hovered: the hint belongs to the item around it.
                        Item {
                            id: slamArea

                            width: slamButton.width
                            height: slamButton.height

                            MouseArea {
                                id: slamHover

                                anchors.fill: parent
                                acceptedButtons: Qt.NoButton
                                hoverEnabled: true
                            }

                            ToolTip {
                                objectName: "slamHint"
                                x: slamArea.width
                                y: (slamArea.height - height) / 2
                                delay: 500
                                timeout: 5000
                                visible: (slamHover.containsMouse || slamButton.hovered) && stereoView.resolutionIndex === 1
                                text: qsTr("If you want to turn on slam, please set the stereo resolution to VGA!")
                            }

                            StreamSwitch {
                                id: slamButton
                                objectName: "slamButton"

                                compact: view.compact
                                enabled: view.has("slam")
                                         && !(view.has("stereo") && stereoResolutionComboBox.currentIndex === 1)
                                ButtonGroup.group: group
                                onCheckedChanged: content.requestUpdateGrid()
                                onClicked: view.controlSlam(checked)
                            }
                        }
                    }

                    SectionBody {
                        visible: slamText.checked

                        PanelCheckBox {
                            id: multiSlamCheckbox
                            objectName: "multiSlamCheckbox"

                            scale: view.rcScale
                            text: qsTr("Multi-view display Slam")
                            checked: true
                        }

                        PanelCheckBox {
                            id: sourceCheckbox
                            objectName: "sourceCheckbox"

                            scale: view.rcScale
                            text: qsTr("Planes source:")
                            checked: true
                        }

                        PanelRow {
                            captionWidth: 0

                            PanelComboBox {
                                id: planesSourceComboBox
                                objectName: "planesSourceComboBox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                currentIndex: 0
                                model: ListModel {
                                    ListElement { name: qsTr("Host - TOF"); value: 0 }
                                    ListElement { name: qsTr("Host - Stereo"); value: 1 }
                                    ListElement { name: qsTr("Edge - TOF"); value: 2 }
                                    ListElement { name: qsTr("Edge - Stereo"); value: 3 }
                                }
                            }
                        }

                        Button {
                            objectName: "clearPlanesButton"
                            scale: 0.8
                            transformOrigin: Item.Left
                            text: qsTr("Clear planes")
                            enabled: !!view.camera
                            onClicked: view.clearPlanes(planesSourceComboBox.currentIndex)
                        }
                    }

                    // TOF

                    SectionHeader {
                        CustomLabel {
                            id: tofText
                            objectName: "tofText"

                            text: qsTr("TOF")
                        }

                        StreamSwitch {
                            id: tofButton
                            objectName: "tofButton"

                            compact: view.compact
                            enabled: view.has("tof")
                            ready: view.tofReady()
                            ButtonGroup.group: group
                            onCheckedChanged: {
                                content.requestUpdateGrid()
                                if (!checked) {
                                    rgbdButton.checked = false
                                    irButton.checked = false
                                }
                            }
                            // Nothing tells when the model settles, so each press asks it anew.
                            onPressed: ready = Qt.binding(view.tofReady)
                            onClicked: if (view.has("tof") && view.tofReady()) camera.tof.control(checked)
                        }
                    }

                    SectionBody {
                        visible: tofText.checked

                        PanelSwitch {
                            id: tofShowDepthSwitch
                            objectName: "tofShowDepthSwitch"

                            caption: qsTr("Show depth:")
                            onCheckedChanged: if (view.has("tof")) camera.tof.pixelShow = checked
                        }

                        PanelSwitch {
                            id: tofCenterPixelSwitch
                            objectName: "tofCenterPixelSwitch"

                            caption: qsTr("AVG PX:")
                            onCheckedChanged: if (view.has("tof")) camera.tof.setEnableCenterAvgPx(checked)
                        }

                        PanelRow {
                            caption: qsTr("Color Scheme:")

                            PanelComboBox {
                                id: colorSchemeCombobox
                                objectName: "colorSchemeCombobox"

                                width: 0.7 * buttonColumn.width
                                model: view.colorSchemes
                                onCurrentIndexChanged: {
                                    if (currentIndex >= 0)
                                        tofView.tofPainter.colorIndex = view.itemValue(colorSchemeCombobox)
                                }
                            }
                        }

                        PanelSlider {
                            id: maxDistanceSlider
                            objectName: "maxDistanceSlider"

                            caption: qsTr("Maximal distance:")
                            from: 0.1
                            to: 7.5
                            value: 1.0
                            decimals: 1
                            unit: "m"
                            onValueChanged: if (view.has("tof")) camera.tof.maxDistance = value
                        }

                        PanelSlider {
                            id: minDistanceSlider
                            objectName: "minDistanceSlider"

                            caption: qsTr("Minimum distance:")
                            from: 0.1
                            to: 7.5
                            value: 0.1
                            decimals: 1
                            unit: "m"
                            onValueChanged: if (view.has("tof")) camera.tof.minDistance = value
                        }

                        PanelSlider {
                            id: tofFramerateSlider
                            objectName: "tofFramerateSlider"

                            visible: tofText.checked && view.madeBy(0)
                            caption: qsTr("Framerate:")
                            from: 5
                            to: 30
                            stepSize: 5
                            value: 15
                            unit: "Hz"
                            onValueChanged: tofFramerateTimer.restart()
                        }

                        PanelRow {
                            visible: false
                            caption: qsTr("Mode:")

                            PanelComboBox {
                                id: tofmodeComboBox
                                objectName: "tofmodeComboBox"

                                width: 0.7 * buttonColumn.width
                                currentIndex: 1
                                model: [
                                    { name: "IQMIX_DF", value: 0 },
                                    { name: "IQMIX_SF", value: 1 },
                                    { name: "LABELIZE_DF", value: 2 },
                                    { name: "LABELIZE_SF", value: 3 },
                                    { name: "M2MIX_DF", value: 4 },
                                    { name: "M2MIX_SF", value: 5 }
                                ]
                                onCurrentIndexChanged: {
                                    if (view.has("tof"))
                                        camera.tof.setLibWorkMode(view.itemValue(tofmodeComboBox))
                                }
                            }
                        }

                        PanelRow {
                            visible: tofText.checked && view.madeBy(0)
                            caption: qsTr("Distance Mode:")

                            PanelComboBox {
                                id: distanceModeComboBox
                                objectName: "distanceModeComboBox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                currentIndex: 1
                                model: ListModel {
                                    ListElement { name: qsTr("Short"); value: 1 }
                                    ListElement { name: qsTr("Middle"); value: 1 }
                                    ListElement { name: qsTr("Long"); value: 2 }
                                }
                                onCurrentIndexChanged: {
                                    if (view.has("tof"))
                                        camera.tof.setDistanceMode(view.itemValue(distanceModeComboBox))
                                }
                            }
                        }

                        PanelRow {
                            visible: tofText.checked && view.madeBy(1)
                            caption: qsTr("Frequency")

                            PanelComboBox {
                                id: frequencyCombox
                                objectName: "frequencyCombox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                model: ListModel {
                                    ListElement { name: "SF" }
                                    ListElement { name: "DF" }
                                }
                                onCurrentIndexChanged: if (view.has("tof")) camera.tof.frequency = currentIndex
                            }
                        }

                        PanelRow {
                            visible: tofText.checked && view.madeBy(1)
                            caption: qsTr("Resolution: ")

                            PanelComboBox {
                                id: resolutionCombox
                                objectName: "resolutionCombox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                model: ListModel {
                                    ListElement { name: "VGA" }
                                    ListElement { name: "QVGA" }
                                }
                                onCurrentIndexChanged: if (view.has("tof")) camera.tof.resolution = currentIndex
                            }
                        }

                        PanelRow {
                            visible: tofText.checked && view.madeBy(1)
                            caption: qsTr("FPS: ")

                            PanelComboBox {
                                id: fpscombox
                                objectName: "fpscombox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                currentIndex: 5
                                model: ListModel {
                                    ListElement { name: "5" }
                                    ListElement { name: "10" }
                                    ListElement { name: "15" }
                                    ListElement { name: "20" }
                                    ListElement { name: "25" }
                                    ListElement { name: "30" }
                                }
                                onCurrentIndexChanged: if (view.has("tof")) camera.tof.fps = currentIndex
                            }
                        }

                        PanelRow {
                            visible: tofText.checked && view.madeBy(1)
                            caption: qsTr("Tof Mode: ")

                            PanelComboBox {
                                id: sonyTofModecombox
                                objectName: "sonyTofModecombox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                model: ListModel {
                                    ListElement { name: "IQMIX" }
                                    ListElement { name: "LABELIZE" }
                                    ListElement { name: "M2MIX" }
                                }
                                onCurrentIndexChanged: if (view.has("tof")) camera.tof.mode = currentIndex
                            }
                        }
                    }

                    // TOF IR

                    SectionHeader {
                        CustomLabel {
                            id: irText
                            objectName: "irText"

                            text: qsTr("TOF IR")
                        }

                        StreamSwitch {
                            id: irButton
                            objectName: "irButton"

                            compact: view.compact
                            enabled: tofButton.checked && view.has("tofIr")
                            ButtonGroup.group: group
                            onCheckedChanged: content.requestUpdateGrid()
                            onClicked: camera.tofIr.control(checked)
                        }
                    }

                    SectionBody {
                        visible: irText.checked

                        PanelSlider {
                            id: tofgammaSlider
                            objectName: "tofgammaSlider"

                            caption: qsTr("Tof gamma:")
                            from: 0
                            to: 10
                            stepSize: 0.1
                            value: 2.8
                            decimals: 1
                            onValueChanged: if (view.has("tof")) camera.tof.setTofIrGamma(value)
                        }
                    }

                    // RGB

                    SectionHeader {
                        CustomLabel {
                            id: rgbText
                            objectName: "rgbText"

                            text: qsTr("RGB")
                        }

                        StreamSwitch {
                            id: rgbButton
                            objectName: "rgbButton"

                            compact: view.compact
                            enabled: view.has("rgb")
                            ready: !view.has("rgb") || camera.rgb.isEnable
                            ButtonGroup.group: group
                            onCheckedChanged: {
                                content.requestUpdateGrid()
                                if (!checked)
                                    rgbdButton.checked = false
                            }
                            onClicked: if (camera.rgb.isEnable) camera.rgb.control(checked)
                        }
                    }

                    SectionBody {
                        visible: rgbText.checked

                        PanelRow {
                            id: rgbResolutionRow

                            caption: qsTr("Resolution: ")

                            PanelComboBox {
                                id: resolutionComboBox
                                objectName: "resolutionComboBox"

                                implicitWidth: 0.9 * (rgbResolutionRow.width - rgbResolutionRow.captionTextWidth)
                                model: [
                                    { name: "1920x1080", value: 0 },
                                    { name: "1280x720", value: 1 },
                                    { name: "640x480", value: 2 }
                                ]
                                onCurrentIndexChanged: {
                                    if (view.has("rgb"))
                                        camera.rgb.resolution = view.itemValue(resolutionComboBox)
                                }
                            }
                        }

                        PanelRow {
                            visible: rgbText.checked && !!view.camera && view.camera.afRGB === true
                            caption: qsTr("RGB MODE:")

                            StreamSwitch {
                                id: rgbmodeButton
                                objectName: "rgbmodeButton"

                                font.pointSize: 11
                                onText: qsTr("MF")
                                offText: qsTr("AF")
                                ready: !view.has("rgb") || camera.rgb.isEnable
                                ButtonGroup.group: group
                                onCheckedChanged: {
                                    if (view.has("rgb") && camera.rgb.isEnable)
                                        camera.rgb.setRGBMode(checked ? 1 : 0)
                                }
                            }
                        }

                        PanelSlider {
                            id: rgbDistanceSlider
                            objectName: "rgbDistanceSlider"

                            visible: rgbText.checked && !!view.camera && view.camera.afRGB === true
                            caption: qsTr("Focal Distance:")
                            from: 1
                            to: 255
                            stepSize: 1
                            value: 255
                            onValueChanged: if (view.has("rgb")) camera.rgb.setRGBDistance(value)
                        }

                        PanelSlider {
                            id: rgbFramerateSlider
                            objectName: "rgbFramerateSlider"

                            caption: qsTr("Framerate:")
                            from: 6
                            to: 30
                            stepSize: 1
                            value: 30
                            unit: "Hz"
                            onValueChanged: rgbFramerateTimer.restart()
                        }

                        Row {
                            visible: false

                            Button {
                                objectName: "previewButton"
                                text: qsTr("Preview")
                                onClicked: camera.rgb.mode = 0
                            }

                            Button {
                                objectName: "captureButton"
                                text: qsTr("Capture")
                                onClicked: camera.rgb.mode = 1
                            }

                            Button {
                                objectName: "videoButton"
                                text: qsTr("Video")
                                onClicked: camera.rgb.mode = 2
                            }
                        }
                    }

                    // RGB2

                    SectionHeader {
                        visible: !!view.camera && view.camera.rgb2 === true

                        CustomLabel {
                            id: rgb2Text
                            objectName: "rgb2Text"

                            text: qsTr("RGB2")
                        }

                        StreamSwitch {
                            id: rgb2Button
                            objectName: "rgb2Button"

                            compact: view.compact
                            enabled: view.has("rgb")
                            ready: !view.has("rgb") || camera.rgb.isEnable2
                            ButtonGroup.group: group
                            onCheckedChanged: content.requestUpdateGrid()
                            onClicked: if (camera.rgb.isEnable2) camera.rgb.control(checked, 1)
                        }
                    }

                    // RGBD

                    SectionHeader {
                        CustomLabel {
                            id: rgbdText
                            objectName: "rgbdText"

                            text: qsTr("RGBD")
                        }

                        StreamSwitch {
                            id: rgbdButton
                            objectName: "rgbdButton"

                            readonly property bool possible: view.has("rgb") && view.has("tof") && view.has("rgbd")

                            compact: view.compact
                            enabled: possible && camera.rgbd.enable
                            ready: possible
                            ButtonGroup.group: group
                            onCheckedChanged: content.requestUpdateGrid()
                            onClicked: camera.rgbd.control(checked)
                        }
                    }

                    // SGBM

                    SectionHeader {
                        CustomLabel {
                            id: sgbmText
                            objectName: "sgbmText"

                            text: qsTr("SGBM")
                        }

                        StreamSwitch {
                            id: sgbmButton
                            objectName: "sgbmButton"

                            compact: view.compact
                            enabled: view.has("sgbm")
                            ready: !view.has("sgbm") || camera.sgbm.isEnable
                            ButtonGroup.group: group
                            onCheckedChanged: content.requestUpdateGrid()
                            onClicked: if (view.has("sgbm") && camera.sgbm.isEnable) camera.sgbm.control(checked)
                        }
                    }

                    SectionBody {
                        visible: sgbmText.checked

                        Column {
                            width: parent.width
                            padding: 5
                            spacing: 15

                            PanelSwitch {
                                id: sgbmDewarpSwitch
                                objectName: "sgbmDewarpSwitch"

                                width: parent.width - 10
                                caption: qsTr("Dewarp:")
                                checked: true
                                onCheckedChanged: if (view.has("sgbm")) camera.sgbm.setEnableDewarp(checked)
                            }

                            PanelSwitch {
                                id: sgbmCenterPixelSwitch
                                objectName: "sgbmCenterPixelSwitch"

                                width: parent.width - 10
                                caption: qsTr("AVG PX:")
                                onCheckedChanged: if (view.has("sgbm")) camera.sgbm.setEnableCenterAvgPx(checked)
                            }

                            PanelSwitch {
                                id: sgbmDepthOrDisparitySwitch
                                objectName: "sgbmDepthOrDisparitySwitch"

                                width: parent.width - 10
                                caption: qsTr("Depth:")
                                checked: true
                                onCheckedChanged: if (view.has("sgbm")) camera.sgbm.setDepth(checked)
                            }

                            PanelSwitch {
                                id: sgbmFillholesOrMaskSwitch
                                objectName: "sgbmFillholesOrMaskSwitch"

                                width: parent.width - 10
                                caption: qsTr("Fillholes:")
                                checked: true
                                onCheckedChanged: if (view.has("sgbm")) camera.sgbm.setEnableFillHoles(checked)
                            }

                            PanelSwitch {
                                id: sgbmSourceSwitch
                                objectName: "sgbmSourceSwitch"

                                width: parent.width - 10
                                caption: qsTr("Show depth:")
                                onCheckedChanged: if (view.has("sgbm")) camera.sgbm.pixelShow = checked
                            }
                        }

                        PanelRow {
                            caption: qsTr("Color Scheme:")

                            PanelComboBox {
                                id: sgbmcolorSchemeCombobox
                                objectName: "sgbmcolorSchemeCombobox"

                                width: 0.7 * buttonColumn.width
                                model: view.colorSchemes
                                onCurrentIndexChanged: {
                                    const value = view.itemValue(sgbmcolorSchemeCombobox)
                                    if (value >= 0 && view.has("sgbm"))
                                        camera.sgbm.colorIndex = value
                                }
                            }
                        }

                        PanelRow {
                            visible: sgbmText.checked && !!view.camera && view.camera.downSample === true
                            caption: qsTr("Resolution:     ")

                            PanelComboBox {
                                id: sgbmResolutionComboBox
                                objectName: "sgbmResolutionComboBox"

                                // No binding: a preset that moves the box would end it, and a change of language
                                // would bring it back to a choice that the model hasn't announced.
                                readonly property QtObject followed: view.has("sgbm") ? view.camera.sgbm : null
                                readonly property Connections follower: Connections {
                                    target: sgbmResolutionComboBox.followed
                                    function onResolutionChanged() { sgbmResolutionComboBox.follow() }
                                }

                                function follow() {
                                    const index = followed ? followed.resolution : 0
                                    if (currentIndex !== index)
                                        currentIndex = index
                                }

                                onFollowedChanged: follow()
                                width: 0.6 * buttonColumn.width
                                isListModel: true
                                currentIndex: 0
                                model: ListModel {
                                    ListElement { name: qsTr("VGA"); value: 0 }
                                    ListElement { name: qsTr("720P"); value: 1 }
                                }
                                onCurrentIndexChanged: {
                                    // A device may tell of a choice that isn't in the list.
                                    if (currentIndex >= 0 && currentIndex < count && view.has("sgbm"))
                                        camera.sgbm.setSgbmResolution(view.itemValue(sgbmResolutionComboBox))
                                }
                            }
                        }

                        PanelSpinBox {
                            id: sgbmZoomSpinBox
                            objectName: "sgbmZoomSpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("Zoom [%]")
                            from: 100
                            to: 500
                            stepSize: 10
                            value: 100
                            onValueChanged: if (view.has("sgbm")) camera.sgbm.setZoomFactor(value / 100.)
                        }

                        PanelSpinBox {
                            id: sgbmBaselineSpinBox
                            objectName: "sgbmBaselineSpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("baseline [mm]")
                            from: 1
                            to: 120
                            value: 80
                            onValueChanged: if (view.has("sgbm")) camera.sgbm.setBaseline(value / 1000.)
                        }

                        PanelSpinBox {
                            id: sgbmFovSpinBox
                            objectName: "sgbmFovSpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("FOV [px]")
                            from: 50
                            to: 300
                            value: 96
                            onValueChanged: if (view.has("sgbm")) camera.sgbm.setFOV(value)
                        }

                        PanelSpinBox {
                            id: sgbmMaxDisparitySpinBox
                            objectName: "sgbmMaxDisparitySpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("Confidence [px]")
                            from: 0
                            to: 255
                            value: 230
                            onValueChanged: if (view.has("sgbm")) camera.sgbm.setMaxDisparity(value)
                        }

                        // Only kept in presets.
                        PanelSpinBox {
                            id: sgbmModeSpinBox
                            objectName: "sgbmModeSpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("Mode")
                            from: 0
                            to: 2
                            value: 0
                        }

                        PanelSpinBox {
                            id: sgbmMaxDistanceSpinBox
                            objectName: "sgbmMaxDistanceSpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("Max Distance[mm]")
                            from: 1001
                            to: 65535
                            value: 8000
                            onValueChanged: if (view.has("sgbm")) camera.sgbm.setMaxDistance(value)
                        }

                        PanelSpinBox {
                            id: sgbmMinDistanceSpinBox
                            objectName: "sgbmMinDistanceSpinBox"

                            width: 0.6 * buttonColumn.width
                            caption: qsTr("Min Distance[mm]")
                            from: 1
                            to: 65535
                            value: 100
                            onValueChanged: if (view.has("sgbm")) camera.sgbm.setMinDistance(value)
                        }

                        Column {
                            id: holeRows
                            objectName: "holeRows"

                            width: parent.width
                            spacing: 2
                            visible: sgbmText.checked && sgbmFillholesOrMaskSwitch.checked
                                     && sgbmDepthOrDisparitySwitch.checked

                            PanelSpinBox {
                                id: sgbmHoleSizeSpinBox
                                objectName: "sgbmHoleSizeSpinBox"

                                width: 0.6 * buttonColumn.width
                                caption: qsTr("Hole size")
                                from: 0
                                to: 5
                                value: 0
                                onValueChanged: if (view.has("sgbm")) camera.sgbm.setHoleSize(value)
                            }

                            PanelSpinBox {
                                id: sgbmHoleMinSpinBox
                                objectName: "sgbmHoleMinSpinBox"

                                width: 0.6 * buttonColumn.width
                                caption: qsTr("Hole min")
                                from: 1
                                to: 1000
                                value: 500
                                onValueChanged: if (view.has("sgbm")) camera.sgbm.setHoleMin(value)
                            }

                            PanelSpinBox {
                                id: sgbmHoleMaxSpinBox
                                objectName: "sgbmHoleMaxSpinBox"

                                width: 0.6 * buttonColumn.width
                                caption: qsTr("Hole max")
                                from: 1001
                                to: 65535
                                value: 10000
                                onValueChanged: if (view.has("sgbm")) camera.sgbm.setHoleMax(value)
                            }
                        }

                        Column {
                            id: averageRows
                            objectName: "averageRows"

                            width: parent.width
                            spacing: 2
                            visible: sgbmText.checked && sgbmCenterPixelSwitch.checked

                            PanelSpinBox {
                                id: sgbmCenterWidthSpinBox
                                objectName: "sgbmCenterWidthSpinBox"

                                width: 0.6 * buttonColumn.width
                                caption: qsTr("AVG PX Width")
                                from: 1
                                to: 100
                                value: 50
                                onValueChanged: {
                                    if (view.has("sgbm"))
                                        camera.sgbm.setCenterAvgWidth(value)
                                    sgbmView.centerBox.width = value
                                }
                            }

                            PanelSpinBox {
                                id: sgbmCenterHeightSpinBox
                                objectName: "sgbmCenterHeightSpinBox"

                                width: 0.6 * buttonColumn.width
                                caption: qsTr("AVG PX Height")
                                from: 1
                                to: 100
                                value: 50
                                onValueChanged: {
                                    if (view.has("sgbm"))
                                        camera.sgbm.setCenterAvgHeight(value)
                                    sgbmView.centerBox.height = value
                                }
                            }
                        }
                    }

                    // HID

                    SectionHeader {
                        CustomLabel {
                            id: hidText
                            objectName: "hidText"

                            text: qsTr("HID")
                        }
                    }

                    HidView {
                        width: parent.width
                        visible: hidText.checked
                    }

                    // General Settings

                    SectionHeader {
                        CustomLabel {
                            id: generalText
                            objectName: "generalText"

                            text: qsTr("General Settings")
                        }
                    }

                    SectionBody {
                        indent: 10
                        visible: generalText.checked

                        PanelCheckBox {
                            id: enableSyncCheckbox
                            objectName: "enableSyncCheckbox"

                            scale: view.rcScale
                            text: qsTr("Enable Sync")
                            enabled: !!view.camera
                            onCheckedChanged: if (view.camera) camera.enableSync(checked)
                        }

                        PanelCheckBox {
                            id: enableCNNCheckbox
                            objectName: "enableCNNCheckbox"

                            scale: view.rcScale
                            text: qsTr("Enable CNN")
                            enabled: view.has("objects")
                            onCheckedChanged: view.enableCnn(checked)
                        }

                        PanelRow {
                            indent: 15
                            captionWidth: 110
                            caption: qsTr("CNN Source:")

                            PanelComboBox {
                                id: cnnCombobox
                                objectName: "cnnCombobox"

                                width: 0.7 * buttonColumn.width
                                isListModel: true
                                currentIndex: 2
                                model: ListModel {
                                    ListElement { name: qsTr("Left"); value: 1 }
                                    ListElement { name: qsTr("Right"); value: 2 }
                                    ListElement { name: qsTr("RGB"); value: 3 }
                                }
                                onCurrentIndexChanged: view.applyCnnSource()
                            }
                        }

                        PanelCheckBox {
                            id: menuAutoCloseCheckbox
                            objectName: "menuAutoCloseCheckbox"

                            scale: view.rcScale
                            text: qsTr("Menu Auto Close")
                            checked: true
                        }

                        ModelFileRow {
                            id: cnnModelDescriptor
                            objectName: "cnnModelDescriptor"

                            indent: 15
                            caption: qsTr("CNN model descriptor")
                            onPicked: {
                                if (enableCNNCheckbox.checked)
                                    camera.objects.setModelDescriptor(tools.filepath(model))
                            }
                        }

                        ModelFileRow {
                            id: cnnModel
                            objectName: "cnnModel"

                            indent: 15
                            caption: qsTr("CNN model")
                            onPicked: if (enableCNNCheckbox.checked) camera.objects.setModel(tools.filepath(model))
                        }

                        PanelRow {
                            indent: 15
                            captionWidth: 110
                            visible: false
                            caption: qsTr("IMU Offset")

                            SpinBox {
                                objectName: "offsetSpinBox"
                                height: 40
                                from: -100000
                                to: 100000
                                stepSize: 100
                                editable: true
                                value: 0
                                onValueChanged: if (view.has("imu")) camera.imu.offset = value
                            }

                            Label {
                                anchors.verticalCenter: parent.verticalCenter
                                text: qsTr("µs")
                            }
                        }

                        PanelRow {
                            indent: 15
                            captionWidth: 110
                            caption: qsTr("Edge Prediction")

                            SpinBox {
                                id: predictionSpinBox
                                objectName: "predictionSpinBox"

                                width: 150
                                height: 40
                                from: -100000
                                to: 100000
                                stepSize: 100
                                editable: true
                                value: 0
                                onValueChanged: if (view.has("edge")) camera.edge.prediction = value
                            }

                            Label {
                                anchors.verticalCenter: parent.verticalCenter
                                text: qsTr("µs")
                            }
                        }

                        PanelRow {
                            indent: 15
                            captionWidth: 110
                            caption: qsTr("Language")

                            PanelComboBox {
                                id: combobox
                                objectName: "combobox"

                                width: 0.6 * buttonColumn.width
                                model: [{ name: "English" }, { name: "简体中文" }, { name: "日本語" }]
                                currentIndex: mainSettings.currentLanguageIndex
                                onActivated: {
                                    mainSettings.currentLanguageIndex = currentIndex
                                    TranslateController.loadLanguage(currentIndex)
                                }
                            }
                        }
                    }

                    // Not offered at present; other bindings read them.

                    StreamSwitch {
                        id: tof3DButton
                        objectName: "tof3DButton"

                        visible: false
                        compact: view.compact
                        text: qsTr("TOF 3D")
                        enabled: view.has("tof3d")
                        ButtonGroup.group: group
                        onCheckedChanged: content.requestUpdateGrid()
                        onClicked: camera.tof3d.control(checked)
                    }

                    StreamSwitch {
                        id: eyetrackingButton
                        objectName: "eyetrackingButton"

                        visible: false
                        compact: view.compact
                        text: qsTr("Eye\ntracking")
                        ButtonGroup.group: group
                        onCheckedChanged: content.requestUpdateGrid()
                    }
                }
            }

            RowLayout {
                visible: false

                ToolButton {
                    id: optionsButton
                    objectName: "optionsButton"

                    visible: false
                    checkable: true
                    icon.source: "qrc:images/settings"
                    rotation: checked ? 180 : 0
                    ToolTip.visible: hovered
                    ToolTip.text: qsTr("Options")

                    Behavior on rotation {
                        NumberAnimation { duration: 500 }
                    }
                }

                ToolButton {
                    objectName: "gridLayoutButton"
                    visible: false
                    icon.source: "qrc:images/view_module"
                    onClicked: content.mode = 0
                }

                ToolButton {
                    objectName: "sideLayoutButton"
                    visible: false
                    icon.source: "qrc:images/view_sidebar"
                    onClicked: content.mode = 1
                }

                Label {
                    visible: false
                    text: qsTr("Version")

                    MouseArea {
                        anchors.fill: parent
                        onClicked: versionDialog.open()
                    }
                }
            }
        }
    }

    RowLayout {
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: drawer.visible ? parent.width - drawer.width : parent.width
        spacing: 5

        ViewArea {
            id: content
            objectName: "content"

            Layout.fillWidth: true
            Layout.fillHeight: true
            landscape: view.landscape

            ImuView {
                id: imuView

                objectName: "imuView"
                active: imuButton.checked
                camera: imuButton.checked ? view.camera : null
                onMaximize: console.log("imuview maximize")
                onCloseSensor: {
                    imuButton.checked = false
                    if (view.has("imu"))
                        view.camera.imu.control(false)
                }
            }

            StereoView {
                id: stereoView

                objectName: "stereoView"
                active: stereoButton.checked
                camera: stereoButton.checked ? view.camera : null
                showSaveImageButton: true
                onSaveImage: view.saveImage(stereoView, "stereo")
                onImgPressAndHold: view.showPath(stereoView)
                onWidthChanged: view.tellSize("stereo", stereoView)
                onHeightChanged: view.tellSize("stereo", stereoView)
                onCloseSensor: {
                    stereoButton.checked = false
                    if (view.has("stereo"))
                        view.camera.stereo.control(false)
                }
            }

            RgbView {
                id: rgbView

                objectName: "rgbView"
                active: rgbButton.checked
                camera: rgbButton.checked ? view.camera : null
                showSaveImageButton: true
                onSaveImage: view.saveImage(rgbView, "rgb")
                onImgPressAndHold: view.showPath(rgbView)
                onWidthChanged: view.tellSize("rgb", rgbView)
                onHeightChanged: view.tellSize("rgb", rgbView)
                onCloseSensor: {
                    rgbButton.checked = false
                    if (view.has("rgb"))
                        view.camera.rgb.control(false)
                }
            }

            RgbView {
                id: rgb2View

                // The device scales both pictures to the room of the first view.
                function tellSize() {
                    if (view.has("rgb"))
                        view.camera.rgb.setView2Size(rgbView.width, rgbView.height)
                }

                objectName: "rgb2View"
                active: rgb2Button.checked
                camera: rgb2Button.checked ? view.camera : null
                rgbImg: view.has("rgb") ? view.camera.rgb.image2 : null
                rgbName: "[RGB2]"
                showSaveImageButton: false
                onWidthChanged: tellSize()
                onHeightChanged: tellSize()
                onCloseSensor: {
                    rgb2Button.checked = false
                    if (view.has("rgb"))
                        view.camera.rgb.control(false, 1)
                }
            }

            RgbdView {
                id: rgbdView

                objectName: "rgbdView"
                active: rgbdButton.checked
                camera: rgbdButton.checked ? view.camera : null
                visible: rgbdButton.possible ? view.camera.rgbd.enable : true
                onWidthChanged: view.tellSize("rgbd", rgbdView)
                onHeightChanged: view.tellSize("rgbd", rgbdView)
                onCloseSensor: {
                    rgbdButton.checked = false
                    if (view.has("rgbd"))
                        view.camera.rgbd.control(false)
                }
            }

            TofView {
                id: tofView

                objectName: "tofView"
                active: tofButton.checked
                camera: tofButton.checked ? view.camera : null
                tofCenterPixelSwitchChecked: tofCenterPixelSwitch.checked
                showSaveImageButton: true
                onSaveImage: view.saveImage(tofView, "tof")
                onImgPressAndHold: view.showPath(tofView)
                onWidthChanged: view.tellSize("tof", tofView)
                onHeightChanged: view.tellSize("tof", tofView)
                onCloseSensor: {
                    tofButton.checked = false
                    if (view.has("tof"))
                        view.camera.tof.control(false)
                }
            }

            IrView {
                id: irView

                function tellSize() {
                    if (view.has("tof"))
                        view.tellSize("tofIr", irView)
                }

                objectName: "irView"
                active: irButton.checked
                camera: irButton.checked ? view.camera : null
                showSaveImageButton: true
                onMaximize: console.log("ir view maximize")
                onSaveImage: view.saveImage(irView, "tofIr")
                onImgPressAndHold: view.showPath(irView)
                onWidthChanged: tellSize()
                onHeightChanged: tellSize()
                onCloseSensor: irButton.checked = false
            }

            SgbmView {
                id: sgbmView

                objectName: "sgbmView"
                active: sgbmButton.checked
                camera: sgbmButton.checked ? view.camera : null
                sgbmCenterPixelSwitchChecked: sgbmCenterPixelSwitch.checked
                showSaveImageButton: true
                onSaveImage: view.saveImage(sgbmView, "sgbm")
                onImgPressAndHold: view.showPath(sgbmView)
                onWidthChanged: view.tellSize("sgbm", sgbmView)
                onHeightChanged: view.tellSize("sgbm", sgbmView)
                onCloseSensor: {
                    sgbmButton.checked = false
                    if (view.has("sgbm"))
                        view.camera.sgbm.control(false)
                }
            }

            Tof3DView {
                id: tof3DView

                objectName: "tof3DView"
                active: tof3DButton.checked
                camera: tof3DButton.checked ? view.camera : null
                onCloseSensor: {
                    tof3DButton.checked = false
                    if (view.has("tof3d"))
                        view.camera.tof3d.control(false)
                }
            }

            EyetrackingView {
                id: eyetrackingView

                property bool checked: false

                objectName: "eyetrackingView"
                active: eyetrackingButton.checked
                camera: eyetrackingButton.checked ? view.camera : null
                onCloseSensor: {
                    checked = false
                    if (view.has("eyetracking"))
                        view.camera.eyetracking.control(false)
                }
            }

            SlamView {
                id: slamView

                objectName: "slamView"
                active: slamButton.checked
                camera: slamButton.checked ? view.camera : null
                showPathButton: true
                planesSourceIndex: planesSourceComboBox.currentIndex
                sourceChecked: sourceCheckbox.checked
                isMultiSlamShow: multiSlamCheckbox.checked
                onCloseSensor: {
                    slamButton.checked = false
                    if (view.has("slam"))
                        view.camera.slam.control(false)
                }
            }
        }
    }

    // The painter has limits of its own; what the sliders show is what it draws with.
    Binding {
        target: tofView.tofPainter
        property: "maxDistance"
        value: maxDistanceSlider.value
    }

    Binding {
        target: tofView.tofPainter
        property: "minDistance"
        value: minDistanceSlider.value
    }

    Rectangle {
        objectName: "optionsVeil"
        anchors.fill: content.parent
        color: "black"
        opacity: optionsButton.checked ? 0.65 : 0
        visible: opacity > 0

        Behavior on opacity {
            NumberAnimation { duration: 250 }
        }

        MouseArea {
            anchors.fill: parent
            onClicked: optionsButton.checked = false
        }
    }

    SettingsView {
        objectName: "settingsView"
        anchors.centerIn: content.parent
        camera: view.camera
        visible: optionsButton.checked
        onQuit: optionsButton.checked = false
    }

    Rectangle {
        anchors.fill: parent
        color: "black"
        objectName: "versionVeil"
        opacity: versionDialog.visible ? 0.65 : 0
        visible: opacity > 0

        Behavior on opacity {
            NumberAnimation { duration: 250 }
        }

        MouseArea {
            anchors.fill: parent
            onClicked: versionDialog.close()
        }
    }

    VersionDialog {
        id: versionDialog
        objectName: "versionDialog"

        anchors.centerIn: parent
        title: qsTr("Version")
        viewerversion: qsTr("Viewer version: ") + version
        sdkversion: qsTr("QVSDK version: ") + qv_sdk_version
    }
}
