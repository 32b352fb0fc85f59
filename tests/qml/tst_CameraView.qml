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
            compare(control("enableCNNCheckbox").enabled, false)
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

        function test_theDrawerIsThereAtTheStart() {
            open()
            compare([page.cameraDrawer.visible, page.cameraDrawer.modal], [true, false])
            verify(Qt.colorEqual(page.cameraDrawer.background.color, "#242C33"))
            // Dialogs, their lists and all tips open at 0, above it.
            verify(page.cameraDrawer.z < 0)
            compare(control("uuidLabel").text, "DEVICE-0001")
            compare(control("buttonColumn").topPadding, 15)
            compare([page.rcScale, page.topMargin, page.camera], [0.9, 0, device])
        }

        function test_theDrawerScrollsOnlyWhatIsHigherThanItself() {
            open()
            const flickable = control("flickable")
            compare(flickable.clip, true)
            page.height = 2000
            tryVerify(function() { return flickable.height > flickable.contentHeight })
            compare(flickable.interactive, false)
            page.height = 300
            tryVerify(function() { return flickable.height < flickable.contentHeight })
            compare(flickable.interactive, true)
        }

        function test_ctrlQEndsTheProgramAlsoWithTheDrawerOpen() {
            open()
            const before = quits.count
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare(quits.count, before + 1)
        }

        function test_ctrlQIsTheWindowsWhileTheDrawerStaysOpen() {
            open()
            const outer = createTemporaryQmlObject("import QtQuick 2.13; Shortcut { property int used: 0; "
                                                   + "sequence: 'Ctrl+Q'; onActivated: ++used }", page)
            control("menuAutoCloseCheckbox").checked = false
            const before = quits.count
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare([outer.used, quits.count], [1, before])
        }

        function test_runningStreamsAreCounted() {
            open()
            const counter = findChild(page, "p")
            compare(counter.count, 0);
            ["imuButton", "stereoButton", "rgbButton", "tofButton", "slamButton", "sgbmButton", "tof3DButton", "irButton"]
                    .forEach(function(name, i) {
                control(name).checked = true
                compare(counter.count, i + 1, name)
            });
            ["rgb2Button", "rgbdButton", "eyetrackingButton"].forEach(function(name) {
                control(name).checked = true
                compare(counter.count, 8, name)
            })
            control("imuButton").checked = false
            compare(counter.count, 7)
        }

        function test_aViewHasItsDeviceOnlyWhileItsSwitchIsOn_data() {
            return ["imu", "stereo", "rgb", "rgb2", "rgbd", "tof", "ir", "sgbm", "tof3D", "slam"].map(function(name) {
                return { tag: name }
            })
        }

        function test_aViewHasItsDeviceOnlyWhileItsSwitchIsOn(row) {
            open()
            const item = viewNamed(row.tag + "View")
            compare([item.active, item.camera], [false, null])
            control(row.tag + "Button").checked = true
            compare([item.active, item.camera], [true, device])
            control(row.tag + "Button").checked = false
            compare([item.active, item.camera], [false, null])
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
            const all = switches.concat(["tof3DButton", "eyetrackingButton"])
            page.width = 750
            all.forEach(function(name) { compare(control(name).font.pointSize, 11, name) })
            page.width = 749
            all.forEach(function(name) { compare(control(name).font.pointSize, 6, name) })
        }

        // Guards

        function test_tofOffTakesRgbdAndInfraredWithIt() {
            open()
            switchOn("irButton", "rgbdButton")
            switchOn("tofButton")
            compare([control("irButton").checked, control("rgbdButton").checked], [true, true])
            click("tofButton")
            compare(control("rgbdButton").checked, false)
            compare(control("irButton").checked, false)
            compare(controls(), ["tof.control(false)"])
        }

        function test_rgbOffTakesRgbdWithIt() {
            open()
            switchOn("rgbdButton")
            switchOn("rgbButton")
            compare(control("rgbdButton").checked, true)
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

        function test_infraredIsControlledByItsSwitch() {
            open()
            switchOn("tofButton")
            click("irButton")
            click("irButton")
            compare(controls(), ["tofIr.control(true)", "tofIr.control(false)"])
        }

        function test_rgbdIsCheckableWhileAllThreeModelsExist_data() {
            return [{ tag: "rgb" }, { tag: "tof" }, { tag: "rgbd" }]
        }

        function test_rgbdIsCheckableWhileAllThreeModelsExist(row) {
            open(function(fake) { fake.rgbd.enable = true })
            compare([control("rgbdButton").enabled, control("rgbdButton").checkable], [true, true])
            device[row.tag] = null
            compare([control("rgbdButton").enabled, control("rgbdButton").checkable], [false, false])
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
                { button: "tofButton", settle: function(on) { device.tof.state.settled = on } },
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
            compare([button.checked, button.checkable], [false, false])
            click(row.button)
            compare(button.checked, false)
            compare(controls(), [])
            row.settle(true)
            click(row.button)
            compare(button.checked, true)
            compare(controls().length, 1)
            row.settle(false)
            mouseDrag(button, 40, button.height / 2, -40, 0)
            click(row.button)
            compare(button.checked, true)
            compare(controls().length, 1)
        }

        function test_aSecondClickStopsTheImu() {
            open()
            click("imuButton")
            click("imuButton")
            compare(controls(), ["imu.control(true)", "imu.control(false)"])
        }

        function test_aDepthModelThatIsSettlingAtTheStartRefusesClicks() {
            open(function(fake) { fake.tof.state.settled = false })
            compare(control("tofButton").checkable, false)
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

        function test_withoutStereoTheResolutionForbidsNothing() {
            openWithout(["stereo"])
            control("slamButton").checked = true
            control("stereoResolutionComboBox").currentIndex = 1
            compare([control("slamButton").checked, control("slamButton").enabled], [true, true])
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
            compare(hint.x, area.width)
            fuzzyCompare(hint.y + hint.height / 2, area.height / 2, 0.01)
            viewNamed("stereoView").resolutionIndex = 0
            tryCompare(hint, "visible", false)
        }
    }
}
