import QtQuick 2.13
import QtTest 1.13
import Qt.labs.settings 1.1

Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    Settings {
        id: defaultStore

        category: "defaultSettings"
    }

    Component {
        id: category

        Settings {}
    }

    // Goes off behind what is sent half a second after a change.
    Timer {
        id: later

        property var look: null
        property int seen: -1

        interval: 1100
        onTriggered: seen = look()
    }

    PanelTestCase {
        name: "CameraViewPresets"
        fixture: fixture

        // Key, control, its property, the default and another value.
        readonly property var table: [
            ["imuMode", "imumodeComboBox", "currentIndex", 1, 2],
            ["stereoUVCmode", "modeComboBox", "currentIndex", 4, 1],
            ["bSlamPlaneSources", "sourceCheckbox", "checked", true, false],
            ["iSlamPlanesSource", "planesSourceComboBox", "currentIndex", 0, 2],
            ["tofShowdepth", "tofShowDepthSwitch", "checked", false, true],
            ["tofAvgPX", "tofCenterPixelSwitch", "checked", false, true],
            ["tofColorize", "colorSchemeCombobox", "currentIndex", 0, 3],
            ["tofMaximaldistance", "maxDistanceSlider", "value", 1.0, 3.25],
            ["tofMinimumdistance", "minDistanceSlider", "value", 0.1, 0.75],
            ["tofFramerate", "tofFramerateSlider", "value", 15, 25],
            ["tofDistanceMode", "distanceModeComboBox", "currentIndex", 1, 2],
            ["tofFrequency", "frequencyCombox", "currentIndex", 0, 1],
            ["tofResolution", "resolutionCombox", "currentIndex", 0, 1],
            ["tofFps", "fpscombox", "currentIndex", 5, 2],
            ["tofSonyTofMode", "sonyTofModecombox", "currentIndex", 0, 2],
            ["rgbResolution", "resolutionComboBox", "currentIndex", 0, 2],
            ["rgbFramerate", "rgbFramerateSlider", "value", 30, 12],
            ["sgbmDewarp", "sgbmDewarpSwitch", "checked", true, false],
            ["sgbmAvgPX", "sgbmCenterPixelSwitch", "checked", false, true],
            ["sgbmDepth", "sgbmDepthOrDisparitySwitch", "checked", true, false],
            ["sgbmFillholes", "sgbmFillholesOrMaskSwitch", "checked", true, false],
            ["sgbmShowdepth", "sgbmSourceSwitch", "checked", false, true],
            ["sgbmResolution", "sgbmResolutionComboBox", "currentIndex", 0, 1],
            ["sgbmZoom", "sgbmZoomSpinBox", "value", 100, 200],
            ["sgbmbaseline", "sgbmBaselineSpinBox", "value", 80, 60],
            ["sgbmFOV", "sgbmFovSpinBox", "value", 96, 120],
            ["sgbmConfidence", "sgbmMaxDisparitySpinBox", "value", 230, 128],
            ["sgbmMode", "sgbmModeSpinBox", "value", 0, 2],
            ["sgbmMaxDistance", "sgbmMaxDistanceSpinBox", "value", 8000, 5000],
            ["sgbmMinDistance", "sgbmMinDistanceSpinBox", "value", 100, 250],
            ["sgbmHolesize", "sgbmHoleSizeSpinBox", "value", 0, 4],
            ["sgbmHolemin", "sgbmHoleMinSpinBox", "value", 500, 300],
            ["sgbmHolemax", "sgbmHoleMaxSpinBox", "value", 10000, 20000],
            ["sgbmAvgPXWidth", "sgbmCenterWidthSpinBox", "value", 50, 30],
            ["sgbmAvgPXHeight", "sgbmCenterHeightSpinBox", "value", 50, 40],
            ["menuAutoClose", "menuAutoCloseCheckbox", "checked", true, false],
            ["multiSlamShow", "multiSlamCheckbox", "checked", true, false]
        ]

        function box() {
            return control("allSettingsCombobox")
        }

        function listed() {
            const result = []
            for (let i = 0; i < box().count; ++i)
                result.push(box().textAt(i))
            return result
        }

        function save(name) {
            box().contTxt.text = name
            click("savePresetButton")
        }

        function moveAll(column) {
            table.forEach(function(row) { control(row[1])[row[2]] = row[column] })
        }

        function compareRow(row, expected) {
            if (row[2] === "value")
                fuzzyCompare(control(row[1]).value, expected, 1e-6, row[0])
            else
                compare(control(row[1])[row[2]], expected, row[0])
        }

        function compareAll(column) {
            table.forEach(function(row) { compareRow(row, row[column]) })
        }

        // A slot in use that holds nothing but its name.
        function storeBareSlot(name) {
            stored.forget("preferSettings1")
            fixture.slot(0).setValue("isAdd", 1)
            fixture.slot(0).setValue("name", name)
            table.forEach(function(row) { compare(fixture.slot(0).value(row[0], "none"), "none", row[0]) })
        }

        function reopen() {
            content = null
            fixture.close()
            open()
        }

        function test_theStartOffersTheDefault() {
            open()
            compare(listed(), ["Default"])
            compare([box().currentIndex, box().editable], [0, true])
            compare(control("deletePresetButton").enabled, false)
            compare(fixture.page.defaultSettings.category, "defaultSettings")
            compareAll(3)
        }

        function test_settingsCanBeGivenOneAnArgument() {
            open()
            page.setAllSettings.apply(page, table.map(function(row) { return row[4] }))
            compareAll(4)
        }

        function test_aPresetHoldsTheWholeTable() {
            open()
            moveAll(4)
            save("bench")
            compare(listed(), ["Default", "bench"])
            compare(box().currentIndex, 1)
            compareAll(4)

            box().currentIndex = 0
            compareAll(3)
            box().currentIndex = 1
            compareAll(4)
        }

        function test_aSlotStoresTextsForSwitches() {
            open()
            moveAll(4)
            save("bench")
            const slot = fixture.slot(0)
            // No bool: that would come back from the store as a word, which is no 1.
            compare(slot.value("isAdd"), 1)
            compare(slot.value("name"), "bench")
            table.forEach(function(row) {
                if (typeof row[4] === "boolean")
                    compare(slot.value(row[0]), row[4] ? "true" : "", row[0])
                else
                    fuzzyCompare(Number(slot.value(row[0])), row[4], 1e-6)
            })
        }

        function test_aSlotSurvivesTheEndOfThePage() {
            open()
            moveAll(4)
            save("bench")
            reopen()
            compare(listed(), ["Default", "bench"])
            compareAll(3)
            box().currentIndex = 1
            compareAll(4)
        }

        function test_editedDefaultsAreAppliedAtTheStart() {
            const kept = table.map(function(row) { return defaultStore.value(row[0], row[3]) })
            defaultStore.setValue("imuMode", "3")
            defaultStore.setValue("tofMaximaldistance", "2.5")
            defaultStore.setValue("sgbmDewarp", "false")
            open()
            compare(control("imumodeComboBox").currentIndex, 3)
            fuzzyCompare(control("maxDistanceSlider").value, 2.5, 1e-6)
            compare(control("sgbmDewarpSwitch").checked, false)
            table.forEach(function(row, i) { defaultStore.setValue(row[0], kept[i]) })
        }

        function test_aSwitchStoredOffIsOffAgain() {
            open()
            save("dark")
            compare(fixture.slot(0).value("tofShowdepth"), "")
            box().currentIndex = 0
            control("tofShowDepthSwitch").checked = true
            box().currentIndex = 1
            compare(control("tofShowDepthSwitch").checked, false)
        }

        function test_aLoadReachesTheDeviceThroughTheHandlers() {
            open()
            moveAll(4)
            save("bench")
            box().currentIndex = 0
            device.forget()
            box().currentIndex = 1
            const expected = ["imu.mode(2)", "stereo.mode(1)", "tof.pixelShow(true)", "tof.setEnableCenterAvgPx(true)",
                "tof.maxDistance(3.25)", "tof.minDistance(0.75)", "tof.setDistanceMode(2)", "tof.frequency(1)",
                "tof.resolution(1)", "tof.fps(2)", "tof.mode(2)", "rgb.resolution(2)", "sgbm.setEnableDewarp(false)",
                "sgbm.setEnableCenterAvgPx(true)", "sgbm.setDepth(false)", "sgbm.setEnableFillHoles(false)",
                "sgbm.pixelShow(true)", "sgbm.setSgbmResolution(1)", "sgbm.setZoomFactor(2)", "sgbm.setBaseline(0.06)",
                "sgbm.setFOV(120)", "sgbm.setMaxDisparity(128)", "sgbm.setMaxDistance(5000)", "sgbm.setMinDistance(250)",
                "sgbm.setHoleSize(4)", "sgbm.setHoleMin(300)", "sgbm.setHoleMax(20000)", "sgbm.setCenterAvgWidth(30)",
                "sgbm.setCenterAvgHeight(40)"]
            // The box in the view tells its own size and place as well.
            compare(device.calls.filter(function(call) { return expected.indexOf(call) >= 0 }), expected)
            tryVerify(function() { return device.callsTo("rgb.framerate").length === 1 }, 3000)
            compare(device.callsTo("rgb.framerate"), ["rgb.framerate(12)"])
            compare(device.callsTo("tof.framerate"), ["tof.framerate(25)"])
        }

        function test_framerateIsSentHalfASecondAfterALoad() {
            open()
            control("rgbFramerateSlider").value = 9
            save("slow")
            box().currentIndex = 0
            wait(700)
            device.forget()
            const start = Date.now()
            box().currentIndex = 1
            compare(device.callsTo("rgb.framerate"), [])
            tryVerify(function() { return device.callsTo("rgb.framerate").length === 1 }, 3000)
            verify(Date.now() - start >= 450)
        }

        function test_framerateIsSentOnceItHasStoodForHalfASecond_data() {
            return [{ tag: "rgb", slider: "rgbFramerateSlider", call: "rgb.framerate", value: 9 },
                    { tag: "tof", slider: "tofFramerateSlider", call: "tof.framerate", value: 25 }]
        }

        function test_framerateIsSentOnceItHasStoodForHalfASecond(data) {
            open()
            control(data.slider).value = data.value
            tryVerify(function() { return device.callsTo(data.call).length === 1 })
            save("other")
            box().currentIndex = 0
            tryVerify(function() { return device.callsTo(data.call).length === 2 })
            device.forget()
            later.look = function() { return device.callsTo(data.call).length }
            later.seen = -1
            const start = Date.now()
            box().currentIndex = 1
            later.restart()
            compare(device.callsTo(data.call), [])
            tryVerify(function() { return device.callsTo(data.call).length === 1 })
            verify(Date.now() - start >= 450)
            tryVerify(function() { return later.seen >= 0 })
            compare(later.seen, 1)
            compare(device.callsTo(data.call), [data.call + "(" + data.value + ")"])
        }

        function test_aLoadStartsAndStopsNoStream() {
            open()
            click("stereoButton")
            save("with stereo")
            click("stereoButton")
            device.forget()
            box().currentIndex = 0
            box().currentIndex = 1
            compare(control("stereoButton").checked, false)
            compare(device.callsTo("stereo.control"), [])
            click("stereoButton")
            device.forget()
            box().currentIndex = 0
            compare(control("stereoButton").checked, true)
            compare(device.callsTo("stereo.control"), [])
        }

        function test_aLoadTouchesNoStreamOfThePanel_data() {
            return [{ tag: "off", on: false }, { tag: "on", on: true }]
        }

        function test_aLoadTouchesNoStreamOfThePanel(data) {
            const buttons = ["imuButton", "stereoButton", "rgbButton", "tofButton", "slamButton", "sgbmButton",
                "tof3DButton", "irButton"]
            open()
            if (!data.on)
                switchOn.apply(this, buttons)
            moveAll(4)
            save("opposite")
            box().currentIndex = 0
            buttons.forEach(function(name) { control(name).checked = data.on })
            const before = buttons.map(function(name) { return control(name).checked })
            device.forget()
            box().currentIndex = 1
            box().activated(1)
            compare(buttons.map(function(name) { return control(name).checked }), before)
            compare(controls(), [])
        }

        function test_uvcModeIsLoadedByIndex() {
            open()
            save("usual")
            box().currentIndex = 0
            control("modeComboBox").currentIndex = 0
            box().currentIndex = 1
            compare(control("modeComboBox").displayText, "Debug + DebugStruct")
            compare(device.stereo.mode, 3)
        }

        function test_activatingTheCurrentPresetLoadsItAgain() {
            open()
            save("bench")
            control("sgbmFovSpinBox").value = 200
            box().activated(1)
            compare(control("sgbmFovSpinBox").value, 96)
        }

        function test_tenPresetsAreEnough() {
            open()
            for (let i = 1; i <= 10; ++i)
                save("p" + i)
            compare(box().count, 11)
            save("one too many")
            compare(box().count, 11)
            compare(box().currentIndex, 10)
            compare(fixture.slot(9).value("name"), "p10")
            const names = ["Default"]
            for (let i = 1; i <= 10; ++i) {
                names.push("p" + i)
                const stored = createTemporaryObject(category, page, { category: "preferSettings" + i })
                compare(stored.value("name"), "p" + i)
            }
            reopen()
            compare(listed(), names)
        }

        function test_aSaveNeverOverwrites() {
            open()
            save("same")
            save("same")
            save("")
            compare(listed(), ["Default", "same", "same", ""])
            reopen()
            compare(listed(), ["Default", "same", "same", ""])
        }

        function test_deletingInTheMiddleKeepsTheSlotsDense() {
            open()
            for (let i = 1; i <= 4; ++i) {
                control("sgbmFovSpinBox").value = 100 + i
                save("p" + i)
            }
            box().currentIndex = 2
            compare(control("sgbmFovSpinBox").value, 102)
            click("deletePresetButton")
            compare(listed(), ["Default", "p1", "p3", "p4"])
            compare(box().currentIndex, 2)
            compare(box().displayText, "p3")
            compare(control("sgbmFovSpinBox").value, 102)
            compare([0, 1, 2, 3].map(function(i) { return fixture.slot(i).value("isAdd") == 1 }),
                    [true, true, true, false])
            compare(Number(fixture.slot(1).value("sgbmFOV")), 103)
            // The slot that is free again keeps the rest.
            compare([fixture.slot(3).value("name"), Number(fixture.slot(3).value("sgbmFOV"))], ["p4", 104])

            reopen()
            compare(listed(), ["Default", "p1", "p3", "p4"])
            box().currentIndex = 3
            compare(control("sgbmFovSpinBox").value, 104)
        }

        function test_deletingTheLastLoadsTheOneBefore() {
            open()
            control("sgbmFovSpinBox").value = 101
            save("p1")
            control("sgbmFovSpinBox").value = 102
            save("p2")
            click("deletePresetButton")
            compare(listed(), ["Default", "p1"])
            compare(box().currentIndex, 1)
            compare(control("sgbmFovSpinBox").value, 101)
            click("deletePresetButton")
            compare(box().currentIndex, 0)
            compare(control("sgbmFovSpinBox").value, 96)
            compare(control("deletePresetButton").enabled, false)
        }

        function test_aSlotWithoutNameIsNotSet() {
            fixture.slot(0).setValue("isAdd", 1)
            stored.forget("preferSettings1/name")
            compare(fixture.slot(0).value("name", "none"), "none")
            fixture.slot(1).setValue("isAdd", 1)
            fixture.slot(1).setValue("name", undefined)
            open()
            compare(listed(), ["Default", "Not Set", "Not Set"])
        }

        function test_aSlotThatDoesNotTellItsUseIsFree() {
            stored.forget("preferSettings1")
            fixture.slot(0).setValue("name", "unused")
            open()
            compare(listed(), ["Default"])
        }

        function test_aSlotBehindAFreeOneIsListed() {
            stored.forget("preferSettings1")
            fixture.slot(1).setValue("isAdd", 1)
            fixture.slot(1).setValue("name", "second")
            open()
            compare(listed(), ["Default", "second"])
        }

        // The two ways of a load have a table of fallbacks each.
        function test_missingKeysTakeTheFallbacks_data() {
            return [
                { tag: "by index, VGA", activate: false, model: true, sgbmResolution: 0, menuAutoClose: true },
                { tag: "by index, 720P", activate: false, model: true, sgbmResolution: 1, menuAutoClose: true },
                { tag: "by index, no SGBM", activate: false, model: false, sgbmResolution: 0, menuAutoClose: true },
                { tag: "activated, VGA", activate: true, model: true, sgbmResolution: 0, menuAutoClose: false },
                { tag: "activated, 720P", activate: true, model: true, sgbmResolution: 1, menuAutoClose: false },
                { tag: "activated, no SGBM", activate: true, model: false, sgbmResolution: 0, menuAutoClose: false }
            ]
        }

        function test_missingKeysTakeTheFallbacks(data) {
            storeBareSlot("bare")
            if (data.model)
                open(function(fake) { fake.sgbm.resolution = data.sgbmResolution })
            else
                openWithout(["sgbm"])
            compare(listed(), ["Default", "bare"])
            if (data.activate)
                box().currentIndex = 1

            // The defaults, but for what the case tells.
            const fallbacks = table.map(function(row) { return row[0] in data ? data[row[0]] : row[3] })
            moveAll(4)
            control("menuAutoCloseCheckbox").checked = !data.menuAutoClose
            control("sgbmResolutionComboBox").currentIndex = 1 - data.sgbmResolution
            table.forEach(function(row, i) { verify(control(row[1])[row[2]] !== fallbacks[i], row[0]) })

            if (data.activate)
                box().activated(1)
            else
                box().currentIndex = 1
            table.forEach(function(row, i) { compareRow(row, fallbacks[i]) })
        }

        function test_onlyTheMissingKeysFallBack() {
            storeBareSlot("half")
            const kept = function(i) { return i % 2 === 1 }
            table.forEach(function(row, i) {
                const value = row[4]
                if (kept(i))
                    fixture.slot(0).setValue(row[0], typeof value === "boolean" ? (value ? "true" : "") : value)
            })
            open()
            // What is stored differs from the defaults that are shown, what is missing falls back from another value.
            table.forEach(function(row, i) { control(row[1])[row[2]] = row[kept(i) ? 3 : 4] })
            box().currentIndex = 1
            table.forEach(function(row, i) { compareRow(row, row[kept(i) ? 4 : 3]) })
        }

        function test_aStoredNumberMayBeText() {
            fixture.slot(0).setValue("isAdd", "1")
            fixture.slot(0).setValue("name", "text")
            fixture.slot(0).setValue("sgbmFOV", "123")
            open()
            compare(listed(), ["Default", "text"])
            box().currentIndex = 1
            compare(control("sgbmFovSpinBox").value, 123)
        }

        function test_aDamagedSlotMovesWhatItCan() {
            open()
            save("damaged")
            fixture.slot(0).setValue("imuMode", "99")
            fixture.slot(0).setValue("stereoUVCmode", "abc")
            fixture.slot(0).setValue("tofMaximaldistance", "far")
            fixture.slot(0).setValue("tofMinimumdistance", "-5")
            fixture.slot(0).setValue("rgbResolution", "1")
            fixture.slot(0).setValue("tofFps", "")
            fixture.slot(0).setValue("sgbmZoom", "100000")
            fixture.slot(0).setValue("sgbmFOV", [1, 2])
            fixture.slot(0).setValue("menuAutoClose", "")
            box().currentIndex = 0
            device.forget()
            box().currentIndex = 1
            compare(control("imumodeComboBox").currentIndex, 1)
            compare(control("modeComboBox").currentIndex, 4)
            fuzzyCompare(control("maxDistanceSlider").value, 1.0, 1e-6)
            fuzzyCompare(control("minDistanceSlider").value, 0.1, 1e-6)
            compare(control("resolutionComboBox").currentIndex, 1)
            compare(control("fpscombox").currentIndex, 5)
            compare(control("sgbmZoomSpinBox").value, 500)
            compare(control("sgbmFovSpinBox").value, 96)
            compare(control("menuAutoCloseCheckbox").checked, false)
            compare(device.callsTo("imu.mode"), [])
        }

        function test_defaultCanNotBeDeleted() {
            open()
            save("one")
            box().currentIndex = 0
            click("deletePresetButton")
            compare(listed(), ["Default", "one"])
            compare(fixture.slot(0).value("isAdd") == 1, true)
        }

        function test_aDeviceWithoutDepthModelsStillMovesItsControls() {
            open()
            moveAll(4)
            save("bench")
            content = null
            fixture.close()
            openWithout(["tof", "tofIr", "rgbd", "sgbm"])
            box().currentIndex = 1
            compareAll(4)
        }

        function test_whatIsNotInAPresetStays() {
            open()
            control("autoExposure").checked = false
            control("gainSlider").value = 3
            control("tofgammaSlider").value = 7
            control("sgbmcolorSchemeCombobox").currentIndex = 4
            save("some")
            control("gainSlider").value = 5
            box().currentIndex = 0
            box().currentIndex = 1
            compare(control("autoExposure").checked, false)
            compare(control("gainSlider").value, 5)
            compare(control("tofgammaSlider").value, 7)
            compare(control("sgbmcolorSchemeCombobox").currentIndex, 4)
        }
    }
}
