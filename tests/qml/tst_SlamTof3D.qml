import QtQuick 2.13
import QtTest 1.13
import Tof3dData 1.0
import SlamDevice 1.0
import "qrc:/" as Viewer

Item {
    id: window

    property bool isHeaderHovered: false

    width: 800
    height: 600

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    Component {
        id: viewComponent

        Viewer.Tof3DView {
            width: 800
            height: 600
            minimized: false
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

        name: "Tof3DView"

        property var device: null
        property var view: null
        property var scene: null

        function open() {
            device = createTemporaryObject(deviceComponent, window).device
            view = createTemporaryObject(viewComponent, window, { camera: device })
            scene = find(view, "scene3d").entity
            waitForRendering(view)
        }

        function openEmpty() {
            view = createTemporaryObject(viewComponent, window)
            scene = find(view, "scene3d").entity
        }

        function test_withoutACameraAllFallsBack() {
            openEmpty()
            compare(scene.position, Qt.vector3d(0, 0, 0))
            compare(scene.orientation, Qt.quaternion(0, 0, 0, 1))
            compare(scene.viewVector, Qt.vector3d(0, 0, 1))
            compare(scene.viewCenter, Qt.vector3d(0, 0, 1))
            compare(scene.matrix, Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1))
            compare(scene.pointCloud, null)
            compare(find(view, "fpsLabel").text, "")
            compare(find(view, "colorizeCheckBox").enabled, false)
            compare(find(view, "colorizeCheckBox").checked, false)
        }

        function test_theSwitchWithoutACameraOnlyLogs() {
            openEmpty()
            find(view, "slamSourceSwitch").toggle()
            expectWarning(/Tof3DView\.qml:\d+: TypeError/)
            compare(find(view, "slamSourceSwitch").checked, false)
            find(view, "slamSourceSwitch").toggle()
        }

        function test_theSwitchPicksTheSource() {
            open()
            device.deliver("slam", 1, 2, 3)
            device.deliver("edge", 4, 5, 6)
            compare(scene.position, Qt.vector3d(1, 2, 3))
            compare(scene.matrix, device.slam.matrix)
            find(view, "slamSourceSwitch").toggle()
            compare(device.tof3d.source, Tof3dData.Source.EDGE)
            compare(scene.position, Qt.vector3d(4, 5, 6))
            find(view, "slamSourceSwitch").toggle()
            compare(device.tof3d.source, Tof3dData.Source.SLAM)
            compare(scene.position, Qt.vector3d(1, 2, 3))
        }

        function test_coloursAreOfferedWhereThereAreSome() {
            open()
            const box = find(view, "colorizeCheckBox")
            compare(box.enabled, true)
            compare(box.checked, true)
            compare(device.tof3d.colorize, true)
            mouseClick(box)
            compare(device.tof3d.colorize, false)
        }

        function test_theSceneShowsTheCloud() {
            open()
            compare(scene.pointCloud, device.tof3d.pointCloud)
            compare(scene.pointCloud.size, 0)
        }

        function test_freeViewBreaksAndRestoresTheBindings() {
            open()
            device.deliver("slam", 1, 2, 3)
            const camera = device.node(scene, "mainCamera")
            find(view, "freeViewCheckBox").checked = true
            device.deliver("slam", 5, 5, 5)
            compare(camera.position, Qt.vector3d(1, 2, 2))
            compare(camera.viewCenter, Qt.vector3d(1, 2, 3))
            find(view, "freeViewCheckBox").checked = false
            compare(camera.position, Qt.vector3d(5, 5, 4))
            device.deliver("slam", 6, 6, 6)
            compare(camera.position, Qt.vector3d(6, 6, 5))
            compare(camera.viewCenter, Qt.vector3d(6, 6, 6))
        }

        function test_onlyLayersAreDrawn() {
            open()
            compare(device.nodesOf(scene, "Qt3DRender::QViewport").length, 1)
            compare(device.nodesOf(scene, "Qt3DRender::QRenderStateSet").length, 2)
            const axes = device.nodesOf(scene, "CoordinateEntity")
            compare(axes.length, 1)
            device.nodesOf(axes[0], "Line").forEach(function(line) { compare(line.layer, null) })
        }

        function test_aSmallViewShowsTheSceneAlone() {
            open()
            view.minimized = true
            compare(find(view, "sourcePage").visible, false)
            compare(find(view, "scene3d").visible, true)
        }
    }
}
