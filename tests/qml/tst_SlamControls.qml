import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

Item {
    id: window

    property bool isHeaderHovered: false
    property bool advanced: true

    width: 1000
    height: 700

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    SlamCase {
        id: testCase

        name: "SlamControls"

        function lines(text) { return messages.lines().filter(function(line) { return line.indexOf(text) >= 0 }).length }

        // The tool tips ask a device for the map's path that isn't there.
        function switchOff() {
            view.camera = null
            expectWarning(/SlamView\.qml:\d+: TypeError: .*slam.*/)
        }

        function state() {
            return [item("modeLabel").text, item("loopClosureButton").text, item("loopClosureButton").enabled,
                    item("loadButton").enabled, item("loopClosureIndicator").running]
        }

        function test_aSaveThatEndsWhileSlamIsOffGivesItsControlsBack_data() {
            return [
                { tag: "while off", before: true },
                { tag: "after it is on again", before: false }
            ]
        }

        function test_aSaveThatEndsWhileSlamIsOffGivesItsControlsBack(row) {
            open()
            mouseClick(item("loopClosureButton"))
            compare(state(), ["Loop Closure", "Create map", false, false, true])
            compare(device.takeCalls(), ["slam.saveMapAndSwitchToCslam"])
            switchOff()
            compare(item("loopClosureIndicator").running, true)
            if (row.before)
                device.finishSave(2, 0)
            view.camera = device
            compare(state(), ["Loop Closure", "Create map", row.before, false, !row.before])
            if (!row.before)
                device.finishSave(2, 0)
            compare(state(), ["Loop Closure", "Create map", true, false, false])
            mouseClick(item("loopClosureButton"))
            compare(device.takeCalls(), ["slam.stop", "slam.start"])
            compare(state(), ["Visual Odometry", "Save map", true, true, false])
        }

        function test_aDeviceThatGoesDuringASaveGivesTheControlsBack() {
            open()
            mouseClick(item("loopClosureButton"))
            compare(item("loopClosureIndicator").running, true)
            const other = make(deviceComponent).device
            switchOff()
            compare(item("loopClosureIndicator").running, true)
            device.dropSlam()
            tryCompare(item("loopClosureIndicator"), "running", false)
            view.camera = other
            compare(state(), ["Loop Closure", "Create map", true, false, false])
        }

        function test_aSaveThatEndsWhileAnotherDeviceIsShownIsHeardOf() {
            open()
            mouseClick(item("loopClosureButton"))
            view.camera = make(deviceComponent).device
            compare(item("loopClosureIndicator").running, true)
            device.finishSave(2, 0)
            compare(item("loopClosureIndicator").running, false)
        }

        function test_theRateIsGuardedAboveSixHundred_data() {
            return [{ tag: "600", poses: 600, restarts: 0 }, { tag: "601", poses: 601, restarts: 1 }]
        }

        function test_theRateIsGuardedAboveSixHundred(row) {
            open()
            device.deliverLine("slam", 1, row.poses)
            device.measureRate()
            compare(device.slam.dataFrameRate, row.poses)
            compare(item("fpsLabel").text, "[SLAM]  @" + row.poses + "fps")
            compare(lines("dataframe too big"), row.restarts)
            compare(device.takeCalls().filter(function(call) { return call === "slam.start" }).length, row.restarts)
        }

        function test_theModeLosesItsCaptionInANarrowView_data() {
            return [
                { tag: "host, 459", source: "slamSourceButton", name: "modeCaption", width: 459, shown: false },
                { tag: "host, 460", source: "slamSourceButton", name: "modeCaption", width: 460, shown: true },
                { tag: "edge, 459", source: "edgeSourceButton", name: "edgeModeCaption", width: 459, shown: false },
                { tag: "edge, 460", source: "edgeSourceButton", name: "edgeModeCaption", width: 460, shown: true }
            ]
        }

        function test_theModeLosesItsCaptionInANarrowView(row) {
            open()
            item(row.source).checked = true
            const caption = item(row.name)
            compare(caption.text, "SLAM mode:")
            compare(caption.visible, true)
            view.width = row.width
            compare(view.hasRoomForCaptions, row.shown)
            compare(caption.visible, row.shown)
            compare(item(row.source === "slamSourceButton" ? "modeLabel" : "edgeModeLabel").visible, true)
            // Whichever it is, the row fits.
            waitForRendering(view)
            verify(caption.parent.width <= row.width, caption.parent.width)
        }

        // A loaded map's percentage stands before them, with its own source only.
        function test_thePercentageTakesRoomFromTheMode_data() {
            return [
                { tag: "host, 509", source: "slamSourceButton", width: 509, mode: false, caption: false },
                { tag: "host, 510", source: "slamSourceButton", width: 510, mode: true, caption: false },
                { tag: "host, 629", source: "slamSourceButton", width: 629, mode: true, caption: false },
                { tag: "host, 630", source: "slamSourceButton", width: 630, mode: true, caption: true },
                { tag: "edge, 339", source: "edgeSourceButton", width: 339, mode: false, caption: false },
                { tag: "edge, 340", source: "edgeSourceButton", width: 340, mode: true, caption: false },
                { tag: "edge, 460", source: "edgeSourceButton", width: 460, mode: true, caption: true }
            ]
        }

        function test_thePercentageTakesRoomFromTheMode(row) {
            open()
            device.putMapFile()
            mouseClick(item("loadButton"))
            item(row.source).checked = true
            view.width = row.width
            const edge = row.source === "edgeSourceButton"
            compare([item(edge ? "edgeModeLabel" : "modeLabel").visible, item(edge ? "edgeModeCaption" : "modeCaption").visible],
                    [row.mode, row.caption])
            device.finishLoad()
        }

        function shownPlace(name) {
            const shown = item(name)
            return shown.visible && shown.opacity > 0 ? shown.mapToItem(view, 0, 0, shown.width, shown.height) : null
        }

        function apart(a, b) {
            return !a || !b || a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top
        }

        function test_nothingLiesOverSomethingElseInASmallView() {
            open()
            for (let width = 150; width <= 700; width += 25) {
                for (let height = 150; height <= 500; height += 25) {
                    view.width = width
                    view.height = height
                    waitForRendering(view)
                    const size = width + " x " + height
                    const readings = shownPlace("slamInfoCol")
                    const boxes = shownPlace("col")
                    const buttons = shownPlace("slamSourceRow")
                    verify(apart(readings, boxes) && apart(readings, buttons) && apart(boxes, buttons), size)
                    for (const place of [readings, boxes, buttons])
                        verify(!place || (place.left >= 0 && place.right <= width && place.bottom <= height), size)
                    compare(item("slamInfoCol").enabled, readings !== null)
                    compare(item("col").enabled, boxes !== null)
                    compare(item("loopClosureButton").enabled, buttons !== null)
                }
            }
            view.width = 1000
            view.height = 700
            verify(shownPlace("slamInfoCol") && shownPlace("col") && shownPlace("slamSourceRow"))
            // Just high enough for the readings; the buttons stand beside them.
            view.height = item("valueControl").y + item("valueControl").height
            verify(shownPlace("slamInfoCol") && shownPlace("col") && shownPlace("slamSourceRow"))
            view.width = 330
            view.height = 250
            verify(!shownPlace("slamInfoCol") && shownPlace("col") && shownPlace("slamSourceRow"))
            view.height = 190
            verify(!shownPlace("slamInfoCol") && !shownPlace("col") && !shownPlace("slamSourceRow"))
            view.width = 0
            for (const name of ["slamInfoCol", "col", "loopClosureButton", "loadButton"])
                compare(item(name).enabled, true, name)
        }

        function test_aViewOfTheSmallestSizeShowsTheButtonsOnly_data() {
            return [
                { tag: "host", source: "slamSourceButton", name: "modeLabel", button: "loopClosureButton" },
                { tag: "edge", source: "edgeSourceButton", name: "edgeModeLabel", button: "loopClosureEdgeButton" }
            ]
        }

        function test_aViewOfTheSmallestSizeShowsTheButtonsOnly(row) {
            open()
            item(row.source).checked = true
            view.width = 340
            compare(item(row.name).visible, true)
            view.width = 339
            compare(item(row.name).visible, false)
            compare(item(row.button).visible, true)
        }
    }
}
