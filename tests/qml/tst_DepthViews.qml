import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import ObjectsData 1.0
import "qrc:/"

Item {
    id: window

    property bool isHeaderHovered: false

    width: 700
    height: 500

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    Component {
        id: device
        QtObject {
            id: fake

            property var calls: []
            property QtObject tof: QtObject {
                property QtObject image: null
                property double dataFrameRate: 14.7
                property bool pixelShow: true
                property int depth: 812
                property int centerAvgPx: 790
                property double maxDistance: 1
                property double minDistance: 0.1
                property int framerate: 30
                property int frequency: 0
                property int resolution: 0
                property int fps: 5
                property int mode: 0
                function setX(x) { fake.note("setX", x) }
                function setY(y) { fake.note("setY", y) }
                function setCenterAvgX(x) { fake.note("setCenterAvgX", x) }
                function setCenterAvgY(y) { fake.note("setCenterAvgY", y) }
                function setCenterAvgWidth(w) { fake.note("setCenterAvgWidth", w) }
                function setCenterAvgHeight(h) { fake.note("setCenterAvgHeight", h) }
                function setEnableCenterAvgPx(on) { fake.note("setEnableCenterAvgPx", on) }
                function setLibWorkMode(mode) { fake.note("setLibWorkMode", mode) }
                function setDistanceMode(mode) { fake.note("setDistanceMode", mode) }
            }
            property QtObject sgbm: QtObject {
                property QtObject image: null
                property int frameRate: 12
                property bool pixelShow: true
                property int depth: 812
                property int centerAvgPx: 790
                function setX(x) { fake.note("setX", x) }
                function setY(y) { fake.note("setY", y) }
                function setCenterAvgX(x) { fake.note("setCenterAvgX", x) }
                function setCenterAvgY(y) { fake.note("setCenterAvgY", y) }
                function setCenterAvgWidth(w) { fake.note("setCenterAvgWidth", w) }
                function setCenterAvgHeight(h) { fake.note("setCenterAvgHeight", h) }
                function setEnableDewarp(v) { fake.note("setEnableDewarp", v) }
                function setEnableCenterAvgPx(v) { fake.note("setEnableCenterAvgPx", v) }
                function setDepth(v) { fake.note("setDepth", v) }
                function setEnableFillHoles(v) { fake.note("setEnableFillHoles", v) }
                function setSgbmResolution(v) { fake.note("setSgbmResolution", v) }
                function setZoomFactor(v) { fake.note("setZoomFactor", v) }
                function setBaseline(v) { fake.note("setBaseline", v) }
                function setFOV(v) { fake.note("setFOV", v) }
                function setMaxDisparity(v) { fake.note("setMaxDisparity", v) }
                function setMaxDistance(v) { fake.note("setMaxDistance", v) }
                function setMinDistance(v) { fake.note("setMinDistance", v) }
                function setHoleSize(v) { fake.note("setHoleSize", v) }
                function setHoleMin(v) { fake.note("setHoleMin", v) }
                function setHoleMax(v) { fake.note("setHoleMax", v) }
            }
            property QtObject objects: QtObject {
                property int source: ObjectsData.TOF
                property var objects: [{ shape: 0 }]
            }

            function note(name, value) { calls.push(name + " " + value) }

            function lastOf(name) {
                var found = calls.filter(function(call) { return call.indexOf(name + " ") === 0 })
                return found.length > 0 ? Number(found[found.length - 1].split(" ")[1]) : undefined
            }
        }
    }

    Component {
        id: tofView
        TofView { width: 640; height: 480; minimized: false }
    }

    Component {
        id: sgbmView
        SgbmView { width: 640; height: 480; minimized: false }
    }

    StrictCase {
        name: "DepthViews"

        property var camera: null
        property var view: null
        property var painter: null

        function init() {
            expectedWarnings = []
            messages.start()
            camera = createTemporaryObject(device, window)
        }

        // A frame of 320 by 200 in 640 by 480: shown at twice its size, 40 below the upper edge.
        function open(data, properties) {
            camera[data.tag].image = frames.make(320, 200)
            var all = properties || {}
            all.camera = camera
            view = make(data.component, all)
            painter = find(view, "painter")
            tryCompare(painter, "imageRation", 2)
            tryCompare(find(view, "centerBox"), "x", 320)
            // Above the picture first, since it may have come up under a resting pointer.
            mouseMove(view, 10, 5)
            mouseMove(view, 10, 60)
        }

        function both() {
            return [
                { tag: "tof", component: tofView, label: "[TOF]  320x200@15fps", unit: "mm", rest: " " },
                { tag: "sgbm", component: sgbmView, label: "[SGBM]  320x200@12fps", unit: "", rest: "" }
            ]
        }

        function test_labels_data() { return both() }

        function test_labels(data) {
            open(data)
            compare(painter.source, camera[data.tag].image)
            compare(find(view, "infoLabel").text, data.label)
            var label = find(view, "depthLabel")
            compare(label.text, "x: 5 ,y: 10 depth: 812" + data.unit + data.rest)
            view[data.tag + "CenterPixelSwitchChecked"] = true
            compare(label.text, "x: 5 ,y: 10 depth: 812" + data.unit + "  avg depth: 790" + data.unit)
            verify(label.visible)
            camera[data.tag].pixelShow = false
            verify(!label.visible)
        }

        function test_mouseTellsThePixel_data() { return both() }

        function test_mouseTellsThePixel(data) {
            open(data)
            mouseMove(view, 101, 241)
            compare([view._x, view._y], [50, 100])
            compare([camera.lastOf("setX"), camera.lastOf("setY")], [50, 100])
        }

        function test_flipsDontMoveThePixel_data() { return both() }

        // The numbers are those of the frame as it came, whichever way it is shown.
        function test_flipsDontMoveThePixel(data) {
            open(data)
            view.horizontalFlip = true
            view.verticalFlip = true
            mouseMove(view, 101, 241)
            compare([view._x, view._y], [50, 100])
            compare([camera.lastOf("setX"), camera.lastOf("setY")], [50, 100])
        }

        function test_aPointerThatLeapsInTellsItsPixel_data() { return both() }

        function test_aPointerThatLeapsInTellsItsPixel(data) {
            open(data)
            mouseMove(window, 680, 490)
            camera.calls = []
            // The window lies about the view: one event brings the pointer from outside.
            mouseMove(window, 101, 241)
            compare([view._x, view._y], [50, 100])
            compare(camera.calls.slice(0, 2), ["setX 50", "setY 100"])
            mouseMove(window, 680, 490)
        }

        function test_outsideThePictureTheLastPixelIsSentAgain_data() { return both() }

        function test_outsideThePictureTheLastPixelIsSentAgain(data) {
            open(data)
            mouseMove(view, 101, 241)
            // Above the picture, and below it.
            var beside = [20, 460]
            beside.forEach(function(y) {
                camera.calls = []
                mouseMove(view, 101, y)
                compare([view._x, view._y], [50, 100])
                compare(camera.calls, ["setX 50", "setY 100"])
            })
        }

        function test_clicksAreForwarded_data() { return both() }

        function test_clicksAreForwarded(data) {
            open(data)
            mouseClick(view, 300, 300)
            compare(view.optionsVisible, true)
            mouseDoubleClickSequence(view, 300, 300)
            compare(view.maximized, true)
            view.minimized = true
            view.optionsVisible = false
            mouseClick(view, 300, 300)
            compare(view.optionsVisible, false)
        }

        function test_aDoubleClickOnTheBoxIsOneOnTheView_data() { return both() }

        function test_aDoubleClickOnTheBoxIsOneOnTheView(data) {
            open(data)
            const box = find(view, "centerBox")
            view.optionsVisible = true
            box.visible = true
            mouseDoubleClickSequence(box, 10, 10)
            compare([view.maximized, view.optionsVisible], [true, false])
        }

        function test_boxStandsAtTheMiddle_data() { return both() }

        function test_boxStandsAtTheMiddle(data) {
            open(data)
            var box = find(view, "centerBox")
            compare([box.width, box.height, box.visible, box.border.width], [50, 50, false, 3])
            verify(Qt.colorEqual(box.border.color, "#225022"))
            verify(Qt.colorEqual(box.color, "transparent"))
            tryCompare(box, "x", 320)
            tryCompare(box, "y", 240)
            compare([camera.lastOf("setCenterAvgX"), camera.lastOf("setCenterAvgY")], [160, 100])
        }

        function test_shownBoxTellsItsSize_data() { return both() }

        function test_shownBoxTellsItsSize(data) {
            open(data)
            verify(camera.lastOf("setCenterAvgWidth") === undefined)
            view[data.tag + "CenterPixelSwitchChecked"] = true
            compare([camera.lastOf("setCenterAvgWidth"), camera.lastOf("setCenterAvgHeight")], [25, 25])
            var drag = find(view, "mouseAreaDrag").drag
            compare([drag.minimumX, drag.maximumX, drag.minimumY, drag.maximumY], [0, 590, 40, 390])
        }

        function test_boxStaysWhereItWasDropped_data() { return both() }

        function test_boxStaysWhereItWasDropped(data) {
            var properties = {}
            properties[data.tag + "CenterPixelSwitchChecked"] = true
            open(data, properties)
            var box = find(view, "centerBox")
            tryCompare(box, "x", 320)
            mouseDrag(box, 25, 25, -100, -1000)
            verify(box.x < 320)
            compare(box.y, 40)
            compare(camera.lastOf("setCenterAvgX"), box.x / 2)
            compare(camera.lastOf("setCenterAvgY"), 0)
            var dropped = [box.x, box.y]
            frames.refill(camera[data.tag].image, 160, 120)
            tryCompare(painter, "sourceWidth", 160)
            tryCompare(painter, "imageRation", 4)
            compare([box.x, box.y], dropped)
        }

        function test_aNewFrameSizeIsTakenInByADroppedBox_data() { return both() }

        // 160 by 120 fill 640 by 480 at four times their size. The ToF view tells where the box stands in the new
        // frame; the stereo view only how large it is there.
        function test_aNewFrameSizeIsTakenInByADroppedBox(data) {
            var properties = {}
            properties[data.tag + "CenterPixelSwitchChecked"] = true
            open(data, properties)
            var box = find(view, "centerBox")
            mouseDrag(box, 25, 25, -100, 40)
            verify(box.x < 320 && box.y > 240)
            var dropped = [box.x, box.y]
            var before = [camera.lastOf("setCenterAvgX"), camera.lastOf("setCenterAvgY")]
            compare(before, [dropped[0] / 2, (dropped[1] - 40) / 2])
            frames.refill(camera[data.tag].image, 160, 120)
            tryVerify(function() { return camera.lastOf("setCenterAvgWidth") === 12.5 })
            compare(camera.lastOf("setCenterAvgHeight"), 12.5)
            var drag = find(view, "mouseAreaDrag").drag
            compare([drag.minimumX, drag.maximumX, drag.minimumY, drag.maximumY], [0, 590, 0, 430])
            compare([camera.lastOf("setCenterAvgX"), camera.lastOf("setCenterAvgY")],
                    data.tag === "tof" ? [dropped[0] / 4, dropped[1] / 4] : before)
        }

        function test_aNewFrameWidthTellsWhereTheBoxStands_data() { return both() }

        // 320 and 160 by 200 in 960 by 480 have one ratio, 2.4: only the width is new, and the dropped box stays.
        function test_aNewFrameWidthTellsWhereTheBoxStands(data) {
            var properties = { width: 960 }
            properties[data.tag + "CenterPixelSwitchChecked"] = true
            camera[data.tag].image = frames.make(320, 200)
            properties.camera = camera
            view = make(data.component, properties)
            painter = find(view, "painter")
            var box = find(view, "centerBox")
            tryCompare(box, "x", 480)
            mouseDrag(box, 25, 25, 30, 30)
            verify(box.x > 480)
            fuzzyCompare(camera.lastOf("setCenterAvgX"), (box.x - 96) / 2.4, 1e-3)
            camera.calls = []
            frames.refill(camera[data.tag].image, 160, 200)
            tryCompare(painter, "sourceWidth", 160)
            tryCompare(painter.topLeftPoint, "x", 288)
            wait(0)
            var told = [camera.lastOf("setCenterAvgX"), camera.lastOf("setCenterAvgY")]
            compare([told[0] !== undefined, told[1] !== undefined], data.tag === "tof" ? [true, true] : [false, false])
            if (data.tag === "tof")
                fuzzyCompare(told[1], box.y / 2.4, 1e-3)
        }

        function test_aNewViewSizeMovesTheLimits_data() { return both() }

        // 320 by 200 in 960 by 480: 768 by 480 at 2.4 times their size, 96 from either side.
        function test_aNewViewSizeMovesTheLimits(data) {
            var properties = {}
            properties[data.tag + "CenterPixelSwitchChecked"] = true
            open(data, properties)
            view.width = 960
            var drag = find(view, "mouseAreaDrag").drag
            tryVerify(function() { return Math.abs(camera.lastOf("setCenterAvgWidth") - 50 / 2.4) < 1e-3 })
            fuzzyCompare(camera.lastOf("setCenterAvgHeight"), 50 / 2.4, 1e-3)
            compare([drag.minimumX, drag.maximumX, drag.minimumY, drag.maximumY], [96, 814, 0, 430])
            mouseMove(view, 337, 241)
            compare([view._x, view._y], [100, 100]);
            // Beside the picture the last pixel is told again.
            [50, 900].forEach(function(x) {
                camera.calls = []
                mouseMove(view, x, 300)
                compare([view._x, view._y], [100, 100])
                compare(camera.calls, ["setX 100", "setY 100"])
            })
        }

        function test_theBoxOutlivesItsCamera_data() { return both() }

        function test_theBoxOutlivesItsCamera(data) {
            var properties = {}
            properties[data.tag + "CenterPixelSwitchChecked"] = true
            open(data, properties)
            var box = find(view, "centerBox")
            camera.calls = []
            view.camera = null
            box.x = 20
            box.y = 60
            view[data.tag + "CenterPixelSwitchChecked"] = false
            view[data.tag + "CenterPixelSwitchChecked"] = true
            verify(box.visible)
            mouseMove(view, 200, 200)
            compare(camera.calls, [])
        }

        function test_newSizeIsTold_data() { return both() }

        function test_newSizeIsTold(data) {
            open(data)
            verify(messages.lines().some(function(line) { return /width changed/.test(line) && !/Source/.test(line) }))
            compare(messages.lines().some(function(line) { return /Source width changed/.test(line) }), data.tag === "tof")
        }

        function test_withoutCameraNothingHappens_data() { return both() }

        function test_withoutCameraNothingHappens(data) {
            view = make(data.component)
            compare(find(view, "infoLabel").text, "")
            compare(find(view, "depthLabel").text, "")
            verify(!find(view, "depthLabel").visible)
            compare(find(view, "painter").source, null)
            view[data.tag + "CenterPixelSwitchChecked"] = true
            mouseMove(view, 200, 200)
            compare([view._x, view._y], [0, 0])
            workEveryControl()
            camera[data.tag] = null
            view.camera = camera
            compare(find(view, "painter").source, null)
            workEveryControl()
            find(view, "centerBox").x = 20
            compare(camera.calls, [])
        }

        // Moves each switch, box and slider that the view has, and back, which no warning may follow.
        function workEveryControl() {
            var worked = 0
            var names = ["tofShowDepthSwitch", "tofCenterPixelSwitch", "colorizeCheckbox", "sgbmDewarpSwitch",
                         "sgbmCenterPixelSwitch", "sgbmDepthOrDisparitySwitch", "sgbmFillholesOrMaskSwitch",
                         "sgbmSourceSwitch"]
            names.forEach(function(name) {
                var item = findChild(view, name)
                if (!item)
                    return
                item.checked = !item.checked
                item.checked = !item.checked
                ++worked
            })
            names = ["modeComboBox", "distanceModeComboBox", "frequencyCombox", "resolutionCombox", "combox",
                     "sonyTofModecombox", "sgbmResolutionComboBox"]
            names.forEach(function(name) {
                var item = findChild(view, name)
                if (!item)
                    return
                var index = item.currentIndex
                item.currentIndex = index === 0 ? 1 : 0
                item.currentIndex = index
                ++worked
            })
            names = ["maxDistanceSlider", "minDistanceSlider", "tofFramerateSlider", "sgbmZoomSpinBox",
                     "sgbmBaselineSpinBox", "sgbmFovSpinBox", "sgbmMaxDisparitySpinBox", "sgbmMaxDistanceSpinBox",
                     "sgbmMinDistanceSpinBox", "sgbmHoleSizeSpinBox", "sgbmHoleMinSpinBox", "sgbmHoleMaxSpinBox",
                     "sgbmCenterWidthSpinBox", "sgbmCenterHeightSpinBox"]
            names.forEach(function(name) {
                var item = findChild(view, name)
                if (!item)
                    return
                var value = item.value
                item.value = item.to
                item.value = value
                ++worked
            })
            verify(worked >= 12, worked)
        }

        function test_openingSendsNoDefaults_data() { return both() }

        // The spin boxes show values of their own until they are moved: only the mouse and the box have spoken.
        function test_openingSendsNoDefaults(data) {
            open(data)
            var spoken = { setX: true, setY: true, setCenterAvgX: true, setCenterAvgY: true }
            compare(camera.calls.filter(function(call) { return !spoken[call.split(" ")[0]] }), [])
        }

        function test_tofDrawsItsObjectsAndDistances() {
            open(both()[0])
            compare(painter.tofData, camera.tof)
            compare(painter.objects.length, 1)
            fuzzyCompare(painter.maxDistance, 1.0, 1e-6)
            fuzzyCompare(painter.minDistance, 0.1, 1e-6)
            compare(painter.colorize, true)
            compare(view.tofPainter, painter)
            camera.objects.source = ObjectsData.RGB
            compare(painter.objects.length, 0)
        }

        function test_sgbmDrawsNoObjects() {
            open(both()[1])
            compare(painter.objects.length, 0)
            compare(painter.tofData, null)
        }

        function test_hiddenTofControlsReachTheStream() {
            open(both()[0])
            camera.calls = []
            find(view, "maxDistanceSlider").value = 3
            find(view, "minDistanceSlider").value = 0.5
            find(view, "tofFramerateSlider").value = 25
            fuzzyCompare(painter.maxDistance, 3, 1e-6)
            fuzzyCompare(painter.minDistance, 0.5, 1e-6)
            compare([camera.tof.maxDistance, camera.tof.minDistance, camera.tof.framerate], [3, 0.5, 30])
            tryCompare(camera.tof, "framerate", 25)
            find(view, "modeComboBox").currentIndex = 4
            find(view, "distanceModeComboBox").currentIndex = 0
            find(view, "distanceModeComboBox").currentIndex = 2
            find(view, "frequencyCombox").currentIndex = 1
            find(view, "resolutionCombox").currentIndex = 1
            find(view, "combox").currentIndex = 2
            find(view, "sonyTofModecombox").currentIndex = 2
            find(view, "tofCenterPixelSwitch").checked = true
            find(view, "tofShowDepthSwitch").checked = true
            find(view, "tofShowDepthSwitch").checked = false
            find(view, "colorizeCheckbox").checked = false
            compare(camera.calls, ["setLibWorkMode 4", "setDistanceMode 1", "setDistanceMode 2", "setEnableCenterAvgPx true"])
            compare([camera.tof.frequency, camera.tof.resolution, camera.tof.fps, camera.tof.mode, camera.tof.pixelShow],
                    [1, 1, 2, 2, false])
            compare(painter.colorize, false)
            find(view, "colorizeCheckbox").checked = true
            find(view, "maxDistanceSlider").value = 1.0
            find(view, "minDistanceSlider").value = 0.1
            find(view, "tofFramerateSlider").value = 15
        }

        function test_hiddenSgbmControlsReachTheStream_data() {
            return [
                { tag: "sgbmDewarpSwitch", initial: true, value: false, call: "setEnableDewarp false" },
                { tag: "sgbmCenterPixelSwitch", initial: false, value: true, call: "setEnableCenterAvgPx true" },
                { tag: "sgbmDepthOrDisparitySwitch", initial: true, value: false, call: "setDepth false" },
                { tag: "sgbmFillholesOrMaskSwitch", initial: true, value: false, call: "setEnableFillHoles false" },
                { tag: "sgbmZoomSpinBox", initial: 100, value: 250, call: "setZoomFactor 2.5", from: 100, to: 500, step: 10 },
                { tag: "sgbmBaselineSpinBox", initial: 80, value: 50, call: "setBaseline 0.05", from: 1, to: 120, step: 1 },
                { tag: "sgbmFovSpinBox", initial: 96, value: 90, call: "setFOV 90", from: 50, to: 300, step: 1 },
                { tag: "sgbmMaxDisparitySpinBox", initial: 230, value: 64, call: "setMaxDisparity 64", from: 0, to: 255, step: 1 },
                { tag: "sgbmMaxDistanceSpinBox", initial: 8000, value: 5000, call: "setMaxDistance 5000", from: 1001, to: 65535, step: 1 },
                { tag: "sgbmMinDistanceSpinBox", initial: 100, value: 200, call: "setMinDistance 200", from: 1, to: 65535, step: 1 },
                { tag: "sgbmHoleSizeSpinBox", initial: 0, value: 3, call: "setHoleSize 3", from: 0, to: 5, step: 1 },
                { tag: "sgbmHoleMinSpinBox", initial: 500, value: 300, call: "setHoleMin 300", from: 1, to: 1000, step: 1 },
                { tag: "sgbmHoleMaxSpinBox", initial: 10000, value: 9000, call: "setHoleMax 9000", from: 1001, to: 65535, step: 1 },
                { tag: "sgbmCenterWidthSpinBox", initial: 50, value: 60, call: "setCenterAvgWidth 60", from: 1, to: 100, step: 1 },
                { tag: "sgbmCenterHeightSpinBox", initial: 50, value: 70, call: "setCenterAvgHeight 70", from: 1, to: 100, step: 1 }
            ]
        }

        function test_hiddenSgbmControlsReachTheStream(data) {
            open(both()[1])
            var item = find(view, data.tag)
            var property = data.from === undefined ? "checked" : "value"
            compare(item[property], data.initial)
            if (data.from !== undefined)
                compare([item.from, item.to, item.stepSize], [data.from, data.to, data.step])
            camera.calls = []
            item[property] = data.value
            compare(camera.calls, [data.call])
        }

        function test_sgbmBoxTakesTheSizeOfItsSpinBoxes() {
            open(both()[1])
            find(view, "sgbmCenterWidthSpinBox").value = 60
            find(view, "sgbmCenterHeightSpinBox").value = 70
            compare([view.centerBox.width, view.centerBox.height], [60, 70])
        }

        function test_sgbmModeSendsNothing() {
            open(both()[1])
            camera.calls = []
            find(view, "sgbmModeSpinBox").value = 2
            find(view, "sgbmSourceSwitch").checked = true
            compare(camera.calls, [])
            compare(camera.sgbm.pixelShow, true)
            find(view, "sgbmResolutionComboBox").currentIndex = 1
            compare(camera.calls, ["setSgbmResolution 1"])
        }

        function test_sgbmColumnsFollowTheirSwitches() {
            open(both()[1], { optionsVisible: true })
            verify(!find(view, "settingsPage").visible)
            find(view, "settingsButton").checked = true
            verify(find(view, "settingsPage").visible)
            verify(find(view, "holeColumn").visible)
            verify(!find(view, "boxColumn").visible)
            find(view, "sgbmFillholesOrMaskSwitch").checked = false
            verify(!find(view, "holeColumn").visible)
            find(view, "sgbmFillholesOrMaskSwitch").checked = true
            verify(find(view, "holeColumn").visible)
            find(view, "sgbmDepthOrDisparitySwitch").checked = false
            find(view, "sgbmCenterPixelSwitch").checked = true
            verify(!find(view, "holeColumn").visible)
            verify(find(view, "boxColumn").visible)
            view.optionsVisible = false
            verify(!find(view, "settingsPage").visible)
        }
    }
}
