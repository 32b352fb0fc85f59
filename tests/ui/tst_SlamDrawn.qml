import QtQuick 2.13
import QtTest 1.13
import "../qml"
import "qrc:/"

// The scene in a window that is really drawn.
Item {
    id: window

    property bool isHeaderHovered: false
    property bool advanced: true

    width: 600
    height: 420

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    SlamCase {
        id: testCase

        name: "SlamDrawn"

        property int trembles: 0

        // Small, since a software renderer may have to draw it.
        viewComponent: Component {
            SlamView {
                width: 600
                height: 420
                minimized: false
            }
        }

        Component {
            id: cloudComponent

            Tof3DView {
                width: 600
                height: 420
                minimized: false
            }
        }

        // To and fro until `done` answers true, or for some seconds.
        function drag(button, done) {
            const area = item("sceneArea")
            mousePress(area, 300, 250, button)
            let reached = done()
            for (let step = 1; !reached && step < 100; ++step) {
                mouseMove(area, 300 + 5 * (step % 20), 250 + 3 * (step % 20), -1, button)
                wait(20)
                reached = done()
            }
            mouseRelease(area, 300, 250, button)
            return reached
        }

        function moved(camera, position) {
            return camera.position.minus(position).length() > 1e-3
        }

        function test_dragsMoveTheCameraInFreeView_data() {
            return [
                { tag: "left", button: Qt.LeftButton },
                { tag: "right", button: Qt.RightButton }
            ]
        }

        function test_dragsMoveTheCameraInFreeView(row) {
            open()
            device.deliver("slam", 0, 0, 1)
            const camera = scene.viewCam.camera
            const followed = Qt.vector3d(0, 0, 0)
            compare(camera.position, followed)
            let steps = 0
            drag(row.button, function() { return ++steps > 5 })
            compare(camera.position, followed)
            item("freeViewCheckBox").checked = true
            waitForRendering(view)
            verify(drag(row.button, function() { return moved(camera, followed) }))
            item("freeViewCheckBox").checked = false
            compare(camera.position, followed)
        }

        // Whether the map's orange is where a point 0.2 m to the right of the device is seen from a metre behind it:
        // half the height over the tangent of half of 45 degrees makes 507 pixels a metre there.
        function showsPoint() {
            const picture = grabImage(view)
            for (let y = 208; y <= 212; ++y) {
                for (let x = 399; x <= 404; ++x) {
                    if (picture.red(x, y) === 255 && picture.green(x, y) === 165 && picture.blue(x, y) === 0)
                        return true
                }
            }
            return false
        }

        function test_aMapPointIsAnOrangeSpot() {
            open()
            device.deliver("slam", 0, 0.5, 0)
            waitForRendering(view)
            compare(showsPoint(), false)
            device.deliverPoints([[0.2, 0.5, 0]])
            tryVerify(function() { return showsPoint() })
            item("mapCheckbox").checked = false
            tryVerify(function() { return !showsPoint() })
        }

        // The widest row of a point at x = 376. More than half a pixel's samples in orange over the background make one.
        // The frustum's yellow ends at 355.
        function widthOfPoint() {
            const picture = grabImage(view)
            let widest = 0
            for (let y = 200; y <= 220; ++y) {
                let orange = 0
                for (let x = 360; x <= 400; ++x)
                    orange += picture.red(x, y) > 150 && picture.green(x, y) > 105 && picture.green(x, y) < 200
                              && picture.blue(x, y) < 25
                widest = Math.max(widest, orange)
            }
            return widest
        }

        // A hundredth of a metre, of which 507 pixels are one a metre from the camera: 5.07 there, 2.53 at two metres
        // and 20.3 at a quarter.
        function test_aMapPointHasASizeInTheWorld_data() {
            return [
                { tag: "at a metre", z: 0, least: 4, most: 6 },
                { tag: "at two metres", z: 1, least: 2, most: 3 },
                { tag: "at a quarter", z: -0.75, least: 19, most: 21 }
            ]
        }

        function test_aMapPointHasASizeInTheWorld(row) {
            open()
            device.deliver("slam", 0, 0.5, 0)
            device.deliverPoints([[0.15 * (row.z + 1), 0.5, row.z]])
            tryVerify(function() {
                const width = widthOfPoint()
                return width >= row.least && width <= row.most
            })
        }

        // Tenths of a millimetre to and fro. Qt 3D takes new bounds into account once something has moved, as a device
        // always does.
        function tremble() {
            device.deliver("slam", 0, 0.5, 1e-4 * (1 + ++trembles % 2))
        }

        function drawWhileMoving() {
            for (let i = 0; i < 3; ++i) {
                tremble()
                waitForRendering(view, 1000)
            }
        }

        function verifyWhileMoving(isDrawn) {
            tryVerify(function() {
                tremble()
                return isDrawn()
            }, 30000)
        }

        function test_aMapThatChangesIsDrawnWhereItIs() {
            open()
            device.deliver("slam", 0, 0.5, 0)
            waitForRendering(view)
            device.deliverPoints([[30, 0.5, 0], [30, 0.5, 1]]) // out of sight
            drawWhileMoving()
            compare(showsPoint(), false)
            device.deliverPoints([[0.2, 0.5, 0], [0.2, 0.5, 0]])
            verifyWhileMoving(showsPoint)
        }

        // A red one where the map's is, and a blue one a tenth of a metre above it: 51 pixels.
        function test_aCloudsPointsHaveTheirOwnColours() {
            device = make(deviceComponent).device
            const cloudView = make(cloudComponent, { camera: device })
            device.deliver("slam", 0, 0.5, 0)
            waitForRendering(cloudView)
            const cloud = device.tof3d.pointCloud
            cloud.points = new Float32Array([0.2, 0.5, 0, 0.2, 0.4, 0]).buffer
            cloud.colors = new Float32Array([1, 0, 0, 0, 0, 1]).buffer
            cloud.size = 2
            cloud.update()
            tryVerify(function() {
                const picture = grabImage(cloudView)
                return Qt.colorEqual(picture.pixel(401, 210), "red") && Qt.colorEqual(picture.pixel(401, 159), "blue")
            })
        }

        // A line from 0.1 m above a point 0.2 m to the right to as much below it.
        function test_aPathThatChangesIsDrawnWhereItIs() {
            open()
            device.deliver("slam", 0, 0.5, 0)
            waitForRendering(view)
            const put = function(x) {
                [0.4, 0.6].forEach(function(y, i) { scene.slamPath[i] = Qt.vector3d(x, y, 0) })
                scene.drawSlamPath()
            }
            const drawn = function() { return Qt.colorEqual(grabImage(view).pixel(401, 180), "yellow") }
            put(30) // out of sight
            drawWhileMoving()
            compare(drawn(), false)
            put(0.2)
            verifyWhileMoving(drawn)
        }

        // Whether something is drawn to the left and to the right, where a plane 2 m from the camera, at 253 pixels a
        // metre, has its middle when that is 0.2 m from the axis.
        function planeSides() {
            const picture = grabImage(view)
            return [250, 350].map(function(x) { return !Qt.colorEqual(picture.pixel(x, 210), "#2d2d2d") })
        }

        function test_aPlaneThatChangesIsDrawnWhereItIs() {
            open()
            const square = function(x) {
                return [{ id: "1", points: [[x - 0.1, 0.4, 1], [x + 0.1, 0.4, 1], [x + 0.1, 0.6, 1], [x - 0.1, 0.6, 1]] }]
            }
            item("slamInfoCol").visible = false // its dark ground may lie over the left place
            device.deliver("slam", 0, 0.5, 0)
            tryVerify(function() { return String(planeSides()) === "false,false" })
            device.deliverPlanes("tof", square(30)) // out of sight
            const entity = device.nodesOf(scene, "PlaneEntity")[0]
            drawWhileMoving()
            compare(planeSides(), [false, false])
            device.deliverPlanes("tof", square(0.2))
            verifyWhileMoving(function() { return String(planeSides()) === "false,true" })
            device.deliverPlanes("tof", square(-0.2))
            verifyWhileMoving(function() { return String(planeSides()) === "true,false" })
            verify(device.nodesOf(scene, "PlaneEntity")[0] === entity)
            device.deliverPlanes("tof", [])
            tryVerify(function() { return String(planeSides()) === "false,false" })
        }

        function test_whatIsNoNumberHidesNothingElse() {
            open()
            const nan = [NaN, NaN, NaN, NaN, NaN, NaN, NaN, NaN, NaN]
            device.deliverTurned("slam", NaN, Infinity, 0, nan)
            device.deliverTurned("edge", Infinity, 0, -Infinity, nan)
            device.deliverPlanes("tof", [{ id: "1", points: [[NaN, 0, 0], [Infinity, 1, 2], [-Infinity, 3, 4]] }])
            waitForRendering(view)
            device.deliver("slam", 0, 0.5, 0)
            device.deliverPoints([[NaN, 1, 2], [Infinity, -Infinity, 1e300], [0.2, 0.5, 0]])
            tryVerify(function() { return showsPoint() })
        }
    }
}
