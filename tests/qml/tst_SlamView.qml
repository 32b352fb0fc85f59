import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Scene3D 2.13
import QtTest 1.13
import Qt.labs.settings 1.1
import SlamDevice 1.0
import "qrc:/"

Item {
    id: window

    property bool isHeaderHovered: false

    width: 1000
    height: 700

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    Component {
        id: viewComponent

        SlamView {
            width: 1000
            height: 700
            minimized: false
        }
    }

    Component {
        id: settingsComponent

        Item {
            property alias freeView: store.freeView
            property alias displayPlanes: store.displayPlanes

            Settings {
                id: store

                property bool freeView: false
                property bool displayPlanes: true

                category: "SlamView"
            }
        }
    }

    Component {
        id: deviceComponent

        Item {
            readonly property SlamDevice device: SlamDevice {}
        }
    }

    StrictCase {
        id: testCase

        name: "SlamView"

        property var device: null
        property var view: null
        property var scene: null

        readonly property var fallback: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1)

        function open() {
            device = createTemporaryObject(deviceComponent, window).device
            view = createTemporaryObject(viewComponent, window, { camera: device })
            scene = find(view, "scene3d").entity
            waitForRendering(view)
        }

        function openEmpty() {
            view = createTemporaryObject(viewComponent, window)
            scene = find(view, "scene3d").entity
            expectWarning(/SlamView\.qml:\d+: TypeError: .*(slam|getMapPath).*/)
        }

        function item(name) { return find(view, name) }
        function lines(text) { return messages.lines().filter(function(line) { return line.indexOf(text) >= 0 }).length }

        // Popups are no items, but children of the view's object tree.
        function note(name) {
            return device.node(view, name)
        }

        function state() {
            return [item("modeLabel").text, item("loopClosureButton").text, item("loopClosureButton").enabled,
                    item("loadButton").text, item("loadButton").enabled, view.isLoadMap]
        }

        function test_startsInVisualOdometryOfTheHost() {
            open()
            compare(view.isedge, false)
            compare(view.sourceChecked, true)
            compare(view.planesSourceIndex, 0)
            compare(view.isReset, false)
            compare(view.isLoadMap, false)
            compare(view.isMultiSlamShow, true)
            compare(view.slamPoseCount, 0)
            compare(view.edgePoseCount, 0)
            compare(view.rootRatio2, item("valueControl").width / 1000)
            compare(view.rootRatio3, 0.8 - item("col").width / 1000)
            compare(item("slamSourceButton").checked, true)
            compare(item("edgeSourceButton").checked, false)
            compare(item("mapCheckbox").checked, true)
            compare(item("freeViewCheckBox").checked, false)
            compare(item("fpsLabel").text, "[SLAM]  @0fps")
            compare(item("edgeSourceButton").text, "Edge")
            compare(item("slamSourceButton").text, "Mixed")
            const scene3d = item("scene3d")
            compare(scene3d.aspects, ["input", "logic"])
            compare(scene3d.cameraAspectRatioMode, Scene3D.AutomaticAspectRatio)
            compare(scene3d.visible, true)
        }

        function test_aViewWithoutWidthDrawsNoScene() {
            open()
            view.width = 0
            compare(item("scene3d").visible, false)
        }

        function test_withoutACameraAllFallsBack() {
            openEmpty()
            compare(scene.position, Qt.vector3d(0, 0, 0))
            compare(scene.orientation, Qt.quaternion(0, 0, 0, 1))
            compare(scene.viewVector, Qt.vector3d(0, 0, 1))
            compare(scene.viewCenter, Qt.vector3d(0, 0, 1))
            compare(scene.matrix, fallback)
            compare(scene.cameraMatrixFromSlam, fallback)
            compare(scene.cameraMatrixFromEdge, fallback)
            compare(scene.planes, null)
            compare(scene.poses, null)
            compare(scene.pointCloud, null)
            compare(item("fpsLabel").text, "")
            compare(item("statusIndicator").active, false)
            verify(Qt.colorEqual(item("statusIndicator").color, "orange"))
            ;["xLabel", "yLabel", "zLabel", "rollLabel", "pitchLabel", "yawLabel", "distanceLabel", "pointsLabel"].forEach(
                function(name) { compare(item(name).text, " - ", name) })
        }

        function test_theSceneFollowsTheSource() {
            open()
            device.deliver("slam", 1, 2, 3, 0.25)
            compare(scene.position, Qt.vector3d(1, 2, 3))
            compare(scene.matrix, device.slam.matrix)
            compare(scene.cameraMatrixFromSlam, device.slam.matrix)
            compare(scene.viewCam.camera.position, Qt.vector3d(1, 2, 2))
            compare(scene.viewCam.camera.viewCenter, Qt.vector3d(1, 2, 3))
            compare(item("xLabel").text, "1.000")
            compare(item("yLabel").text, "2.000")
            compare(item("zLabel").text, "3.000")
            compare(item("rollLabel").text, "0.0")
            compare(item("pointsLabel").text, "0")

            device.deliver("edge", 4, 5, 6)
            compare(scene.cameraMatrixFromEdge, device.edge.matrix)
            compare(scene.position, Qt.vector3d(1, 2, 3))
            item("edgeSourceButton").checked = true
            compare(scene.position, Qt.vector3d(4, 5, 6))
            compare(scene.matrix, device.edge.matrix)
            compare(scene.cameraMatrixFromSlam, device.slam.matrix)
            compare(scene.displaySlamCamera, false)
            compare(scene.displayEdgeCamera, true)
            compare(item("pointsLabel").text, " - ")
            item("bothSourceButton").checked = true
            compare(scene.position, Qt.vector3d(1, 2, 3))
            compare(scene.displaySlamCamera, true)
            compare(scene.displayEdgeCamera, true)
        }

        function test_distanceAndPointsAreShown() {
            open()
            device.deliver("slam", 1, 0, 0)
            device.deliver("slam", 3, 0, 0)
            compare(item("distanceLabel").text, "2.00 m")
            device.deliverMap(7)
            compare(item("pointsLabel").text, "7")
            compare(scene.pointCloud, device.map.pointCloud)
        }

        function test_theStatusColourIsARamp_data() {
            return [
                { tag: "red", pct: 0, r: 1, g: 0 },
                { tag: "orange", pct: 0.25, r: 1, g: 0.5 },
                { tag: "yellow", pct: 0.5, r: 1, g: 1 },
                { tag: "lime", pct: 0.75, r: 0.5, g: 1 },
                { tag: "green", pct: 1, r: 0, g: 1 }
            ]
        }

        function test_theStatusColourIsARamp(row) {
            open()
            device.deliver("slam", 1, 0, 0, row.pct)
            const indicator = item("statusIndicator")
            compare(indicator.active, true)
            fuzzyCompare(indicator.color.r, row.r, 0.003)
            fuzzyCompare(indicator.color.g, row.g, 0.003)
            fuzzyCompare(indicator.color.b, 0, 0.003)
            compare(indicator.color.a, 1)
        }

        function test_posesFeedThePathOfTheirSource() {
            open()
            device.deliverLine("slam", 1, 49)
            device.deliverLine("edge", 1, 3)
            compare(view.slamPoseCount, 49)
            compare(view.edgePoseCount, 3)
            compare(scene.slamPath.length, 49)
            compare(scene.edgePath.length, 3)
            fuzzyCompare(scene.slamPath[0].x, 0.01, 1e-6)
            fuzzyCompare(scene.slamPath[48].x, 0.49, 1e-6)
        }

        function test_thePathIsDrawnAtEachFiftiethPose() {
            open()
            const vertices = device.node(device.node(scene, "slamPath"), "vertices")
            device.deliverLine("slam", 1, 49)
            compare(device.floatsOf(vertices).length, 0)
            device.deliverLine("slam", 50, 1)
            compare(device.floatsOf(vertices).length, 150)
            device.deliverLine("slam", 51, 49)
            compare(device.floatsOf(vertices).length, 150)
            device.deliverLine("slam", 100, 1)
            compare(device.floatsOf(vertices).length, 300)
        }

        function test_thePathHasABound() {
            open()
            for (let i = 1; i <= 99990; ++i)
                scene.slamPath.push(Qt.vector3d(0.01 * i, 0, 0))
            device.deliverLine("slam", 99991, 10)
            compare(scene.slamPath.length, 100000)
            device.deliverLine("slam", 100001, 75)
            compare(scene.slamPath.length, 100000)
            fuzzyCompare(scene.slamPath[0].x, 0.76, 1e-6)
            compare(view.slamPoseCount, 85)
            scene.drawSlamPath()
            const vertices = device.floatsOf(device.node(device.node(scene, "slamPath"), "vertices"))
            compare(vertices.length, 300000)
            fuzzyCompare(vertices[0], 0.76, 1e-6)
            fuzzyCompare(vertices[299997], 1000.75, 1e-4)
        }

        function test_clearLeavesTheCountersAlone() {
            open()
            const vertices = device.node(device.node(scene, "slamPath"), "vertices")
            device.deliverLine("slam", 1, 70)
            mouseClick(item("clearButton"))
            compare(scene.slamPath.length, 0)
            compare(device.floatsOf(vertices).length, 0)
            compare(view.slamPoseCount, 70)
            compare(device.takeCalls(), [])
            compare(view.isReset, false)
            device.deliverLine("slam", 71, 29)
            compare(device.floatsOf(vertices).length, 0)
            device.deliverLine("slam", 100, 1)
            compare(device.floatsOf(vertices).length, 90)
        }

        function test_resetKeepsTheZeroPoseOutOfThePath() {
            open()
            device.deliverLine("slam", 1, 60)
            mouseClick(item("resetButton"))
            compare(device.takeCalls(), ["slam.reset"])
            compare(scene.slamPath.length, 0)
            compare(view.isReset, true)
            compare(view.slamPoseCount, 61) // the zero of the reset itself was fed before the path was emptied
            device.deliver("slam", 0, 0, 0)
            device.slam.position.vectorChanged(Qt.vector3d(0, 0, 0))
            device.slam.position.vectorChanged(Qt.vector3d(0, 0, 0))
            compare(scene.slamPath.length, 0)
            compare(view.isReset, true)
            device.deliver("slam", 0.5, 0, 0)
            compare(view.isReset, false)
            compare(scene.slamPath.length, 1)
            device.deliver("slam", 0, 0, 0)
            compare(scene.slamPath.length, 2)
        }

        function test_aPoseAwayFromZeroAlongAnyAxisEndsTheReset() {
            open()
            for (const axis of [[0.5, 0, 0], [0, 0.5, 0], [0, 0, 0.5]]) {
                mouseClick(item("resetButton"))
                compare(view.isReset, true)
                device.deliver("slam", axis[0], axis[1], axis[2])
                compare(view.isReset, false)
                compare(scene.slamPath.length, 1)
            }
        }

        function test_resetAndClearActOnTheSourcesShown_data() {
            return [
                { tag: "slam", button: "slamSourceButton", slam: 0, edge: 5, calls: ["slam.reset"] },
                { tag: "edge", button: "edgeSourceButton", slam: 5, edge: 0, calls: ["edge.reset"] },
                { tag: "both", button: "bothSourceButton", slam: 0, edge: 0, calls: ["slam.reset", "edge.reset"] }
            ]
        }

        function test_resetAndClearActOnTheSourcesShown(row) {
            open()
            item(row.button).checked = true
            device.deliverLine("slam", 1, 5)
            device.deliverLine("edge", 1, 5)
            mouseClick(item("clearButton"))
            compare(scene.slamPath.length, row.slam)
            compare(scene.edgePath.length, row.edge)
            compare(device.takeCalls(), [])
            mouseClick(item("resetButton"))
            compare(device.takeCalls(), row.calls)
        }

        function test_aClickOnASourceMakesItTheLiveOne() {
            open()
            device.slam.enabled = true
            device.takeCalls()
            const order = []
            device.slam.enabledChanged.connect(function() { order.push("slam") })
            device.edge.enabledChanged.connect(function() { order.push("edge") })
            mouseClick(item("edgeSourceButton"))
            compare(order, ["slam", "edge"])
            compare(view.isedge, true)
            compare(device.slam.enabled, false)
            compare(device.edge.enabled, true)
            compare(device.takeCalls(), ["slam.stop", "edge.start"])
            compare(lines("edgeSourceButton onClicked"), 1)
            compare(item("slamSourceButton").checked, false)

            mouseClick(item("slamSourceButton"))
            compare(view.isedge, false)
            compare(device.slam.enabled, true)
            compare(device.edge.enabled, false)
            compare(device.takeCalls(), ["slam.start", "edge.stop"])
            compare(lines("slamSourceButton onClicked"), 1)

            mouseClick(item("bothSourceButton"))
            compare(device.takeCalls(), [])
            compare(device.slam.enabled, true)
            compare(device.edge.enabled, false)
        }

        function test_aDeviceWithoutEdgeStandsTheEdgeButton() {
            open()
            device.dropEdge()
            mouseClick(item("edgeSourceButton"))
            compare(scene.matrix, fallback)
            compare(item("fpsLabel").text, "")
            mouseClick(item("resetButton"))
            compare(view.isReset, true)
        }

        function test_pressAndHoldTogglesTheReadings_data() {
            return [{ tag: "edgeSourceButton" }, { tag: "slamSourceButton" }, { tag: "bothSourceButton" }]
        }

        function test_pressAndHoldTogglesTheReadings(row) {
            open()
            const button = item(row.tag), readings = item("slamInfoCol")
            compare(readings.visible, true)
            const checked = button.checked
            for (let visible of [false, true]) {
                mousePress(button)
                tryCompare(readings, "visible", visible, 3000)
                mouseRelease(button)
                compare(button.checked, checked)
            }
            compare(device.takeCalls(), [])
        }

        function test_theOverratedStreamIsRestarted() {
            open()
            device.deliverLine("slam", 1, 2000)
            tryVerify(function() { return lines("dataframe too big") === 1 }, 5000)
            const calls = device.takeCalls().filter(function(call) { return call !== "slam.handleOverrate" })
            compare(calls.map(function(call) { return call.replace(/\(.*/, "") }),
                    ["slam.unregisterCallback", "slam.unregisterLostCallback", "slam.stop", "slam.registerCallback",
                     "slam.registerLostCallback", "slam.start"])
        }

        function test_theEdgeIsNotRestartedByTheView() {
            open()
            item("edgeSourceButton").checked = true
            device.takeCalls()
            device.deliverLine("slam", 1, 2000)
            device.deliverLine("edge", 1, 2000)
            tryVerify(function() { return device.edge.dataFrameRate > 600 }, 5000)
            compare(lines("dataframe too big"), 0)
            compare(device.takeCalls().filter(function(call) { return /\.stop$/.test(call) }), [])
        }

        function test_freeViewBreaksAndRestoresTheBindings() {
            open()
            device.deliver("slam", 1, 2, 3)
            const camera = scene.viewCam.camera
            camera.upVector = Qt.vector3d(0, 0, 1)
            item("freeViewCheckBox").checked = true
            compare(scene.freeView, true)
            device.deliver("slam", 5, 5, 5)
            compare(camera.position, Qt.vector3d(1, 2, 2))
            compare(camera.viewCenter, Qt.vector3d(1, 2, 3))
            compare(camera.upVector, Qt.vector3d(0, -1, 0))
            camera.upVector = Qt.vector3d(1, 0, 0)
            item("freeViewCheckBox").checked = false
            compare(camera.position, Qt.vector3d(5, 5, 4))
            compare(camera.viewCenter, Qt.vector3d(5, 5, 5))
            compare(camera.upVector, Qt.vector3d(0, -1, 0))
            device.deliver("slam", 6, 6, 6)
            compare(camera.position, Qt.vector3d(6, 6, 5))
            compare(camera.viewCenter, Qt.vector3d(6, 6, 6))
        }

        function test_freeViewDoesNotSurviveARestart() {
            open()
            item("freeViewCheckBox").checked = true
            item("sourceCheckbox").checked = false
            view.destroy()
            wait(0)
            const stored = make(settingsComponent)
            compare([stored.freeView, stored.displayPlanes], [true, false])
            open()
            compare(item("freeViewCheckBox").checked, false)
            compare(item("sourceCheckbox").checked, false)
            item("sourceCheckbox").checked = true
        }

        function test_doubleClicksAreKeptInFreeView_data() {
            return [{ tag: "following", free: false }, { tag: "free", free: true }]
        }

        function test_doubleClicksAreKeptInFreeView(row) {
            open()
            item("freeViewCheckBox").checked = row.free
            compare(view.maximized, false)
            mouseDoubleClickSequence(item("sceneArea"), 500, 500)
            compare(view.maximized, true)
            // Two presses far apart are none.
            mousePress(item("sceneArea"), 300, 500)
            mouseRelease(item("sceneArea"), 300, 500)
            mousePress(item("sceneArea"), 600, 500)
            mouseRelease(item("sceneArea"), 600, 500)
            compare(view.maximized, true)
        }

        function test_aClickOnAnInsetSwapsItsCamera() {
            open()
            const cameras = [scene.viewCam.camera, scene.viewCam2.camera, scene.viewCam3.camera]
            mouseClick(item("insetArea2"))
            compare([scene.viewCam.camera, scene.viewCam2.camera, scene.viewCam3.camera],
                    [cameras[1], cameras[0], cameras[2]])
            mouseClick(item("insetArea3"))
            compare([scene.viewCam.camera, scene.viewCam2.camera, scene.viewCam3.camera],
                    [cameras[2], cameras[0], cameras[1]])
            mouseClick(item("insetArea3"))
            mouseClick(item("insetArea2"))
            compare([scene.viewCam.camera, scene.viewCam2.camera, scene.viewCam3.camera], cameras)
        }

        function test_insetAreasStandOverTheInsets() {
            open()
            const left = item("insetArea2"), right = item("insetArea3")
            compare(left.width, 200)
            compare(left.height, 200)
            compare(left.x, item("valueControl").x + item("valueControl").width)
            compare(left.y, item("valueControl").y)
            compare([right.width, right.height], [200, 200])
            compare(right.x + right.width, item("col").x)
            compare(right.y, item("col").y)
            compare(left.z, 100)
            compare(right.z, 100)
            compare(scene.ratio2, view.rootRatio2)
            compare(scene.ratio3, view.rootRatio3)
        }

        function test_wordsAndPlaces() {
            open()
            const caption = item("fpsLabel"), page = item("valueControl"), col = item("col")
            compare(scene.width, 1000)
            compare([caption.x, caption.y], [5, 5])
            compare([page.x, page.y], [5, caption.height + 10])
            compare([col.x + col.width, col.y], [995, 40])
            compare(["mapCheckbox", "freeViewCheckBox", "bothSourceButton"].map(function(name) { return note(name).text }),
                    ["Map", "Free view", "Both"])
            compare([note("sourceCheckbox").text, note("clearPlanesButton").text], ["Planes source:", "Clear planes"])
            ;[page, note("settingsPage")].forEach(function(area) {
                verify(Qt.colorEqual(area.background.color, "black"))
                compare(area.background.opacity, 0.5)
            })
            ;["slamSourceRow", "edgeSourceRow"].forEach(function(name) {
                const row = note(name)
                compare([row.x + row.width, row.y + row.height, row.spacing], [990, 690, 5])
            })
            const busy = note("loopClosureIndicator")
            compare([busy.x + busy.width / 2, busy.y + busy.height / 2], [500, 350])
            compare([item("scene3d").focus, item("scene3d").multisample], [true, true])
            item("slamInfoCol").visible = false
            compare(page.background.visible, false)
        }

        function test_planesComeFromTheChosenModel() {
            open()
            device.deliverPlanes("tof", [{ id: "3", points: [[0, 0, 1], [1, 0, 1], [1, 1, 1]] }])
            device.deliverPlanes("stereo", [{ id: "1", points: [] }, { id: "2", points: [] }])
            compare(scene.planes.length, 1)
            compare(scene.planes[0].name, "3")
            view.planesSourceIndex = 1
            compare(scene.planes.length, 2)
            view.planesSourceIndex = 2
            compare(scene.planes, null)
            view.planesSourceIndex = 3
            compare(scene.planes, null)
            view.planesSourceIndex = 0
            view.sourceChecked = false
            compare(scene.planes, null)
        }

        function test_clearPlanesCallsTheModelOfTheIndex_data() {
            return [
                { tag: "Host - TOF", index: 0, calls: ["slam.clearTofPlanes"] },
                { tag: "Host - Stereo", index: 1, calls: ["slam.clearStereoPlanes"] },
                { tag: "Edge - TOF", index: 2, calls: [] },
                { tag: "Edge - Stereo", index: 3, calls: [] }
            ]
        }

        function test_clearPlanesCallsTheModelOfTheIndex(row) {
            open()
            const box = device.node(view, "planesSourceComboBox")
            box.currentIndex = row.index
            compare(box.displayText, row.tag)
            compare(box.width, 150)
            device.node(view, "clearPlanesButton").clicked()
            compare(device.takeCalls(), row.calls)
        }

        function test_mapCheckboxShowsAndHidesThePoints() {
            open()
            compare(device.node(scene, "pointcloud").enabled, true)
            item("mapCheckbox").checked = false
            compare(device.node(scene, "pointcloud").enabled, false)
        }

        function test_savingAMapSwitchesToLoopClosureAndBack() {
            open()
            const busy = item("loopClosureIndicator"), popup = note("loopClosurePopup")
            compare(state(), ["Visual Odometry", "Save map", true, "Load map", true, false])
            mouseClick(item("loopClosureButton"))
            compare(device.takeCalls(), ["slam.saveMapAndSwitchToCslam"])
            compare(state(), ["Loop Closure", "Create map", false, "Load map", false, false])
            compare(busy.running, true)
            compare(popup.visible, true)
            compare(popup.text, "Save map successful")
            device.finishSave(0, 80)
            tryCompare(busy, "running", false)
            compare(state(), ["Loop Closure", "Create map", true, "Load map", false, false])
            mouseClick(item("loopClosureButton"))
            compare(device.takeCalls(), ["slam.stop", "slam.start"])
            compare(state(), ["Visual Odometry", "Save map", true, "Load map", true, false])
            compare(popup.text, "Create map successful")
        }

        function test_aFailedSaveStillSaysSuccessful() {
            open()
            mouseClick(item("loopClosureButton"))
            device.finishSave(-1, 0)
            tryCompare(item("loopClosureIndicator"), "running", false)
            compare(note("loopClosurePopup").text, "Save map successful")
            compare(item("modeLabel").text, "Loop Closure")
        }

        function test_loadingAMapAndStoppingIt() {
            open()
            device.putMapFile()
            const popup = note("loadPopup")
            mouseClick(item("loadButton"))
            compare(device.takeCalls(), ["slam.stop", "slam.start", "slam.loadMapAndSwitchToCslam"])
            compare(state(), ["Loop Closure", "Save map", false, "Stop Load Map", true, true])
            compare(popup.text, "Load map successful")
            compare(popup.visible, true)
            device.progress(0.42)
            tryCompare(item("localizedPercentLable"), "text", "localized:  42 %")
            compare(item("localizedPercentLable").visible, true)
            device.progress(12.5)
            tryCompare(item("localizedPercentLable"), "text", "localized:  " + (1250).toLocaleString() + " %")
            device.finishLoad()
            mouseClick(item("loadButton"))
            compare(device.takeCalls(), ["slam.stop", "slam.start"])
            compare(state(), ["Visual Odometry", "Save map", true, "Load map", true, false])
            compare(popup.text, "Stop load map successful")
            compare(item("localizedPercentLable").visible, false)
        }

        function test_loadingWithoutAFileFailsAfterTheRestart() {
            open()
            device.removeMapFile()
            mouseClick(item("loadButton"))
            testCase.expectWarning(/does not exists/)
            compare(device.takeCalls(), ["slam.stop", "slam.start"])
            compare(state(), ["Visual Odometry", "Save map", true, "Load map", true, false])
            compare(note("loadPopup").text, "Load map fail")
            compare(note("loadPopup").visible, true)
        }

        function test_aMapThatTheLibraryRefusesFailsAndTheNextTryWorks() {
            open()
            device.putMapFile()
            device.loadResult = false
            mouseClick(item("loadButton"))
            compare(note("loadPopup").text, "Load map fail")
            compare(item("loadButton").text, "Load map")
            device.loadResult = true
            mouseClick(item("loadButton"))
            compare(note("loadPopup").text, "Load map successful")
            device.finishLoad()
        }

        function test_popupsStandOverTheirButtonAndCloseByThemselves() {
            open()
            const popup = note("loopClosurePopup"), button = item("loopClosureButton"), row = item("slamSourceRow")
            mouseClick(button)
            const words = device.node(popup, "words")
            compare(popup.modal, false)
            compare(popup.padding, 0)
            compare(popup.width, Math.max(button.width, words.contentWidth))
            compare(popup.height, words.contentHeight)
            compare(popup.x, row.x + button.x - Math.abs(button.width - words.contentWidth))
            compare(popup.y, row.y - popup.height)
            verify(Qt.colorEqual(words.color, "white"))
            verify(words.contentWidth > button.width)
            popup.text = "i" // the button is the wider one
            verify(words.contentWidth < button.width)
            compare(popup.width, button.width)
            compare(popup.x, row.x + button.x - (button.width - words.contentWidth))
            compare(device.node(view, "popTimer").interval, 2000)
            compare(device.node(view, "popTimer").running, true)
            tryCompare(popup, "visible", false, 5000)
            device.finishSave(0, 1)
            item("bothSourceButton").checked = true
            const load = note("loadPopup")
            popup.open()
            load.open();
            [popup, load].forEach(function(shown) {
                compare([shown.x, shown.y, shown.width, shown.height], [0, 0, 0, 0], shown.objectName)
            })
            item("edgeSourceButton").checked = true
            compare(popup.height, words.contentHeight)
            compare(popup.y, item("edgeSourceRow").y - popup.height)
        }

        function test_theRowsFollowTheSourceButtons() {
            open()
            compare(item("slamSourceRow").visible, true)
            compare(item("edgeSourceRow").visible, false)
            item("edgeSourceButton").checked = true
            compare(item("slamSourceRow").visible, false)
            compare(item("edgeSourceRow").visible, true)
            compare(item("edgeModeLabel").text, "VIO")
            compare(item("loopClosureEdgeButton").enabled, false)
            mouseClick(item("loopClosureEdgeButton"))
            compare(device.takeCalls(), [])
            item("bothSourceButton").checked = true
            compare(item("slamSourceRow").visible, false)
            compare(item("edgeSourceRow").visible, false)
        }

        function test_theEdgeTwinWouldSaveAndReturn() {
            open()
            const button = item("loopClosureEdgeButton")
            button.clicked()
            compare(device.takeCalls(), ["edge.saveMapAndSwitchToCslam"])
            compare(button.done, true)
            compare(item("edgeModeLabel").text, "Loop Closure")
            button.clicked()
            compare(device.takeCalls(), ["edge.stop", "edge.start"])
            compare(button.done, false)
        }

        function test_toolTipsNameTheMapPath() {
            open()
            compare(item("loopClosureButton").ToolTip.text,
                    "Save map and swicth to loop closure,map path=" + device.mapPath)
            compare(item("loadButton").ToolTip.text,
                    "Load map and switch to loop closure, map path=" + device.mapPath)
            item("loopClosureButton").done = true
            compare(item("loopClosureButton").ToolTip.text, "Create map and switch to visual odometry")
            item("loadButton").text = "Stop Load Map"
            compare(item("loadButton").ToolTip.text, "Stop load map and switch to visual odometry")
        }

        function test_aSmallViewShowsTheSceneAlone() {
            open()
            view.minimized = true
            compare(item("valueControl").visible, false)
            compare(item("col").visible, false)
            compare(item("scene3d").visible, true)
            compare(item("settingsPage").visible, false)
        }

        function test_loopClosureOfTheEdgeEndsTheWaitingToo() {
            open()
            item("loopClosureIndicator").running = true
            device.edge.loopClosureFinished()
            compare(item("loopClosureIndicator").running, false)
        }

        function test_posesThatAreNoNumbersAreStood() {
            open()
            device.deliver("slam", NaN, 0, 0)
            device.deliver("slam", Infinity, 0, 0)
            device.deliverLine("slam", 1, 48)
            compare(scene.slamPath.length, 50)
            const path = device.node(scene, "slamPath")
            compare(device.floatsOf(device.node(path, "vertices")).length, 150)
            compare(device.numbersOf(device.node(path, "indices")).slice(0, 3), [0, 1, 2])
        }
    }
}
