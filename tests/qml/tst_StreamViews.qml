import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import ObjectsData 1.0
import "qrc:/"

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
            property var pictures: []
            property QtObject stereo: QtObject {
                property int count: 2
                property int width: 640
                property int height: 400
                property double dataFrameRate: 49.6
                property int gain: 20
                property int brightness: 5
                property bool autoExposure: true
                property int mode: 4
                function image(index) { return index >= 0 && index < 4 ? fake.pictures[index] : null }
                function setResolution(mode) { fake.calls.push("setResolution " + mode) }
            }
            property QtObject objects: QtObject {
                property int source: ObjectsData.Left
                property var objects: [{ shape: 0, type: "chair" }]
            }
            property QtObject rgb: QtObject {
                property QtObject image: QtObject { property int width: 1920; property int height: 1080 }
                property QtObject image2: QtObject { property int width: 640; property int height: 480 }
                property double dataFrameRate: 29.6
                property double dataFrameRate2: 15.2
            }
            property QtObject tof: QtObject {}
            property QtObject sgbm: QtObject {}
            property QtObject rgbd: QtObject { property QtObject image: QtObject {} }
            property QtObject tofIr: QtObject {
                property QtObject image: QtObject { property int width: 224; property int height: 172 }
                property double dataFrameRate: 10
            }
            property QtObject eyetracking: QtObject {
                property QtObject left: QtObject { property int width: 320; property int height: 240 }
                property QtObject right: QtObject { property int width: 160; property int height: 120 }
                function setManualExposure(gain, time) { fake.calls.push("manual " + gain + " " + time) }
                function setAutoExposure() { fake.calls.push("auto") }
                function setLED(eye, channel, value) { fake.calls.push("led " + eye + " " + channel + " " + value) }
            }

            Component.onCompleted: {
                for (var i = 0; i < 4; ++i)
                    pictures.push(picture.createObject(fake, { index: i }))
            }
        }
    }

    Component {
        id: picture
        QtObject {
            id: fisheye
            property int index
            property QtObject image: QtObject { property int index: fisheye.index }
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
        id: rgbdView
        RgbdView { width: 500; height: 400; minimized: false }
    }

    Component {
        id: irView
        IrView { width: 500; height: 400; minimized: false }
    }

    Component {
        id: eyetrackingView
        EyetrackingView { width: 500; height: 400; minimized: false }
    }

    StrictCase {
        id: testCase
        name: "StreamViews"

        property var camera: null

        function init() {
            expectedWarnings = []
            messages.start()
            camera = createTemporaryObject(device, window)
            slamButton.checked = true
            slamButton.checkable = true
        }

        function sourceIndex(painter) {
            return painter.source ? painter.source.index : -1
        }

        function test_stereoDefaults() {
            var view = make(stereoView)
            compare([view.horizontalFlip, view.verticalFlip, view.showPoints, view.showGrid, view.resolutionIndex],
                    [false, false, true, false, 0])
            verify(find(view, "pointsButton").checked)
            compare(find(view, "infoLabel").text, "")
            compare(find(view, "caption").text, "")
        }

        function test_stereoShowsOneCamera() {
            var view = make(stereoView, { camera: camera })
            compare(sourceIndex(find(view, "painter")), 0)
            var caption = find(view, "caption")
            compare([caption.text, caption.x, caption.y + caption.height], ["Left", 5, view.height - 5])
            verify(!find(view, "gridPainter0").visible)
            compare(find(view, "infoLabel").text, "[STEREO]  640x400@50fps")
            find(view, "imContainer").value = 1
            compare(sourceIndex(find(view, "painter")), 1)
            compare(find(view, "caption").text, "Right")
        }

        function test_stereoCaptions_data() {
            return [
                { tag: "none", count: 0, names: ["", "", "", ""] },
                { tag: "pair", count: 2, names: ["Left", "Right", "", ""] },
                { tag: "three", count: 3, names: ["", "", "", ""] },
                { tag: "four", count: 4, names: ["Cam0", "Cam1", "Cam2", "Cam3"] }
            ]
        }

        function test_stereoCaptions(data) {
            camera.stereo.count = data.count
            var view = make(stereoView, { camera: camera })
            var container = find(view, "imContainer")
            compare([0, 1, 2, 3].map(function(index) { return container.name(index) }), data.names)
        }

        function test_lowerCamerasShowWithTheOppositeFlips() {
            camera.stereo.count = 4
            var view = make(stereoView, { camera: camera })
            var painter = find(view, "painter")
            var expected = [[true, false], [true, false], [false, true], [false, true]]
            view.horizontalFlip = true
            for (var i = 0; i < 4; ++i) {
                find(view, "imContainer").value = i
                compare([painter.horizontalFlip, painter.verticalFlip], expected[i])
            }
            view.horizontalFlip = false
        }

        function test_gridShowsAllCameras() {
            camera.stereo.count = 4
            var view = make(stereoView, { camera: camera })
            mouseClick(find(view, "gridButton"))
            compare(find(view, "imContainer").dispatched, true)
            verify(!find(view, "painter").visible)
            for (var i = 0; i < 4; ++i) {
                var painter = find(view, "gridPainter" + i)
                compare(sourceIndex(painter), i)
                verify(find(view, "painters").itemAt(i) === painter)
                compare(painter.CNNRunning, true)
                compare(find(view, "gridCaption" + i).text, "Cam" + i)
                compare([painter.horizontalFlip, painter.verticalFlip], [false, false])
            }
        }

        function test_clickInTheGridChoosesTheCamera() {
            camera.stereo.count = 4
            var view = make(stereoView, { camera: camera })
            find(view, "gridButton").checked = true
            waitForRendering(view)
            mouseClick(find(view, "gridPainter2"))
            compare(find(view, "imContainer").value, 2)
            compare(find(view, "gridButton").checked, false)
            compare(sourceIndex(find(view, "painter")), 2)
        }

        function test_clickInAMinimizedGridDoesNothing() {
            var view = make(stereoView, { camera: camera, minimized: true })
            find(view, "gridButton").checked = true
            waitForRendering(view)
            mouseClick(find(view, "gridPainter1"))
            compare(find(view, "imContainer").value, 0)
            compare(find(view, "gridButton").checked, true)
        }

        function test_doubleClickInAMinimizedGridMaximizes() {
            var view = make(stereoView, { camera: camera, minimized: true })
            find(view, "gridButton").checked = true
            waitForRendering(view)
            mouseDoubleClickSequence(find(view, "gridPainter1"))
            compare(view.maximized, true)
        }

        function test_cnnRunsOnEveryPainter() {
            camera.stereo.count = 4
            var view = make(stereoView, { camera: camera })
            compare(find(view, "painter").CNNRunning, false)
            var painters = ["painter", "gridPainter0", "gridPainter1", "gridPainter2", "gridPainter3"].map(function(name) {
                return find(view, name)
            });
            [false, true, false].forEach(function(running) {
                view.setCNNRunning(running)
                painters.forEach(function(painter) { compare(painter.CNNRunning, running, painter.objectName) })
            })
        }

        function test_gridPaintersFollowTheView() {
            var view = make(stereoView, { camera: camera })
            var painters = [0, 1].map(function(index) { return find(view, "gridPainter" + index) })
            painters.forEach(function(painter) {
                compare([painter.tofData, painter.horizontalFlip, painter.verticalFlip, painter.showPoints],
                        [camera.tof, false, false, true])
            })
            view.horizontalFlip = true
            view.showPoints = false
            painters.forEach(function(painter) {
                compare([painter.horizontalFlip, painter.verticalFlip, painter.showPoints], [true, false, false])
            })
            view.horizontalFlip = false
            view.verticalFlip = true
            camera.tof = null
            painters.forEach(function(painter) {
                compare([painter.tofData, painter.horizontalFlip, painter.verticalFlip], [null, false, true])
            })
            view.verticalFlip = false
            view.showPoints = true
        }

        function test_gridShowsAsManyCamerasAsThereAre() {
            camera.stereo.count = 4
            var view = make(stereoView, { camera: camera })
            compare(find(view, "painters").count, 4)
            camera.stereo.count = 2
            compare(find(view, "painters").count, 2)
            camera.stereo.count = 0
            compare(find(view, "painters").count, 0)
            view.setCNNRunning(true)
        }

        function test_gridHasTwoColumns() {
            camera.stereo.count = 4
            var view = make(stereoView, { camera: camera })
            find(view, "gridButton").checked = true
            waitForRendering(view)
            var places = [0, 1, 2, 3].map(function(index) { return find(view, "gridPainter" + index).mapToItem(view, 0, 0) })
            verify(places[0].x === places[2].x && places[1].x === places[3].x && places[0].x < places[1].x)
            verify(places[0].y === places[1].y && places[2].y === places[3].y && places[0].y < places[2].y)
        }

        function test_captionsBelongToTheirDocument() {
            var stereo = make(stereoView, { camera: camera })
            var eyes = make(eyetrackingView, { camera: camera, optionsVisible: true })
            TranslateController.loadLanguage(1)
            compare(find(stereo, "caption").text, "StereoView/Left")
            compare(find(stereo, "gridCaption1").text, "StereoView/Right")
            compare(find(eyes, "caption").text, "EyetrackingView/Left")
            TranslateController.loadLanguage(0)
        }

        function test_objectsBelongToTheirCamera_data() {
            return [
                { tag: "left", source: ObjectsData.Left, counts: [1, 0] },
                { tag: "right", source: ObjectsData.Right, counts: [0, 1] },
                { tag: "rgb", source: ObjectsData.RGB, counts: [0, 0] }
            ]
        }

        function test_objectsBelongToTheirCamera(data) {
            camera.objects.source = data.source
            var view = make(stereoView, { camera: camera })
            for (var i = 0; i < 2; ++i) {
                find(view, "imContainer").value = i
                compare(find(view, "painter").objects.length, data.counts[i])
                compare(find(view, "gridPainter" + i).objects.length, data.counts[i])
            }
        }

        function test_paintersKnowTheDepth() {
            var view = make(stereoView, { camera: camera })
            compare(find(view, "painter").tofData, camera.tof)
            camera.tof = null
            compare(find(view, "painter").tofData, null)
        }

        function test_optionButtonsWriteTheOptions() {
            var view = make(stereoView, { camera: camera })
            verify(!find(view, "optionsColumn").visible)
            mouseClick(view, 250, 250)
            verify(find(view, "optionsColumn").visible)
            mouseClick(find(view, "hFlipButton"))
            compare(view.horizontalFlip, true)
            mouseClick(find(view, "vFlipButton"))
            compare(view.verticalFlip, true)
            mouseClick(find(view, "pointsButton"))
            compare(view.showPoints, false)
            compare(find(view, "painter").showPoints, false)
            // What is stored is written when the view goes.
            view.destroy()
            wait(0)
            var later = make(stereoView, { optionsVisible: true })
            compare([later.horizontalFlip, later.verticalFlip, later.showPoints], [true, true, false])
            compare(find(later, "hFlipButton").checked, true)
            mouseClick(find(later, "hFlipButton"))
            mouseClick(find(later, "vFlipButton"))
            mouseClick(find(later, "pointsButton"))
            compare([later.horizontalFlip, later.verticalFlip, later.showPoints], [false, false, true])
        }

        function test_hiddenResolutionGuardsSlam() {
            var view = make(stereoView, { camera: camera })
            var box = find(view, "stereoResolutionComboBox")
            box.currentIndex = 1
            compare([slamButton.checked, slamButton.checkable, view.resolutionIndex], [false, false, 1])
            box.currentIndex = 0
            compare([slamButton.checked, slamButton.checkable, view.resolutionIndex], [false, true, 0])
            compare(camera.calls, ["setResolution 3", "setResolution 2"])
        }

        function test_hiddenExposureReachesTheDevice() {
            var view = make(stereoView, { camera: camera })
            find(view, "gainSlider").value = 4
            compare(camera.stereo.gain, 20)
            find(view, "autoExposure").checked = false
            compare(camera.stereo.autoExposure, false)
            find(view, "gainSlider").value = 7
            find(view, "brightnessSlider").value = 33
            compare([camera.stereo.gain, camera.stereo.brightness], [7, 33])
            find(view, "autoExposure").checked = true
            find(view, "gainSlider").value = 10
            find(view, "brightnessSlider").value = 10
        }

        function test_viewsLoseTheirCamera_data() {
            return [
                { tag: "stereo", component: stereoView, model: "stereo" },
                { tag: "rgb", component: rgbView, model: "rgb" },
                { tag: "rgbd", component: rgbdView, model: "rgbd" },
                { tag: "ir", component: irView, model: "tofIr" },
                { tag: "eyetracking", component: eyetrackingView, model: "eyetracking" }
            ]
        }

        function test_viewsLoseTheirCamera(data) {
            var view = make(data.component, { camera: camera })
            verify(find(view, "painter").source)
            camera[data.model] = null
            compare(find(view, "painter").source, null)
            view.camera = null
            compare(find(view, "painter").source, null)
            compare(find(view, "painter").objects.length, 0)
            if (data.tag !== "rgbd")
                compare(find(view, "infoLabel").text, "")
        }

        function test_rgbShowsItsFirstPicture() {
            var view = make(rgbView, { camera: camera })
            compare(find(view, "infoLabel").text, "[RGB]  1920x1080@30fps")
            compare(view.rgbPainter.source, camera.rgb.image)
            compare(view.rgbPainter.tofData, camera.tof)
            compare(view.rgbPainter.sgbmData, camera.sgbm)
        }

        function test_secondRgbShowsItsOwnRate() {
            var view = make(rgbView, { camera: camera, rgbImg: camera.rgb.image2, rgbName: "[RGB2]" })
            compare(find(view, "infoLabel").text, "[RGB2]  640x480@15fps")
            compare(view.rgbPainter.source, camera.rgb.image2)
            camera.rgb = null
            compare(view.rgbPainter.source, null)
        }

        function test_rgbObjectsNeedTheirSource() {
            var view = make(rgbView, { camera: camera })
            compare(view.rgbPainter.objects.length, 0)
            camera.objects.source = ObjectsData.RGB
            compare(view.rgbPainter.objects.length, 1)
        }

        function test_rgbdNeedsAllThreeModels_data() {
            return [{ tag: "rgb" }, { tag: "tof" }, { tag: "rgbd" }]
        }

        function test_rgbdNeedsAllThreeModels(data) {
            var view = make(rgbdView, { camera: camera })
            compare(find(view, "painter").source, camera.rgbd.image)
            compare(find(view, "infoLabel").text, "[RGBD]  ")
            camera[data.tag] = null
            compare(find(view, "painter").source, null)
        }

        function test_rgbdShowsNoObjects() {
            camera.objects.source = ObjectsData.RGB
            compare(find(make(rgbdView, { camera: camera }), "painter").objects.length, 0)
        }

        function test_flipsReachThePainter_data() {
            return [{ tag: "rgbd", component: rgbdView }, { tag: "ir", component: irView }]
        }

        function test_flipsReachThePainter(data) {
            var view = make(data.component, { camera: camera })
            var painter = find(view, "painter")
            compare([painter.horizontalFlip, painter.verticalFlip], [false, false])
            view.horizontalFlip = true
            compare([painter.horizontalFlip, painter.verticalFlip], [true, false])
            view.verticalFlip = true
            compare([painter.horizontalFlip, painter.verticalFlip], [true, true])
        }

        function test_irForwardsClicks() {
            var view = make(irView, { camera: camera })
            compare(find(view, "infoLabel").text, "[TOF IR]  224x172@10fps")
            mouseClick(view, 250, 200)
            compare(view.optionsVisible, true)
            mouseDoubleClickSequence(view, 250, 200)
            compare(view.maximized, true)
        }

        function test_clickOnAMinimizedIrViewDoesNothing() {
            var view = make(irView, { camera: camera, minimized: true })
            mouseClick(view, 250, 200)
            compare(view.optionsVisible, false)
        }

        function test_eyetrackingChangesSides() {
            var view = make(eyetrackingView, { camera: camera, optionsVisible: true })
            compare(find(view, "infoLabel").text, "320x240@0fps")
            compare(find(view, "caption").text, "Left")
            mouseClick(find(view, "caption"))
            compare(view.sourceName, "right")
            compare(find(view, "caption").text, "Right")
            compare(find(view, "infoLabel").text, "160x120@0fps")
            mouseClick(find(view, "caption"))
        }

        function test_eyetrackingExposure() {
            var view = make(eyetrackingView, { camera: camera, optionsVisible: true })
            var gain = find(view, "eyetrackingExposureGainSpinBox")
            var time = find(view, "eyetrackingExposureTimeSpinBox")
            var mode = find(view, "eyetrackingExposureModeSwitch")
            verify(gain.visible && time.visible)
            gain.increase()
            time.increase()
            mode.checked = true
            verify(!gain.visible && !time.visible)
            mode.checked = false
            compare(camera.calls, ["manual 155 150", "manual 155 160", "manual 155 160", "auto"])
        }

        function test_eyetrackingLights() {
            var view = make(eyetrackingView, { camera: camera, optionsVisible: true })
            var led = find(view, "ledImage")
            compare(led.opacity, 0.5)
            mouseClick(led)
            compare(led.opacity, 1)
            mouseClick(led)
            compare(camera.calls, ["led 0 8 255", "led 1 8 255", "led 0 8 0", "led 1 8 0"])
        }
    }
}
