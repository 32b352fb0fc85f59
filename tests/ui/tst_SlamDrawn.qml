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
        // Small, since a software renderer may have to draw it.
        viewComponent: Component {
            SlamView {
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
