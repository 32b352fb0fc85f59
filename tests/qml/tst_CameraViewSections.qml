import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

// The panel's sections of the IMU, stereo, SLAM and general settings, and what it keeps hidden.
Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    PanelTestCase {
        name: "CameraViewSections"
        fixture: fixture

        function logged(text) {
            return messages.lines().filter(function(line) { return line.replace("qml: ", "") === text }).length
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
            compare(device.calls, ["imu.mode(4)"])
        }

        function test_exposureIsSentOnlyWhenASliderMoves() {
            open()
            openSection("stereoText")
            compare(control("autoExposure").checked, true)
            const sliders = [control("gainSlider"), control("brightnessSlider")]
            compare(sliders.map(function(slider) { return [slider.from, slider.to, slider.stepSize, slider.value] }),
                    [[1, 16, 1, 10], [1, 65, 1, 10]])
            sliders.forEach(function(slider) { compare(findChild(slider, "valueLabel").width, 35) })
            compare(control("autoExposure").scale, 0.9)
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
            control("brightnessSlider").value = 3
            compare([device.stereo.gain, device.stereo.brightness], [16, 65])
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
            compare(logged("Mode set to 5"), 1)
            box.currentIndex = 4
            compare(device.stereo.mode, 3)
            compare(logged("Mode set to 3"), 1)
            messages.start()
            box.currentIndex = -1
            compare(device.stereo.mode, 3)
            compare(messages.lines().filter(function(line) { return line.indexOf("Mode set to") >= 0 }), [])
        }

        function test_uvcModesHaveTheirValues() {
            open()
            const box = control("modeComboBox")
            const items = [["No stream", 0], ["Video only", 1], ["Demo + MixedMode", 2], ["Demo + MixedMode + 3D Points", 5],
                ["Debug + DebugStruct", 3], ["Debug + DebugStruct + 3D Points", 4]]
            compare(box.count, items.length)
            items.forEach(function(item, i) {
                box.currentIndex = i
                compare([box.displayText, page.itemValue(box)], item)
            })
        }

        function test_boxesTakeTheirShareOfTheDrawer() {
            open()
            const width = control("buttonColumn").width
            compare(width, 340);
            ["planesSourceComboBox", "cnnCombobox"].forEach(function(name) { compare(control(name).width, 0.7 * width, name) })
            compare([control("modeComboBox").width, control("stereoResolutionComboBox").width], [250, 150])
            const imu = control("imumodeComboBox")
            const row = imu.parent.parent
            fuzzyCompare(imu.implicitWidth, 0.8 * (row.width - row.captionTextWidth), 0.01)
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
            compare(logged("camera.edge.enabled == " + row.edge), 1)
            click("slamButton")
            compare(logged("camera.edge.enabled == " + row.edge), 2)
            compare(logged("camera.edge.enabled == " + !row.edge), 0)
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
            compareRange(control("predictionSpinBox"))
        }

        function compareRange(box) {
            compare([box.from, box.to, box.stepSize, box.editable], [-100000, 100000, 100, true])
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

        function test_cnnOnAndOffMovesTheBoxesOfStereo() {
            open()
            const painter = findChild(viewNamed("stereoView"), "painter")
            const rgbPainter = viewNamed("rgbView").rgbPainter
            control("cnnCombobox").currentIndex = 0
            compare([page.itemValue(control("cnnCombobox")), device.objects.source], [1, 1])
            painter.CNNRunning = false
            rgbPainter.CNNRunning = true
            device.forget()
            control("enableCNNCheckbox").checked = true
            compare([painter.CNNRunning, rgbPainter.CNNRunning], [true, false])
            compare(device.calls.slice(2), ["objects.updateCNNSource()", "objects.setEnabled(true)", "objects.control(true)"])
            rgbPainter.CNNRunning = true
            control("enableCNNCheckbox").checked = false
            compare([painter.CNNRunning, rgbPainter.CNNRunning], [false, false])
        }

        function test_noCnnSourceIsNotSent() {
            open()
            control("cnnCombobox").currentIndex = -1
            compare(device.calls, [])
        }

        function test_theModelsFieldIsReadOnly() {
            open()
            const row = control("cnnModel")
            row.model = "file:///m/net.bin"
            compare([row.text, row.readOnly], ["net.bin", true])
        }

        function test_aModelIsPickedFromWhereTheLastOneLies() {
            open()
            openSection("generalText")
            const row = control("cnnModel")
            const dialog = findChild(row, "dialog")
            verify(/Documents$/.test(dialog.folder), dialog.folder)
            row.model = "file:///models/net.bin"
            verify(/Documents$/.test(dialog.folder), dialog.folder)
            fixture.filesExist = true
            compare(dialog.folder, "file:///models/net.bin")
            fixture.filesExist = false
            control("enableCNNCheckbox").checked = true
            device.forget()
            dialog.file = "file:///models/other.bin"
            dialog.accepted()
            compare(row.model, "file:///models/other.bin")
            compare(device.calls, ["objects.setModel(/models/other.bin)"])
        }

        function test_aPickedModelGoesToTheDetectorOnlyWhileItRuns() {
            open()
            const descriptor = control("cnnModelDescriptor")
            descriptor.model = "file:///m/a.json"
            descriptor.picked()
            control("cnnModel").model = "file:///m/a.bin"
            control("cnnModel").picked()
            compare(device.calls, [])
            control("enableCNNCheckbox").checked = true
            device.forget()
            descriptor.picked()
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
            compare(control("combobox").model.map(function(entry) { return entry.name }), ["English", "简体中文", "日本語"])
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
            control("tof3DButton").checked = true
            control("tof3DButton").clicked()
            compare(device.callsTo("tof3d").slice(1), ["tof3d.control(true)"])
            compare(control("eyetrackingButton").text, "Eye\ntracking");
            ["gridLayoutButton", "sideLayoutButton"].forEach(function(name) {
                compare(findChild(page.cameraDrawer.contentItem, name).visible, false, name)
            })
        }

        function test_hiddenLayoutButtonsSetTheLayout() {
            open()
            control("sideLayoutButton").clicked()
            compare(content.mode, 1)
            control("gridLayoutButton").clicked()
            compare(content.mode, 0)
        }

        function test_hiddenOffsetGoesToTheImu() {
            open()
            openSection("generalText")
            const box = control("offsetSpinBox")
            compare([box.visible, box.value], [false, 0])
            compareRange(box)
            box.value = -700
            compare(device.imu.offset, -700)
        }

        function test_hiddenOptionsShowTheSettings() {
            open()
            const button = control("optionsButton")
            const settings = findChild(page, "settingsView")
            const veil = findChild(page, "optionsVeil")
            compare([settings.visible, veil.visible], [false, false])
            compare(button.ToolTip.text, "Options")
            button.checked = true
            verify(veil.opacity < 0.65)
            tryCompare(veil, "opacity", 0.65)
            tryCompare(button, "rotation", 180)
            compare([settings.visible, settings.camera], [true, device])
            // Over the views, not under the drawer.
            fuzzyCompare(settings.x + settings.width / 2, 340 + (1024 - 340) / 2, 1)
            compare(veil.x, 340)
            mouseClick(veil, 5, 5)
            compare([button.checked, settings.visible], [false, false])
            tryCompare(veil, "visible", false)
            button.checked = true
            settings.quit()
            compare(button.checked, false)
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
