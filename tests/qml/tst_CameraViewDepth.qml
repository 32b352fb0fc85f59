import QtQuick 2.13
import QtTest 1.13

Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    // A little longer than a framerate waits to be sent.
    Timer {
        id: reference

        interval: 600
    }

    PanelTestCase {
        name: "CameraViewDepth"
        fixture: fixture

        function items(box) {
            const result = []
            for (let i = 0; i < box.count; ++i)
                result.push(box.textAt(i))
            return result
        }

        function spin(name) {
            const box = control(name)
            return [box.from, box.to, box.stepSize, box.value]
        }

        function test_theMakerOfTheTofCameraDecidesTheRows_data() {
            return [
                { tag: "first", manufacturer: 0, first: true, second: false },
                { tag: "second", manufacturer: 1, first: false, second: true },
                { tag: "unknown", manufacturer: -1, first: false, second: false }
            ]
        }

        function test_theMakerOfTheTofCameraDecidesTheRows(row) {
            open(function(fake) { fake.tof.manufacturer = row.manufacturer })
            openSection("tofText")
            compare(control("tofFramerateSlider").visible, row.first)
            compare(control("distanceModeComboBox").visible, row.first);
            ["frequencyCombox", "resolutionCombox", "fpscombox", "sonyTofModecombox"].forEach(function(name) {
                compare(control(name).visible, row.second, name)
            })
            compare(control("tofmodeComboBox").visible, false)
        }

        function test_theListsHoldTheirItems_data() {
            const schemes = ["DEFAULT", "BONE", "JET", "WINTER", "OCEAN", "SUMMER", "CIVIDIS"]
            return [
                { tag: "colorSchemeCombobox", index: 0, items: schemes, values: [0, 1, 2, 3, 5, 6, 17] },
                { tag: "sgbmcolorSchemeCombobox", index: 0, items: schemes, values: [0, 1, 2, 3, 5, 6, 17] },
                { tag: "tofmodeComboBox", index: 1, values: [0, 1, 2, 3, 4, 5],
                    items: ["IQMIX_DF", "IQMIX_SF", "LABELIZE_DF", "LABELIZE_SF", "M2MIX_DF", "M2MIX_SF"] },
                { tag: "distanceModeComboBox", index: 1, items: ["Short", "Middle", "Long"], values: [1, 1, 2] },
                { tag: "frequencyCombox", index: 0, items: ["SF", "DF"] },
                { tag: "resolutionCombox", index: 0, items: ["VGA", "QVGA"] },
                { tag: "fpscombox", index: 5, items: ["5", "10", "15", "20", "25", "30"] },
                { tag: "sonyTofModecombox", index: 0, items: ["IQMIX", "LABELIZE", "M2MIX"] },
                { tag: "resolutionComboBox", index: 0, items: ["1920x1080", "1280x720", "640x480"], values: [0, 1, 2] },
                { tag: "sgbmResolutionComboBox", index: 0, items: ["VGA", "720P"], values: [0, 1] },
                { tag: "stereoResolutionComboBox", index: 0, items: ["VGA", "720P"], values: [2, 3] },
                { tag: "imumodeComboBox", index: 1, values: [0, 1, 2, 4],
                    items: ["VSlam only", "VSlam+IMU", "IMU only", "Fusion on host"] },
                { tag: "planesSourceComboBox", index: 0, values: [0, 1, 2, 3],
                    items: ["Host - TOF", "Host - Stereo", "Edge - TOF", "Edge - Stereo"] },
                { tag: "cnnCombobox", index: 2, items: ["Left", "Right", "RGB"], values: [1, 2, 3] }
            ]
        }

        function test_theListsHoldTheirItems(row) {
            open()
            const box = control(row.tag)
            compare(box.currentIndex, row.index)
            compare(items(box), row.items)
            if (!row.values)
                return
            row.values.forEach(function(value, i) {
                box.currentIndex = i
                compare(page.itemValue(box), value)
            })
        }

        function test_tofControlsReachTheModel_data() {
            return [
                { tag: "tofShowDepthSwitch", property: "checked", value: true, call: "tof.pixelShow(true)" },
                { tag: "tofCenterPixelSwitch", property: "checked", value: true, call: "tof.setEnableCenterAvgPx(true)" },
                { tag: "maxDistanceSlider", property: "value", value: 4.5, call: "tof.maxDistance(4.5)" },
                { tag: "minDistanceSlider", property: "value", value: 0.5, call: "tof.minDistance(0.5)" },
                { tag: "tofmodeComboBox", property: "currentIndex", value: 4, call: "tof.setLibWorkMode(4)" },
                { tag: "distanceModeComboBox", property: "currentIndex", value: 2, call: "tof.setDistanceMode(2)" },
                { tag: "frequencyCombox", property: "currentIndex", value: 1, call: "tof.frequency(1)" },
                { tag: "resolutionCombox", property: "currentIndex", value: 1, call: "tof.resolution(1)" },
                { tag: "fpscombox", property: "currentIndex", value: 2, call: "tof.fps(2)" },
                { tag: "sonyTofModecombox", property: "currentIndex", value: 2, call: "tof.mode(2)" },
                { tag: "tofgammaSlider", property: "value", value: 5, call: "tof.setTofIrGamma(5)" },
                { tag: "resolutionComboBox", property: "currentIndex", value: 2, call: "rgb.resolution(2)" },
                { tag: "rgbDistanceSlider", property: "value", value: 17, call: "rgb.setRGBDistance(17)" },
                { tag: "sgbmDewarpSwitch", property: "checked", value: false, call: "sgbm.setEnableDewarp(false)" },
                { tag: "sgbmCenterPixelSwitch", property: "checked", value: true,
                    call: "sgbm.setEnableCenterAvgPx(true)" },
                { tag: "sgbmDepthOrDisparitySwitch", property: "checked", value: false, call: "sgbm.setDepth(false)" },
                { tag: "sgbmFillholesOrMaskSwitch", property: "checked", value: false,
                    call: "sgbm.setEnableFillHoles(false)" },
                { tag: "sgbmSourceSwitch", property: "checked", value: true, call: "sgbm.pixelShow(true)" },
                { tag: "sgbmcolorSchemeCombobox", property: "currentIndex", value: 6, call: "sgbm.colorIndex(17)" },
                { tag: "sgbmResolutionComboBox", property: "currentIndex", value: 1, call: "sgbm.setSgbmResolution(1)" },
                { tag: "sgbmZoomSpinBox", property: "value", value: 250, call: "sgbm.setZoomFactor(2.5)" },
                { tag: "sgbmBaselineSpinBox", property: "value", value: 64, call: "sgbm.setBaseline(0.064)" },
                { tag: "sgbmFovSpinBox", property: "value", value: 120, call: "sgbm.setFOV(120)" },
                { tag: "sgbmMaxDisparitySpinBox", property: "value", value: 7, call: "sgbm.setMaxDisparity(7)" },
                { tag: "sgbmMaxDistanceSpinBox", property: "value", value: 9000, call: "sgbm.setMaxDistance(9000)" },
                { tag: "sgbmMinDistanceSpinBox", property: "value", value: 300, call: "sgbm.setMinDistance(300)" },
                { tag: "sgbmHoleSizeSpinBox", property: "value", value: 3, call: "sgbm.setHoleSize(3)" },
                { tag: "sgbmHoleMinSpinBox", property: "value", value: 20, call: "sgbm.setHoleMin(20)" },
                { tag: "sgbmHoleMaxSpinBox", property: "value", value: 2000, call: "sgbm.setHoleMax(2000)" }
            ]
        }

        function test_tofControlsReachTheModel(row) {
            open()
            control(row.tag)[row.property] = row.value
            compare(device.calls, [row.call])
        }

        function test_controlsWithoutTheirModelDoNothing() {
            open(function(fake) { fake.dropModels() })
            test_tofControlsReachTheModel_data().forEach(function(row) { control(row.tag)[row.property] = row.value })
            control("sgbmCenterWidthSpinBox").value = 10
            control("sgbmCenterHeightSpinBox").value = 10
            control("tofFramerateSlider").value = 5
            control("rgbFramerateSlider").value = 10
            wait(600)
            compare(device.calls, [])
        }

        function test_rangesAndDefaults_data() {
            return [
                { tag: "sgbmZoomSpinBox", spin: [100, 500, 10, 100] },
                { tag: "sgbmBaselineSpinBox", spin: [1, 120, 1, 80] },
                { tag: "sgbmFovSpinBox", spin: [50, 300, 1, 96] },
                { tag: "sgbmMaxDisparitySpinBox", spin: [0, 255, 1, 230] },
                { tag: "sgbmModeSpinBox", spin: [0, 2, 1, 0] },
                { tag: "sgbmMaxDistanceSpinBox", spin: [1001, 65535, 1, 8000] },
                { tag: "sgbmMinDistanceSpinBox", spin: [1, 65535, 1, 100] },
                { tag: "sgbmHoleSizeSpinBox", spin: [0, 5, 1, 0] },
                { tag: "sgbmHoleMinSpinBox", spin: [1, 1000, 1, 500] },
                { tag: "sgbmHoleMaxSpinBox", spin: [1001, 65535, 1, 10000] },
                { tag: "sgbmCenterWidthSpinBox", spin: [1, 100, 1, 50] },
                { tag: "sgbmCenterHeightSpinBox", spin: [1, 100, 1, 50] },
                { tag: "gainSlider", spin: [1, 16, 1, 10] },
                { tag: "brightnessSlider", spin: [1, 65, 1, 10] },
                { tag: "maxDistanceSlider", spin: [0.1, 7.5, 0, 1.0] },
                { tag: "minDistanceSlider", spin: [0.1, 7.5, 0, 0.1] },
                { tag: "tofFramerateSlider", spin: [5, 30, 5, 15] },
                { tag: "tofgammaSlider", spin: [0, 10, 0.1, 2.8] },
                { tag: "rgbDistanceSlider", spin: [1, 255, 1, 255] },
                { tag: "rgbFramerateSlider", spin: [6, 30, 1, 30] }
            ]
        }

        function test_rangesAndDefaults(row) {
            open()
            compare(spin(row.tag), row.spin)
        }

        function test_holeMaxStaysAboveHoleMin() {
            open()
            const box = control("sgbmHoleMaxSpinBox")
            box.value = 5
            compare(box.value, 1001)
            compare(control("sgbmHoleMinSpinBox").to, 1000)
        }

        function test_theModeBoxIsOnlyForPresets() {
            open()
            control("sgbmModeSpinBox").value = 2
            compare(device.calls, [])
        }

        function test_shortAndMiddleSendTheSame() {
            open()
            const box = control("distanceModeComboBox")
            box.currentIndex = 2
            box.currentIndex = 1
            box.currentIndex = 0
            compare(device.calls, ["tof.setDistanceMode(2)", "tof.setDistanceMode(1)", "tof.setDistanceMode(1)"])
        }

        function test_gammaReachesTheTofModelWithInfraredOff() {
            open()
            compare(control("irButton").checked, false)
            control("tofgammaSlider").value = 1.5
            compare(device.calls, ["tof.setTofIrGamma(1.5)"])
            compare(findChild(control("tofgammaSlider"), "valueLabel").text, "1.5")
        }

        function test_onlyTheLastFramerateIsSent_data() {
            return [
                { tag: "tof", slider: "tofFramerateSlider", values: [5, 10, 25], call: "tof.framerate(25)" },
                { tag: "rgb", slider: "rgbFramerateSlider", values: [29, 12, 7], call: "rgb.framerate(7)" }
            ]
        }

        function test_onlyTheLastFramerateIsSent(row) {
            open()
            const slider = control(row.slider)
            row.values.forEach(function(value) { wait(100); slider.value = value })
            const stopped = Date.now()
            compare(device.calls, [])
            tryVerify(function() { return device.calls.length > 0 }, 3000)
            // The timer counts in ticks of the animations.
            verify(Date.now() - stopped >= 450)
            compare(device.calls, [row.call])
            compare(findChild(slider, "valueLabel").text, row.values[2] + "Hz")
        }

        function test_theFramerateIsSentOnceAndNotLate_data() { return test_onlyTheLastFramerateIsSent_data() }

        // Timers of one program expire in the order of their times, however slow the machine is.
        function test_theFramerateIsSentOnceAndNotLate(row) {
            open()
            control(row.slider).value = row.values[0]
            reference.restart()
            tryCompare(reference, "running", false, 10000)
            compare(device.calls.length, 1)
            // Another value from elsewhere stays: nothing is sent a second time.
            device[row.tag].framerate = 1
            device.forget()
            reference.restart()
            tryCompare(reference, "running", false, 10000)
            compare(device.calls, [])
        }

        function test_aDragAcrossTheSliderSendsOneFramerate() {
            open()
            openSection("rgbText")
            const slider = reveal(control("rgbFramerateSlider"))
            const handle = slider.handle
            const y = handle.y + handle.height / 2
            const start = handle.x + handle.width / 2
            mousePress(slider, start, y)
            for (let step = 1; step <= 8; ++step) {
                mouseMove(slider, start - 10 * step, y)
                wait(80)
            }
            compare(device.calls, [])
            mouseRelease(slider, start - 80, y)
            verify(slider.value < 30 && slider.value > 6, slider.value)
            tryVerify(function() { return device.calls.length > 0 }, 3000)
            compare(device.calls, ["rgb.framerate(" + slider.value + ")"])
        }

        function test_aDraggedSliderHoldsWholeSteps_data() {
            return [
                { tag: "gainSlider", section: "stereoText", step: 1, unit: "", call: "stereo.gain" },
                { tag: "brightnessSlider", section: "stereoText", step: 1, unit: "ms", call: "stereo.brightness" },
                { tag: "tofFramerateSlider", section: "tofText", step: 5, unit: "Hz", call: "tof.framerate" },
                { tag: "rgbDistanceSlider", section: "rgbText", step: 1, unit: "", call: "rgb.setRGBDistance" },
                { tag: "rgbFramerateSlider", section: "rgbText", step: 1, unit: "Hz", call: "rgb.framerate" }
            ]
        }

        // So that the device gets the number that the label shows.
        function test_aDraggedSliderHoldsWholeSteps(row) {
            open()
            openSection(row.section)
            control("autoExposure").checked = false
            device.tof.framerate = 1
            const slider = reveal(control(row.tag))
            const label = findChild(slider, "valueLabel")
            const x = slider.handle.x + slider.handle.width / 2
            const y = slider.handle.y + slider.handle.height / 2
            const way = slider.visualPosition > 0.5 ? -1 : 1
            const first = slider.value
            device.forget()
            mousePress(slider, x, y)
            for (let moved = 7; moved <= 63; moved += 7) {
                mouseMove(slider, x + way * moved, y)
                compare(slider.value % row.step, 0)
                compare(label.text, slider.value + row.unit)
            }
            mouseRelease(slider, x + way * 66, y)
            compare(slider.value % row.step, 0)
            verify(slider.value !== first)
            tryVerify(function() { return device.calls.length > 0 }, 3000)
            compare(device.calls[device.calls.length - 1], row.call + "(" + slider.value + ")")
        }

        // Only where things stand is told.
        function test_openingTellsTheDeviceNoneOfTheValues() {
            open()
            compare(fixture.callsOfOpening.filter(function(call) {
                return /^(sgbm|rgb|tof|tofIr|rgbd)\./.test(call) && !/\.set(View2?Size|CenterAvg[XY])\(/.test(call)
            }), [])
        }

        // Also where the hidden page of the view has stored other distances.
        function test_thePainterFollowsTheSlidersFromTheStart() {
            fixture.storeTofDistances(3, 5)
            open()
            const painter = viewNamed("tofView").tofPainter
            fuzzyCompare(painter.maxDistance, 1.0, 1e-6)
            fuzzyCompare(painter.minDistance, 0.1, 1e-6)
            control("maxDistanceSlider").value = 6
            control("minDistanceSlider").value = 2
            fuzzyCompare(painter.maxDistance, 6, 1e-6)
            fuzzyCompare(painter.minDistance, 2, 1e-6)
            compare(findChild(control("maxDistanceSlider"), "valueLabel").text, "6.0m")
            control("colorSchemeCombobox").currentIndex = 4
            compare(painter.colorIndex, 5)
            control("colorSchemeCombobox").currentIndex = -1
            compare(painter.colorIndex, 5)
            device.forget()
            control("sgbmcolorSchemeCombobox").currentIndex = -1
            compare(device.calls, [])
            fixture.storeTofDistances(0.1, 1.0)
        }

        function test_theAverageBoxFollowsItsSwitch() {
            open()
            compare(viewNamed("tofView").tofCenterPixelSwitchChecked, false)
            control("tofCenterPixelSwitch").checked = true
            compare(viewNamed("tofView").tofCenterPixelSwitchChecked, true)
            control("sgbmCenterPixelSwitch").checked = true
            compare(viewNamed("sgbmView").sgbmCenterPixelSwitchChecked, true)
        }

        function test_theBoxSizeReachesModelAndView() {
            open()
            control("sgbmCenterWidthSpinBox").value = 80
            control("sgbmCenterHeightSpinBox").value = 20
            compare(viewNamed("sgbmView").centerBox.width, 80)
            compare(viewNamed("sgbmView").centerBox.height, 20)
            compare(device.callsTo("sgbm.setCenterAvgWidth(80)").length, 1)
            compare(device.callsTo("sgbm.setCenterAvgHeight(20)").length, 1)
        }

        function test_holeRowsNeedBothSwitches() {
            open()
            compare(control("sgbmHoleSizeSpinBox").visible, false)
            openSection("sgbmText")
            compare(control("sgbmHoleSizeSpinBox").visible, true)
            control("sgbmText").checked = false
            compare(control("sgbmHoleSizeSpinBox").visible, false)
            compare(control("sgbmZoomSpinBox").visible, false)
            compare(control("sgbmDewarpSwitch").visible, false)
            control("sgbmText").checked = true
            control("sgbmFillholesOrMaskSwitch").checked = false
            compare(control("sgbmHoleSizeSpinBox").visible, false)
            control("sgbmFillholesOrMaskSwitch").checked = true
            control("sgbmDepthOrDisparitySwitch").checked = false
            compare(control("sgbmHoleMaxSpinBox").visible, false)
        }

        function test_boxRowsNeedTheAverage() {
            open()
            openSection("sgbmText")
            compare(control("sgbmCenterWidthSpinBox").visible, false)
            control("sgbmCenterPixelSwitch").checked = true
            compare(control("sgbmCenterWidthSpinBox").visible, true)
            control("sgbmText").checked = false
            compare(control("sgbmCenterWidthSpinBox").visible, false)
            control("sgbmText").checked = true
            compare(control("sgbmCenterHeightSpinBox").visible, true)
        }

        function test_featuresDecideTheirRows() {
            open(function(fake) { fake.afRGB = false; fake.rgb2 = false; fake.downSample = false })
            openSection("rgbText")
            openSection("sgbmText")
            compare(control("rgbmodeButton").visible, false)
            compare(control("rgbDistanceSlider").visible, false)
            compare(control("rgb2Button").visible, false)
            compare(control("sgbmResolutionComboBox").visible, false)
            device.afRGB = true
            device.rgb2 = true
            device.downSample = true
            compare(control("rgbmodeButton").visible, true)
            compare(control("rgbDistanceSlider").visible, true)
            compare(control("rgb2Button").visible, true)
            compare(control("sgbmResolutionComboBox").visible, true)
        }

        function test_focusModeFollowsItsSwitch() {
            open()
            openSection("rgbText")
            click("rgbmodeButton")
            click("rgbmodeButton")
            compare(device.calls, ["rgb.setRGBMode(1)", "rgb.setRGBMode(0)"])
            device.forget()
            device.rgb.isEnable = false
            compare(control("rgbmodeButton").checkable, false)
            click("rgbmodeButton")
            compare(control("rgbmodeButton").checked, false)
            compare(device.calls, [])
        }

        function test_theSgbmResolutionFollowsTheModel() {
            open()
            const box = control("sgbmResolutionComboBox")
            device.sgbm.resolution = 1
            compare(box.currentIndex, 1)
            // As a preset does.
            box.currentIndex = 0
            device.sgbm.resolution = 0
            device.sgbm.resolution = 1
            compare(box.currentIndex, 1)
        }

        function test_aResolutionBeyondTheListIsNotSentBack() {
            open()
            const box = control("sgbmResolutionComboBox");
            [2, 5, -3].forEach(function(resolution) { device.sgbm.resolution = resolution })
            compare(device.calls, [])
            device.sgbm.resolution = 1
            compare(box.currentIndex, 1)
            compare(device.calls, ["sgbm.setSgbmResolution(1)"])
        }

        function test_theSgbmResolutionFollowsAnotherModelToo() {
            open()
            const box = control("sgbmResolutionComboBox")
            // As a preset does.
            box.currentIndex = 1
            const former = device.sgbm
            device.sgbm = null
            box.currentIndex = 1
            former.resolution = 1
            device.sgbm = former
            compare(box.currentIndex, 1)
            device.sgbm = null
            compare(box.currentIndex, 0)
        }
    }
}
