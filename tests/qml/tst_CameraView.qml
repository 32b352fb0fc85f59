import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    PanelTestCase {
        id: panel

        name: "CameraView"
        fixture: fixture

        readonly property var switches: ["imuButton", "stereoButton", "slamButton", "tofButton", "irButton", "rgbButton",
            "rgb2Button", "rgbdButton", "sgbmButton"]

        function test_noStreamIsOnAtTheStart() {
            open()
            switches.concat(["tof3DButton", "eyetrackingButton"]).forEach(function(name) {
                compare(control(name).checked, false, name)
            })
            compare(device.callsTo().filter(function(call) { return call.indexOf("control(") >= 0 }), [])
        }

        function test_aPageWithoutDeviceOffersNoStream() {
            fixture.openEmpty()
            settle()
            switches.concat(["tof3DButton"]).forEach(function(name) { compare(control(name).enabled, false, name) })
            compare(control("enableSyncCheckbox").enabled, false)
            compare(control("enableCNNCheckbox").enabled, false)
        }

        function test_aDeviceWithoutModelsOffersNoStream() {
            open(function(fake) { fake.dropModels() })
            switches.concat(["tof3DButton"]).forEach(function(name) { compare(control(name).enabled, false, name) })
        }

        function test_modelsMayVanish() {
            open()
            switchOn("imuButton", "stereoButton", "tofButton", "irButton", "rgbButton", "rgbdButton", "sgbmButton")
            tryVerify(function() { return placed() === 7 })
            device.dropModels()
            compare(control("stereoButton").enabled, false)
            compare(control("tofButton").enabled, false)
        }

        function test_everyKnownModelMakesItsSwitch_data() {
            return [
                { tag: "imu", button: "imuButton" },
                { tag: "stereo", button: "stereoButton" },
                { tag: "slam", button: "slamButton" },
                { tag: "tof", button: "tofButton" },
                { tag: "rgb", button: "rgbButton" },
                { tag: "sgbm", button: "sgbmButton" },
                { tag: "tof3d", button: "tof3DButton" }
            ]
        }

        function test_everyKnownModelMakesItsSwitch(row) {
            openWithout([row.tag])
            compare(control(row.button).enabled, false)
            device.destroy()
            fixture.close()
            open()
            compare(control(row.button).enabled, true)
        }

        function test_theDrawerHoldsTheSectionsInOrder() {
            open()
            const labels = ["imuText", "stereoText", "slamText", "tofText", "irText", "rgbText", "rgb2Text", "rgbdText",
                "sgbmText", "hidText", "generalText"].map(control)
            compare(labels.map(function(label) { return label.text }), ["IMU", "Stereo", "SLAM", "TOF", "TOF IR", "RGB",
                "RGB2", "RGBD", "SGBM", "HID", "General Settings"])
            const column = control("buttonColumn")
            for (let i = 1; i < labels.length; ++i)
                verify(labels[i].mapToItem(column, 0, 0).y > labels[i - 1].mapToItem(column, 0, 0).y, labels[i].text)
        }

        function test_theDrawerIsAFifthOfTheWindowButNotNarrow_data() {
            return [{ tag: "narrow", width: 1024, drawer: 340 }, { tag: "wide", width: 2000, drawer: 380 }]
        }

        function test_theDrawerIsAFifthOfTheWindowButNotNarrow(row) {
            open()
            page.width = row.width
            compare(page.cameraDrawer.width, row.drawer)
            compare(page.cameraDrawer.height, page.height)
        }

        function test_theViewsTakeTheDrawersRoomWhenItCloses() {
            open()
            compare(content.width, 1024 - 340)
            page.cameraDrawer.close()
            tryCompare(content, "width", 1024)
            page.cameraDrawer.open()
            tryCompare(content, "width", 1024 - 340)
        }

        function test_aSwitchMovesBeforeTheModelIsCalled() {
            open()
            const button = control("stereoButton")
            const stereoView = viewNamed("stereoView")
            let seen = []
            device.probe = function(call) {
                if (call === "stereo.control(true)" || call === "stereo.control(false)")
                    seen.push([call, button.checked, stereoView.active, stereoView.camera === device])
            }
            click("stereoButton")
            compare(seen, [["stereo.control(true)", true, true, true]])
            compare(placed(), 0)
            tryCompare(content.sideModel, "count", 1)

            seen = []
            click("stereoButton")
            compare(seen, [["stereo.control(false)", false, false, false]])
            tryCompare(content.sideModel, "count", 0)
        }

        function test_aClickControlsItsModelOnce_data() {
            return [
                { button: "imuButton", calls: ["imu.control(true)"] },
                { button: "stereoButton", calls: ["stereo.control(true)"] },
                { button: "slamButton", calls: ["stereo.registerFisheyeCameras(true)", "slam.control(true)"] },
                { button: "tofButton", calls: ["tof.control(true)"] },
                { button: "rgbButton", calls: ["rgb.control(true)"] },
                { button: "rgb2Button", calls: ["rgb.control(true,1)"] },
                { button: "sgbmButton", calls: ["sgbm.control(true)"] }
            ].map(function(row) { row.tag = row.button; return row })
        }

        function test_aClickControlsItsModelOnce(row) {
            open()
            click(row.button)
            compare(control(row.button).checked, true)
            compare(controls(), row.calls)
        }

        function controls() {
            return device.callsTo().filter(function(call) {
                return call.indexOf("control(") >= 0 || call.indexOf("registerFisheyeCameras") >= 0
            })
        }

        function test_codeMovesASwitchWithoutTheModel() {
            open()
            switchOn("stereoButton", "tofButton", "rgbButton")
            tryVerify(function() { return placed() === 3 })
            compare(controls(), [])
        }

        function test_foldingASectionLeavesTheStreamOn() {
            open()
            click("imuText")
            compare(control("imuText").checked, true)
            compare(control("imumodeComboBox").visible, true)
            click("imuButton")
            click("imuText")
            compare(control("imuText").checked, false)
            compare(control("imumodeComboBox").visible, false)
            compare(control("imuButton").checked, true)
            compare(viewNamed("imuView").active, true)
        }

        function test_withoutTofItsSwitchesAreDisabled() {
            openWithout(["tof", "tofIr", "rgbd", "tof3d"])
            compare(control("tofText").visible, true)
            compare(control("tofButton").enabled, false)
            compare(control("irButton").enabled, false)
            compare(control("rgbdButton").enabled, false)
        }

        function test_smallWindowsHaveSmallSwitchTexts() {
            open()
            compare(control("tofButton").font.pointSize, 11)
            page.width = 749
            compare(control("tofButton").font.pointSize, 6)
        }

        // Guards

        function test_tofOffTakesRgbdAndInfraredWithIt() {
            open()
            switchOn("tofButton", "irButton", "rgbdButton")
            click("tofButton")
            compare(control("rgbdButton").checked, false)
            compare(control("irButton").checked, false)
            compare(controls(), ["tof.control(false)"])
        }

        function test_rgbOffTakesRgbdWithIt() {
            open()
            switchOn("rgbButton", "rgbdButton")
            click("rgbButton")
            compare(control("rgbdButton").checked, false)
            compare(controls(), ["rgb.control(false)"])
        }

        function test_infraredNeedsTheTofSwitchAndItsModel() {
            open()
            compare(control("irButton").enabled, false)
            control("tofButton").checked = true
            compare(control("irButton").enabled, true)
            device.tofIr = null
            compare(control("irButton").enabled, false)
        }

        function test_rgbdNeedsBothStreamsRunning() {
            open()
            compare(control("rgbdButton").enabled, false)
            device.rgbd.enable = true
            compare(control("rgbdButton").enabled, true)
            click("rgbdButton")
            compare(controls(), ["rgbd.control(true)"])
            device.rgb = null
            compare(control("rgbdButton").enabled, false)
            compare(control("rgbdButton").checkable, false)
        }

        function test_aSettlingModelRefusesClicks_data() {
            return [
                { button: "tofButton", settle: function(on) { device.tof.settled = on } },
                { button: "rgbButton", settle: function(on) { device.rgb.isEnable = on } },
                { button: "rgb2Button", settle: function(on) { device.rgb.isEnable2 = on } },
                { button: "sgbmButton", settle: function(on) { device.sgbm.isEnable = on } }
            ].map(function(row) { row.tag = row.button; return row })
        }

        function test_aSettlingModelRefusesClicks(row) {
            open()
            row.settle(false)
            const button = reveal(control(row.button))
            click(row.button)
            compare(button.checked, false)
            compare(controls(), [])
            mouseDrag(button, 10, button.height / 2, 40, 0)
            compare(button.checked, false)
            click(row.button)
            compare(button.checked, false)
            compare(controls(), [])
            row.settle(true)
            click(row.button)
            compare(button.checked, true)
            compare(controls().length, 1)
        }

        function test_fullStereoResolutionForbidsSlam() {
            open()
            control("slamButton").checked = true
            device.forget()
            const resolution = control("stereoResolutionComboBox")
            compare(resolution.visible, false)
            resolution.currentIndex = 1
            compare(control("slamButton").checked, false)
            compare(control("slamButton").enabled, false)
            compare(device.callsTo("stereo.setResolution"), ["stereo.setResolution(3)"])
            resolution.currentIndex = 0
            compare(control("slamButton").enabled, true)
            compare(device.callsTo("stereo.setResolution"), ["stereo.setResolution(3)", "stereo.setResolution(2)"])
            compare(controls(), [])
        }

        function test_aHintTellsWhySlamIsDisabled() {
            open()
            const hint = findChild(control("slamButton").parent, "slamHint")
            control("stereoResolutionComboBox").currentIndex = 1
            viewNamed("stereoView").resolutionIndex = 1
            compare(control("slamButton").enabled, false)
            const area = reveal(control("slamButton").parent)
            mouseMove(area, 4, 4)
            mouseMove(area, area.width / 2, area.height / 2)
            tryCompare(hint, "visible", true)
            compare(hint.text, "If you want to turn on slam, please set the stereo resolution to VGA!")
            compare(hint.delay, 500)
            compare(hint.timeout, 5000)
            viewNamed("stereoView").resolutionIndex = 0
            tryCompare(hint, "visible", false)
        }

        // IMU and stereo

        function test_imuModeSendsTheItemsValue() {
            open()
            const box = control("imumodeComboBox")
            compare(box.currentIndex, 1)
            box.currentIndex = 3
            compare(device.imu.mode, 4)
            box.currentIndex = -1
            compare(device.imu.mode, 4)
        }

        function test_exposureIsSentOnlyWhenASliderMoves() {
            open()
            openSection("stereoText")
            compare(control("autoExposure").checked, true)
            compare(control("gainSlider").enabled, false)
            compare(control("brightnessSlider").enabled, false)
            mouseClick(reveal(control("gainSlider")))
            compare(control("gainSlider").value, 10)

            click("autoExposure")
            compare(control("gainSlider").enabled, true)
            compare(device.calls, ["stereo.autoExposure(false)"])

            control("gainSlider").value = 16
            control("brightnessSlider").value = 65
            compare(device.calls, ["stereo.autoExposure(false)", "stereo.gain(16)", "stereo.brightness(65)"])
            compare(findChild(control("gainSlider"), "valueLabel").text, "16")
            compare(findChild(control("brightnessSlider"), "valueLabel").text, "65ms")

            click("autoExposure")
            control("gainSlider").value = 2
            compare(device.stereo.gain, 16)
        }

        function test_uvcModeIndexAndValueDiffer() {
            open()
            const box = control("modeComboBox")
            compare(box.currentIndex, 4)
            compare(box.displayText, "Debug + DebugStruct")
            compare(page.itemValue(box), 3)
            compare(device.stereo.mode, 4)
            box.currentIndex = 3
            compare(device.stereo.mode, 5)
            box.currentIndex = 4
            compare(device.stereo.mode, 3)
        }

        function test_uvcModeIsForAdvancedUsers() {
            open()
            openSection("stereoText")
            compare(control("modeComboBox").visible, true)
            fixture.advanced = false
            compare(control("modeComboBox").visible, false)
            fixture.advanced = true
        }

        function test_aChoiceFromAListLeavesTheDrawerOpen() {
            open()
            openSection("imuText")
            const box = reveal(control("imumodeComboBox"))
            mouseClick(findChild(box, "arrowArea"))
            tryCompare(box.popup, "opened", true)
            const list = box.popup.contentItem
            tryVerify(function() { return list.count === 4 && list.itemAtIndex(2) })
            mouseClick(list.itemAtIndex(2))
            tryCompare(box.popup, "visible", false)
            compare(box.currentIndex, 2)
            compare(device.calls, ["imu.mode(2)"])
            compare(page.cameraDrawer.opened, true)
        }

        // SLAM

        function test_slamFollowsTheSourceInUse_data() {
            return [
                { tag: "host", edge: false, calls: ["stereo.registerFisheyeCameras(true)", "slam.control(true)",
                    "stereo.registerFisheyeCameras(false)", "slam.control(false)"] },
                { tag: "edge", edge: true, calls: ["stereo.registerFisheyeCameras(true)", "edge.control(true)",
                    "stereo.registerFisheyeCameras(false)", "edge.control(false)"] }
            ]
        }

        function test_slamFollowsTheSourceInUse(row) {
            open()
            device.edge.enabled = row.edge
            click("slamButton")
            click("slamButton")
            compare(controls(), row.calls)
        }

        function test_slamWorksWithoutEdgeAndStereo() {
            openWithout(["edge", "stereo"])
            click("slamButton")
            compare(controls(), ["slam.control(true)"])
        }

        function test_slamAloneLeavesTheStereoViewEmpty() {
            open()
            click("slamButton")
            compare(device.callsTo("stereo.registerFisheyeCameras"), ["stereo.registerFisheyeCameras(true)"])
            compare(viewNamed("stereoView").camera, null)
        }

        function test_slamOptionsReachTheView() {
            open()
            const slamView = viewNamed("slamView")
            compare([slamView.isMultiSlamShow, slamView.sourceChecked, slamView.planesSourceIndex], [true, true, 0])
            control("multiSlamCheckbox").checked = false
            control("sourceCheckbox").checked = false
            control("planesSourceComboBox").currentIndex = 3
            compare([slamView.isMultiSlamShow, slamView.sourceChecked, slamView.planesSourceIndex], [false, false, 3])
        }

        function test_clearPlanesGoesToTheChosenSource() {
            open()
            openSection("slamText")
            control("planesSourceComboBox").currentIndex = 0
            click("clearPlanesButton")
            control("planesSourceComboBox").currentIndex = 1
            click("clearPlanesButton")
            control("planesSourceComboBox").currentIndex = 2
            click("clearPlanesButton")
            compare(device.callsTo("planes"), ["planes.clearTofPlanes()", "planes.clearStereoPlanes()"])
            device.edgePlanes = device.planes
            device.planes = null
            click("clearPlanesButton")
            control("planesSourceComboBox").currentIndex = 3
            click("clearPlanesButton")
            compare(device.callsTo("planes").slice(2), ["planes.clearTofPlanes()", "planes.clearStereoPlanes()"])
        }

        // General settings

        function test_syncGoesToTheDevice() {
            open()
            openSection("generalText")
            click("enableSyncCheckbox")
            click("enableSyncCheckbox")
            compare(device.calls, ["enableSync(true)", "enableSync(false)"])
        }

        function test_predictionGoesToTheEdge() {
            open()
            control("predictionSpinBox").value = -2500
            compare(device.edge.prediction, -2500)
            compare(control("predictionSpinBox").from, -100000)
            compare(control("predictionSpinBox").to, 100000)
            compare(control("predictionSpinBox").stepSize, 100)
        }

        function test_cnnOnSetsFilesAndSourceBeforeItStarts() {
            open()
            control("cnnModelDescriptor").model = "file:///m/net.json"
            control("cnnModel").model = "file:///m/net.bin"
            openSection("generalText")
            click("enableCNNCheckbox")
            compare(device.calls, ["objects.setModelDescriptor(/m/net.json)", "objects.setModel(/m/net.bin)",
                "objects.updateCNNSource()", "objects.setEnabled(true)", "objects.control(true)"])
            compare(viewNamed("rgbView").rgbPainter.CNNRunning, true)
            device.forget()
            click("enableCNNCheckbox")
            compare(device.calls, ["objects.setEnabled(false)", "objects.control(false)"])
            compare(viewNamed("rgbView").rgbPainter.CNNRunning, false)
        }

        function test_cnnSourceMovesTheBoxesToItsView() {
            open()
            const stereoPainter = findChild(viewNamed("stereoView"), "painter")
            control("cnnCombobox").currentIndex = 1
            compare(device.calls, ["objects.source(2)", "objects.updateCNNSource()"])
            compare(viewNamed("rgbView").rgbPainter.CNNRunning, false)
            compare(stereoPainter.CNNRunning, true)
            control("cnnCombobox").currentIndex = 2
            compare(device.calls.slice(2), ["objects.source(3)", "objects.updateCNNSource()"])
            compare(viewNamed("rgbView").rgbPainter.CNNRunning, true)
            compare(stereoPainter.CNNRunning, false)
        }

        function test_aPickedModelGoesToTheDetectorOnlyWhileItRuns() {
            open()
            const descriptor = control("cnnModelDescriptor")
            descriptor.model = "file:///m/a.json"
            descriptor.picked()
            compare(device.calls, [])
            control("enableCNNCheckbox").checked = true
            device.forget()
            descriptor.picked()
            control("cnnModel").model = "file:///m/a.bin"
            control("cnnModel").picked()
            compare(device.calls, ["objects.setModelDescriptor(/m/a.json)", "objects.setModel(/m/a.bin)"])
        }

        function test_aModelFieldShowsThePathWhileItHasFocus() {
            open()
            openSection("generalText")
            const row = control("cnnModel")
            row.model = "file:///models/net.bin"
            compare(row.field.text, "net.bin")
            compare(row.field.readOnly, true)
            mouseClick(reveal(row.field))
            tryCompare(row.field, "text", "/models/net.bin")
        }

        function test_menuAutoCloseDecidesWhatClosesTheDrawer() {
            open()
            compare(control("menuAutoCloseCheckbox").checked, true)
            compare(page.cameraDrawer.closePolicy, Popup.CloseOnEscape | Popup.CloseOnReleaseOutside)
            control("menuAutoCloseCheckbox").checked = false
            compare(page.cameraDrawer.closePolicy, Popup.NoAutoClose)
            mouseClick(page, 900, 400)
            wait(50)
            compare(page.cameraDrawer.opened, true)
            keyClick(Qt.Key_Escape)
            compare(page.cameraDrawer.opened, true)

            control("menuAutoCloseCheckbox").checked = true
            mouseClick(page, 900, 400)
            tryCompare(page.cameraDrawer, "visible", false)
        }

        function test_escapeClosesTheDrawer() {
            open()
            keyClick(Qt.Key_Escape)
            tryCompare(page.cameraDrawer, "visible", false)
        }

        function test_theLanguageBoxShowsTheStoredLanguage() {
            fixture.mainSettings.currentLanguageIndex = 2
            open()
            compare(control("combobox").displayText, "日本語")
            fixture.mainSettings.currentLanguageIndex = 0
            compare(control("combobox").displayText, "English")
        }

        function test_aLanguageKeepsEveryIndex() {
            open()
            const boxes = ["imumodeComboBox", "modeComboBox", "planesSourceComboBox", "distanceModeComboBox",
                "cnnCombobox", "stereoResolutionComboBox", "sgbmResolutionComboBox", "colorSchemeCombobox",
                "resolutionComboBox", "tofmodeComboBox", "frequencyCombox"].map(control)
            boxes.forEach(function(box) { box.currentIndex = 1 })
            device.forget()
            openSection("generalText")
            const language = control("combobox")
            language.currentIndex = 1
            language.activated(1)
            compare(fixture.mainSettings.currentLanguageIndex, 1)
            compare(TranslateController.loaded.slice(-1), [1])
            boxes.forEach(function(box) { compare(box.currentIndex, 1, box.objectName) })
            compare(control("imuText").text, "CameraView/IMU")
            compare(boxes[0].displayText, "CameraView/VSlam+IMU")
            compare(boxes[1].displayText, "CameraView/Video only")
            compare(device.calls, [])

            language.currentIndex = 0
            language.activated(0)
            compare(control("imuText").text, "IMU")
            compare(boxes[0].displayText, "VSlam+IMU")
            compare(device.calls, [])
        }

        // Hidden items

        function test_hiddenItemsStayHidden() {
            open();
            ["tof3DButton", "eyetrackingButton", "optionsButton"].forEach(function(name) {
                compare(control(name).visible, false, name)
            })
            compare(control("tof3DButton").text, "TOF 3D")
            control("tof3DButton").clicked()
            compare(device.callsTo("tof3d"), ["tof3d.control(false)"])
        }

        function test_theVersionDialogIsClosedByTheVeil() {
            open()
            page.cameraDrawer.close()
            const dialog = findChild(page, "versionDialog")
            compare(dialog.title, "Version")
            compare(dialog.viewerversion, "Viewer version: 3.2.0")
            compare(dialog.sdkversion, "QVSDK version: 7.8.9")
            const veil = findChild(page, "versionVeil")
            dialog.open()
            tryCompare(veil, "opacity", 0.65)
            mouseClick(veil, 5, veil.height - 5)
            compare(dialog.visible, false)
            tryCompare(veil, "visible", false)
        }
    }
}
