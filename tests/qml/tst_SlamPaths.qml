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

    Component {
        id: probeComponent

        MouseArea {
            property int presses: 0
            property int moves: 0

            anchors.fill: parent
            acceptedButtons: Qt.LeftButton | Qt.RightButton
            onPressed: ++presses
            onPositionChanged: ++moves
        }
    }

    Component {
        id: plainComponent

        Item {
            readonly property FakeSlam slam: FakeSlam {}
            readonly property FakeSlam edge: FakeSlam {}
        }
    }

    SlamCase {
        id: testCase

        name: "SlamPaths"

        function zeros(path, count) {
            for (let i = 0; i < count; ++i)
                path.push(Qt.vector3d(0, 0, 0))
        }

        function drag(area, button) {
            mousePress(area, 500, 500, button)
            for (let x = 510; x <= 560; x += 10)
                mouseMove(area, x, 500, -1, button)
            mouseRelease(area, 560, 500, button)
        }

        function test_aPositionWhoseSignalCarriesNothingIsFollowed() {
            const plain = make(plainComponent)
            view = make(viewComponent, { camera: plain })
            scene = find(view, "scene3d").entity
            plain.slam.position.vector = Qt.vector3d(1, 2, 3)
            plain.edge.position.vector = Qt.vector3d(4, 5, 6)
            compare(scene.slamPath, [Qt.vector3d(1, 2, 3)])
            compare(scene.edgePath, [Qt.vector3d(4, 5, 6)])
        }

        function test_theEdgePathIsDrawnAtEachFiftiethPose() {
            open()
            device.deliverLine("edge", 1, 49)
            compare(drawnEdgePath().length, 0)
            device.deliverLine("slam", 1, 50)
            compare([drawnSlamPath().length, drawnEdgePath().length], [150, 0])
            device.deliverLine("edge", 50, 1)
            compare(drawnEdgePath().length, 150)
            fuzzyCompare(drawnEdgePath()[147], 0.5, 1e-6)
            device.deliverLine("edge", 51, 49)
            compare(drawnEdgePath().length, 150)
            device.deliverLine("edge", 100, 1)
            compare(drawnEdgePath().length, 300)
            compare(drawnSlamPath().length, 150)
        }

        function test_theEdgePathHasABound() {
            open()
            zeros(scene.edgePath, 99990)
            device.deliverLine("edge", 1, 10)
            compare(scene.edgePath.length, 100000)
            device.deliverLine("edge", 11, 25)
            compare(scene.edgePath.length, 100000)
            compareVectors(scene.edgePath[99964], 0, 0, 0)
            compareVectors(scene.edgePath[99965], 0.01, 0, 0)
            compareVectors(scene.edgePath[99999], 0.35, 0, 0)
            compare(view.edgePoseCount, 35)
            compare(scene.slamPath.length, 0)
        }

        function test_clearAndResetDrawTheEmptyPathAtOnce_data() {
            return [
                { tag: "clear slam", source: "slamSourceButton", button: "clearButton", slam: 0, edge: 150 },
                { tag: "reset slam", source: "slamSourceButton", button: "resetButton", slam: 0, edge: 150 },
                { tag: "clear edge", source: "edgeSourceButton", button: "clearButton", slam: 150, edge: 0 },
                { tag: "reset edge", source: "edgeSourceButton", button: "resetButton", slam: 150, edge: 0 },
                { tag: "clear both", source: "bothSourceButton", button: "clearButton", slam: 0, edge: 0 },
                { tag: "reset both", source: "bothSourceButton", button: "resetButton", slam: 0, edge: 0 }
            ]
        }

        function test_clearAndResetDrawTheEmptyPathAtOnce(row) {
            open()
            device.deliverLine("slam", 1, 50)
            device.deliverLine("edge", 1, 50)
            compare([drawnSlamPath().length, drawnEdgePath().length], [150, 150])
            item(row.source).checked = true
            mouseClick(item(row.button))
            compare([drawnSlamPath().length, drawnEdgePath().length], [row.slam, row.edge])
            compare(view.isReset, row.button === "resetButton")
        }

        function test_theResetEndsWithTheFirstPoseAwayFromZeroOfAnySource() {
            open()
            item("bothSourceButton").checked = true
            device.deliverLine("slam", 1, 5)
            device.deliverLine("edge", 1, 5)
            mouseClick(item("resetButton"))
            device.edge.position.vectorChanged(Qt.vector3d(0, 0, 0))
            device.slam.position.vectorChanged(Qt.vector3d(0, 0, 0))
            compare([scene.slamPath.length, scene.edgePath.length, view.isReset], [0, 0, true])
            device.deliver("edge", 1, 0, 0)
            compare([scene.slamPath.length, scene.edgePath.length, view.isReset], [0, 1, false])
            device.slam.position.vectorChanged(Qt.vector3d(0, 0, 0))
            compare([scene.slamPath.length, scene.edgePath.length], [1, 1])
        }

        function test_aResetWhilePosesArriveLeavesNoZeroInThePath() {
            open()
            device.deliverLine("slam", 1, 20)
            mouseClick(item("resetButton"))
            compare(device.slam.position.vector, Qt.vector3d(0, 0, 0))
            device.deliverLine("slam", 21, 30)
            compare(scene.slamPath.length, 30)
            compare(scene.slamPath.filter(function(p) { return p.x === 0 }).length, 0)
        }

        // Left drags go through in free view only, right ones always.
        function test_dragsReachTheSceneInFreeView_data() {
            return [
                { tag: "left, following", button: Qt.LeftButton, free: false, reaches: false },
                { tag: "left, free", button: Qt.LeftButton, free: true, reaches: true },
                { tag: "right, following", button: Qt.RightButton, free: false, reaches: true },
                { tag: "right, free", button: Qt.RightButton, free: true, reaches: true }
            ]
        }

        function test_dragsReachTheSceneInFreeView(row) {
            open()
            item("freeViewCheckBox").checked = row.free
            const probe = createTemporaryObject(probeComponent, item("scene3d"))
            drag(item("sceneArea"), row.button)
            compare(probe.presses, row.reaches ? 1 : 0)
            compare(probe.moves > 0, row.reaches)
            compare(view.maximized, false)
        }

        function test_theSamePlanesKeepTheirEntities() {
            open()
            const planes = [{ id: "3", points: [[0, 0, 1], [1, 0, 1], [1, 1, 1]] }, { id: "4", points: [] }]
            device.deliverPlanes("tof", planes)
            const entities = device.nodesOf(scene, "PlaneEntity")
            compare(entities.length, 2)
            let changes = 0
            scene.planesChanged.connect(function() { ++changes })
            device.deliverPlanes("tof", planes)
            wait(0)
            const after = device.nodesOf(scene, "PlaneEntity")
            compare(after.length, 2)
            verify(after[0] === entities[0])
            verify(after[1] === entities[1])
            compare(changes, 0)
            device.deliverPlanes("tof", planes.slice(1))
            compare(changes, 1)
        }

        function test_planesWhosePointsAreNoNumbersAreStood() {
            open()
            device.deliverPlanes("tof", [{ id: "1", points: [[NaN, 0, 0], [Infinity, 1, 2], [-Infinity, 3, 4]] }])
            const entities = device.nodesOf(scene, "PlaneEntity")
            compare(entities.length, 1)
            const vertices = device.floatsOf(device.nodesOf(entities[0], "Qt3DRender::QBuffer")[0])
            compare(vertices.length, 9)
            verify(isNaN(vertices[0]))
            compare(vertices.slice(3), [Infinity, 1, 2, -Infinity, 3, 4])
        }

        function test_mapsOfAnySizeReachTheScene_data() {
            return [{ tag: "0", count: 0 }, { tag: "1", count: 1 }, { tag: "20 000", count: 20000 },
                    { tag: "1 000 000", count: 1000000 }]
        }

        function test_mapsOfAnySizeReachTheScene(row) {
            open()
            device.deliverMap(row.count)
            const attribute = device.nodesOf(device.node(scene, "pointcloud"), "Qt3DRender::QAttribute")[0]
            tryCompare(attribute, "count", row.count)
            compare(item("pointsLabel").text, String(row.count))
        }

        function test_mapPointsThatAreNoNumbersAreStood() {
            open()
            device.deliverPoints([[NaN, 1, 2], [Infinity, -Infinity, 1e300], [1, 2, 3]])
            const attribute = device.nodesOf(device.node(scene, "pointcloud"), "Qt3DRender::QAttribute")[0]
            compare(attribute.count, 3)
            const floats = device.floatsOf(attribute.buffer)
            compare(floats.length, 9)
            verify(isNaN(floats[0]))
            compare(floats.slice(1), [1, 2, Infinity, -Infinity, Infinity, 1, 2, 3])
            waitForRendering(view)
        }
    }
}
