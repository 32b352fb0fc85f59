import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import Qt.labs.settings 1.1
import "qrc:/"

// The option buttons of the stream views and what is kept of them from one run to the next.
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

    QtObject {
        id: slamButton
        property bool checked: true
        property bool checkable: true
    }

    Component {
        id: device

        QtObject {
            id: fake

            property var calls: []
            property QtObject stereo: QtObject {
                property int count: 2
                property int width: 640
                property int height: 400
                property int dataFrameRate: 50
                property int gain: 10
                property int brightness: 10
                property bool autoExposure: true
                property int mode: 4
                onGainChanged: fake.calls.push("gain " + gain)
                onBrightnessChanged: fake.calls.push("brightness " + brightness)
                onAutoExposureChanged: fake.calls.push("autoExposure " + autoExposure)
                onModeChanged: fake.calls.push("mode " + mode)
                function image() { return null }
                function setResolution(mode) { fake.calls.push("setResolution " + mode) }
            }
        }
    }

    Component {
        id: stereoView
        StereoView { width: 500; height: 400; minimized: false }
    }

    Component {
        id: rgbView
        RgbView { width: 500; height: 400; minimized: false }
    }

    Component {
        id: eyetrackingView
        EyetrackingView { width: 500; height: 400; minimized: false }
    }

    Settings {
        id: stereoStore
        category: "StereoView"
    }

    Settings {
        id: rgbStore
        category: "RgbView"
    }

    Settings {
        id: eyetrackingStore
        category: "EyetrackingView"
    }

    StrictCase {
        name: "StreamViewOptions"

        function init() {
            expectedWarnings = []
            messages.start();
            [stereoStore, rgbStore, eyetrackingStore].forEach(function(store) {
                store.setValue("horizontalFlip", false)
                store.setValue("verticalFlip", false)
            })
            stereoStore.setValue("showPoints", true)
            storeExposure(true, 10, 10)
            eyetrackingStore.setValue("source", "left")
            eyetrackingStore.setValue("ledOn", false)
        }

        function storeExposure(autoExposure, gain, brightness) {
            stereoStore.setValue("autoExposure", autoExposure)
            stereoStore.setValue("gain", gain)
            stereoStore.setValue("brightness", brightness)
        }

        // What is to be kept is written when the view goes.
        function stored(view, store, keys) {
            view.destroy()
            wait(0)
            return keys.map(function(key) { return String(store.value(key)) })
        }

        function test_buttonsStandAtTheTopRight_data() {
            return [
                { tag: "stereo", component: stereoView, buttons: ["hFlipButton", "vFlipButton", "pointsButton"] },
                { tag: "rgb", component: rgbView, buttons: ["hFlipButton", "vFlipButton"] }
            ]
        }

        function test_buttonsStandAtTheTopRight(data) {
            var view = make(data.component)
            var column = find(view, "optionsColumn")
            verify(!column.visible)
            view.optionsVisible = true
            verify(column.visible)
            compare([column.x, column.y, column.width, column.spacing], [500 - 48 - 5, 40, 48, -10])
            data.buttons.forEach(function(name, i) {
                var button = find(view, name)
                compare([button.width, button.height, button.y], [48, 48, 38 * i])
                verify(button.visible && button.checkable)
            })
            compare(find(view, "hFlipButton").icon.source, "qrc:/images/vertical_flip")
            compare(find(view, "vFlipButton").icon.source, "qrc:/images/vertical_flip")
            compare([find(view, "hFlipButton").rotation, find(view, "vFlipButton").rotation], [0, 90])
        }

        function test_buttonsAreWhiteWhileTheirOptionIsOn() {
            var view = make(stereoView, { optionsVisible: true })
            var points = find(view, "pointsButton")
            compare(points.icon.source, "qrc:/images/point")
            compare(points.checked, true)
            verify(Qt.colorEqual(points.icon.color, "white"))
            mouseClick(points)
            verify(Qt.colorEqual(points.icon.color, "gray"))
            verify(Qt.colorEqual(find(view, "hFlipButton").icon.color, "gray"))
            mouseClick(find(view, "hFlipButton"))
            verify(Qt.colorEqual(find(view, "hFlipButton").icon.color, "white"))
        }

        function test_flipSignsAreWhiteWhileTheyAreOn_data() {
            return [{ tag: "stereo", component: stereoView }, { tag: "rgb", component: rgbView }]
        }

        function test_flipSignsAreWhiteWhileTheyAreOn(data) {
            var view = make(data.component, { optionsVisible: true });
            ["hFlipButton", "vFlipButton"].forEach(function(name) {
                var button = find(view, name)
                verify(Qt.colorEqual(button.icon.color, "gray"))
                mouseClick(button)
                verify(Qt.colorEqual(button.icon.color, "white"))
                mouseClick(button)
                verify(Qt.colorEqual(button.icon.color, "gray"))
            })
        }

        function test_gridButtonStandsBelowTheLabel() {
            var view = make(stereoView, { camera: createTemporaryObject(device, window) })
            var button = find(view, "gridButton")
            var label = find(view, "infoLabel")
            compare([button.width, button.height, button.y], [48, 48, label.y + label.height])
            compare(button.icon.source, "qrc:/images/view_module")
            verify(button.visible && button.checkable && !button.checked)
        }

        function test_stereoOptionsAreKept() {
            var view = make(stereoView, { optionsVisible: true });
            ["hFlipButton", "vFlipButton", "pointsButton"].forEach(function(name) { mouseClick(find(view, name)) })
            compare(stored(view, stereoStore, ["horizontalFlip", "verticalFlip", "showPoints"]), ["true", "true", "false"])
        }

        function test_stereoButtonsShowWhatIsRestored() {
            stereoStore.setValue("horizontalFlip", true)
            stereoStore.setValue("verticalFlip", true)
            stereoStore.setValue("showPoints", false)
            var view = make(stereoView)
            compare(["hFlipButton", "vFlipButton", "pointsButton"].map(function(name) {
                return find(view, name).checked
            }), [true, true, false])
        }

        function visibleBoxes(item) {
            var found = 0
            for (var i = 0; i < item.children.length; ++i) {
                var child = item.children[i]
                if (child.visible)
                    found += (child instanceof ComboBox ? 1 : 0) + visibleBoxes(child)
            }
            return found
        }

        function test_pagesThatNothingOpensStayHidden_data() {
            return [{ tag: "stereo", component: stereoView }, { tag: "rgb", component: rgbView }]
        }

        function test_pagesThatNothingOpensStayHidden(data) {
            compare(visibleBoxes(make(data.component, { optionsVisible: true })), 0)
        }

        function test_exposureIsKeptAndRestored() {
            var view = make(stereoView)
            compare([find(view, "gainSlider").from, find(view, "gainSlider").to, find(view, "gainSlider").stepSize,
                     find(view, "gainSlider").value], [1, 16, 1, 10])
            compare([find(view, "brightnessSlider").from, find(view, "brightnessSlider").to,
                     find(view, "brightnessSlider").stepSize, find(view, "brightnessSlider").value], [1, 65, 1, 10])
            compare(find(view, "autoExposure").checked, true)
            find(view, "autoExposure").checked = false
            find(view, "gainSlider").value = 4
            find(view, "brightnessSlider").value = 40
            compare(stored(view, stereoStore, ["autoExposure", "gain", "brightness"]), ["false", "4", "40"])

            var later = make(stereoView)
            compare([find(later, "autoExposure").checked, find(later, "gainSlider").value,
                     find(later, "brightnessSlider").value], [false, 4, 40])
        }

        function test_restoredExposureReachesADeviceThatIsThere() {
            storeExposure(false, 7, 33)
            var camera = createTemporaryObject(device, window)
            make(stereoView, { camera: camera })
            compare(camera.calls, ["autoExposure false", "gain 7", "brightness 33"])
        }

        // Words for a number count as nothing stored, and a number beyond a slider's range as its nearest end.
        function test_unusableExposureFallsBack_data() {
            return [
                { tag: "word", stored: "loud", gain: 10, brightness: 10 },
                { tag: "empty", stored: "", gain: 10, brightness: 10 },
                { tag: "list", stored: [1, 2], gain: 10, brightness: 10 },
                { tag: "point", stored: Qt.point(1, 2), gain: 10, brightness: 10 },
                { tag: "beyond any number", stored: "1e400", gain: 10, brightness: 10 },
                { tag: "no number", stored: "nan", gain: 1, brightness: 1 },
                { tag: "endless", stored: "inf", gain: 16, brightness: 65 },
                { tag: "below", stored: "-40000000000", gain: 1, brightness: 1 },
                { tag: "above", stored: 1000, gain: 16, brightness: 65 }
            ]
        }

        function test_unusableExposureFallsBack(row) {
            [true, false].forEach(function(autoExposure) {
                storeExposure(autoExposure, row.stored, row.stored)
                var camera = createTemporaryObject(device, window)
                var view = make(stereoView, { camera: camera })
                compare([find(view, "autoExposure").checked, find(view, "gainSlider").value,
                         find(view, "brightnessSlider").value], [autoExposure, row.gain, row.brightness])
                // What reaches the device is what the sliders can say.
                var calls = autoExposure ? [] : ["autoExposure false"]
                if (!autoExposure && row.gain !== 10)
                    calls = calls.concat(["gain " + row.gain, "brightness " + row.brightness])
                compare(camera.calls, calls)
                view.destroy()
                wait(0)
            })
        }

        function test_unusableSwitchesKeepTheirDefaults_data() {
            return [{ tag: "point", stored: Qt.point(1, 2) }, { tag: "list", stored: [true] }]
        }

        function test_unusableSwitchesKeepTheirDefaults(row) {
            ["horizontalFlip", "verticalFlip", "showPoints", "autoExposure"].forEach(function(key) {
                stereoStore.setValue(key, row.stored)
                rgbStore.setValue(key, row.stored)
            })
            var view = make(stereoView)
            compare([view.horizontalFlip, view.verticalFlip, view.showPoints, find(view, "autoExposure").checked],
                    [false, false, true, true])
            var colour = make(rgbView)
            compare([colour.horizontalFlip, colour.verticalFlip], [false, false])
        }

        function test_defaultExposureIsNotSent() {
            var camera = createTemporaryObject(device, window)
            make(stereoView, { camera: camera })
            compare(camera.calls, [])
        }

        function test_colourViewsShareTheirFlips() {
            var view = make(rgbView, { optionsVisible: true })
            compare([view.horizontalFlip, view.verticalFlip], [false, false])
            mouseClick(find(view, "hFlipButton"))
            compare([view.rgbPainter.horizontalFlip, view.rgbPainter.verticalFlip], [true, false])
            mouseClick(find(view, "vFlipButton"))
            compare([view.rgbPainter.horizontalFlip, view.rgbPainter.verticalFlip], [true, true])
            mouseClick(find(view, "hFlipButton"))
            compare(stored(view, rgbStore, ["horizontalFlip", "verticalFlip"]), ["false", "true"])
            var second = make(rgbView, { rgbName: "[RGB2]" })
            compare([second.horizontalFlip, second.verticalFlip], [false, true])
            compare(find(second, "vFlipButton").checked, true)
            rgbStore.setValue("horizontalFlip", true)
            compare(find(make(rgbView), "hFlipButton").checked, true)
        }

        function test_eyetrackingOptionsAreKept() {
            var view = make(eyetrackingView, { optionsVisible: true })
            verify(find(view, "optionsColumn").visible)
            mouseClick(find(view, "hFlipImage"))
            compare([view.horizontalFlip, view.verticalFlip], [true, false])
            mouseClick(find(view, "vFlipImage"))
            compare([view.horizontalFlip, view.verticalFlip], [true, true])
            mouseClick(find(view, "caption"))
            mouseClick(find(view, "ledImage"));
            ["hFlipImage", "vFlipImage", "ledImage"].forEach(function(name) {
                var image = find(view, name)
                compare([image.width, image.height, image.status], [32, 32, Image.Ready])
            })
            compare(stored(view, eyetrackingStore, ["horizontalFlip", "verticalFlip", "source", "ledOn"]),
                    ["true", "true", "right", "true"])
            var later = make(eyetrackingView)
            compare([later.horizontalFlip, later.verticalFlip, later.sourceName], [true, true, "right"])
            verify(!find(later, "optionsColumn").visible)
            verify(!find(later, "exposurePage").visible)
            verify(!find(later, "caption").visible)
        }

        function test_eyetrackingExposureRanges() {
            var view = make(eyetrackingView)
            var gain = find(view, "eyetrackingExposureGainSpinBox")
            var time = find(view, "eyetrackingExposureTimeSpinBox")
            compare([gain.from, gain.to, gain.stepSize, gain.value], [0, 255, 5, 150])
            compare([time.from, time.to, time.stepSize, time.value], [0, 330, 10, 150])
        }
    }
}
