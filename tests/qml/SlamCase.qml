import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import SlamDevice 1.0
import "qrc:/"

// Opens the view of SLAM on a fake device and finds its parts.
StrictCase {
    id: testCase

    property var device: null
    property var view: null
    property var scene: null

    readonly property var fallback: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1)
    // Rotations, row by row: by 90 degrees about y, and by 30 degrees about x and z.
    readonly property var aboutY: [0, 0, 1, 0, 1, 0, -1, 0, 0]
    readonly property var aboutX: [1, 0, 0, 0, Math.sqrt(3) / 2, -0.5, 0, 0.5, Math.sqrt(3) / 2]
    readonly property var aboutZ: [Math.sqrt(3) / 2, -0.5, 0, 0.5, Math.sqrt(3) / 2, 0, 0, 0, 1]

    property Component viewComponent: Component {
        SlamView {
            width: 1000
            height: 700
            minimized: false
        }
    }

    property Component deviceComponent: Component {
        Item {
            readonly property SlamDevice device: SlamDevice {}
        }
    }

    function open() {
        device = make(deviceComponent).device
        view = make(viewComponent, { camera: device })
        scene = find(view, "scene3d").entity
        waitForRendering(view)
    }

    function item(name) { return find(view, name) }
    // Popups and scenes are no items, but children in the view's tree of objects.
    function node(name) { return device.node(view, name) }
    function drawnSlamPath() { return device.floatsOf(device.node(device.node(scene, "slamPath"), "vertices")) }
    function drawnEdgePath() { return device.floatsOf(device.node(device.node(scene, "edgePath"), "vertices")) }

    function compareVectors(actual, x, y, z) {
        fuzzyCompare(actual.x, x, 1e-5)
        fuzzyCompare(actual.y, y, 1e-5)
        fuzzyCompare(actual.z, z, 1e-5)
    }
}
