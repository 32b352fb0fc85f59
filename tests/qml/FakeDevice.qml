import QtQuick 2.13

// A device with every model. It notes what it is asked, in order, and does nothing else.
QtObject {
    id: device

    property var calls: []
    /// Run inside each call, with the call's text.
    property var probe: null

    property string uuid: "DEVICE-0001"
    property var info: ({ uuid: "DEVICE-0001" })
    property bool afRGB: true
    property bool rgb2: true
    property bool downSample: true

    property var imu: QtObject {
        property int mode: 1
        property int offset: 0
        property int dataFrameRate: 0
        property var accel: QtObject { property double x: 0; property double y: 0; property double z: 0 }
        property var gyro: QtObject { property double x: 0; property double y: 0; property double z: 0 }
        property var magn: QtObject { property double x: 0; property double y: 0; property double z: 0 }
        onModeChanged: device.note("imu.mode", mode)
        onOffsetChanged: device.note("imu.offset", offset)
        function control(on) { device.note("imu.control", on) }
    }
    property var stereo: QtObject {
        property int mode: 4
        property int count: 2
        property int width: 640
        property int height: 400
        property int dataFrameRate: 0
        property bool autoExposure: true
        property int gain: 10
        property int brightness: 10
        onModeChanged: device.note("stereo.mode", mode)
        onAutoExposureChanged: device.note("stereo.autoExposure", autoExposure)
        onGainChanged: device.note("stereo.gain", gain)
        onBrightnessChanged: device.note("stereo.brightness", brightness)
        function image(index) { return null }
        function control(on) { device.note("stereo.control", on) }
        function registerFisheyeCameras(on) { device.note("stereo.registerFisheyeCameras", on) }
        function setResolution(mode) { device.note("stereo.setResolution", mode) }
        function setViewSize(w, h) { device.note("stereo.setViewSize", w, h) }
    }
    property var slam: FakeSlam {
        enabled: true
        onPredictionChanged: device.note("slam.prediction", prediction)
        onControlled: device.note("slam.control", on)
    }
    property var edge: FakeSlam {
        enabled: false
        onPredictionChanged: device.note("edge.prediction", prediction)
        onControlled: device.note("edge.control", on)
    }
    property var planes: QtObject {
        function clearTofPlanes() { device.note("planes.clearTofPlanes") }
        function clearStereoPlanes() { device.note("planes.clearStereoPlanes") }
    }
    property var edgePlanes: null
    property var eyetracking: null
    property var map: null
    property var tof: QtObject {
        // As in the program, nothing tells when this changes.
        readonly property var state: ({ settled: true })
        property int manufacturer: 0
        property var image: null
        property int dataFrameRate: 0
        property int depth: 0
        property int centerAvgPx: 0
        property int framerate: 30
        property double maxDistance: 1.0
        property double minDistance: 0.1
        property int mode: 0
        property int frequency: 0
        property int fps: 5
        property int resolution: 0
        property bool pixelShow: false
        onFramerateChanged: device.note("tof.framerate", framerate)
        onMaxDistanceChanged: device.note("tof.maxDistance", maxDistance)
        onMinDistanceChanged: device.note("tof.minDistance", minDistance)
        onModeChanged: device.note("tof.mode", mode)
        onFrequencyChanged: device.note("tof.frequency", frequency)
        onFpsChanged: device.note("tof.fps", fps)
        onResolutionChanged: device.note("tof.resolution", resolution)
        onPixelShowChanged: device.note("tof.pixelShow", pixelShow)
        function isEnable() { return state.settled }
        function control(on) { device.note("tof.control", on) }
        function setEnableCenterAvgPx(on) { device.note("tof.setEnableCenterAvgPx", on) }
        function setLibWorkMode(mode) { device.note("tof.setLibWorkMode", mode) }
        function setDistanceMode(mode) { device.note("tof.setDistanceMode", mode) }
        function setTofIrGamma(gamma) { device.note("tof.setTofIrGamma", gamma) }
        function setViewSize(w, h) { device.note("tof.setViewSize", w, h) }
        function setX(x) { device.note("tof.setX", x) }
        function setY(y) { device.note("tof.setY", y) }
        function setCenterAvgX(x) { device.note("tof.setCenterAvgX", x) }
        function setCenterAvgY(y) { device.note("tof.setCenterAvgY", y) }
        function setCenterAvgWidth(w) { device.note("tof.setCenterAvgWidth", w) }
        function setCenterAvgHeight(h) { device.note("tof.setCenterAvgHeight", h) }
    }
    property var tofIr: QtObject {
        property var image: null
        property int dataFrameRate: 0
        function control(on) { device.note("tofIr.control", on) }
        function setViewSize(w, h) { device.note("tofIr.setViewSize", w, h) }
    }
    property var rgb: QtObject {
        property bool isEnable: true
        property bool isEnable2: true
        property var image: null
        property var image2: null
        property int dataFrameRate: 0
        property int dataFrameRate2: 0
        property int resolution: 0
        property int framerate: 30
        property int mode: 0
        onResolutionChanged: device.note("rgb.resolution", resolution)
        onFramerateChanged: device.note("rgb.framerate", framerate)
        onModeChanged: device.note("rgb.mode", mode)
        function control(on, which) { device.note("rgb.control", on, which) }
        function setRGBMode(mode) { device.note("rgb.setRGBMode", mode) }
        function setRGBDistance(distance) { device.note("rgb.setRGBDistance", distance) }
        function setViewSize(w, h) { device.note("rgb.setViewSize", w, h) }
        function setView2Size(w, h) { device.note("rgb.setView2Size", w, h) }
    }
    property var rgbd: QtObject {
        property bool enable: false
        property var image: null
        function control(on) { device.note("rgbd.control", on) }
        function setViewSize(w, h) { device.note("rgbd.setViewSize", w, h) }
    }
    property var sgbm: QtObject {
        property bool isEnable: true
        property var image: null
        property int resolution: 0
        property int frameRate: 0
        property int depth: 0
        property int centerAvgPx: 0
        property bool pixelShow: false
        property int colorIndex: 0
        onPixelShowChanged: device.note("sgbm.pixelShow", pixelShow)
        onColorIndexChanged: device.note("sgbm.colorIndex", colorIndex)
        function control(on) { device.note("sgbm.control", on) }
        function setEnableDewarp(v) { device.note("sgbm.setEnableDewarp", v) }
        function setEnableCenterAvgPx(v) { device.note("sgbm.setEnableCenterAvgPx", v) }
        function setDepth(v) { device.note("sgbm.setDepth", v) }
        function setEnableFillHoles(v) { device.note("sgbm.setEnableFillHoles", v) }
        function setSgbmResolution(v) { device.note("sgbm.setSgbmResolution", v) }
        function setZoomFactor(v) { device.note("sgbm.setZoomFactor", v) }
        function setBaseline(v) { device.note("sgbm.setBaseline", v) }
        function setFOV(v) { device.note("sgbm.setFOV", v) }
        function setMaxDisparity(v) { device.note("sgbm.setMaxDisparity", v) }
        function setMaxDistance(v) { device.note("sgbm.setMaxDistance", v) }
        function setMinDistance(v) { device.note("sgbm.setMinDistance", v) }
        function setHoleSize(v) { device.note("sgbm.setHoleSize", v) }
        function setHoleMin(v) { device.note("sgbm.setHoleMin", v) }
        function setHoleMax(v) { device.note("sgbm.setHoleMax", v) }
        function setCenterAvgWidth(v) { device.note("sgbm.setCenterAvgWidth", v) }
        function setCenterAvgHeight(v) { device.note("sgbm.setCenterAvgHeight", v) }
        function setCenterAvgX(v) { device.note("sgbm.setCenterAvgX", v) }
        function setCenterAvgY(v) { device.note("sgbm.setCenterAvgY", v) }
        function setX(v) { device.note("sgbm.setX", v) }
        function setY(v) { device.note("sgbm.setY", v) }
        function setViewSize(w, h) { device.note("sgbm.setViewSize", w, h) }
    }
    property var tof3d: QtObject {
        property bool rgbAvailable: false
        property bool colorize: false
        property int source: 0
        property var pointCloud: null
        function control(on) { device.note("tof3d.control", on) }
    }
    property var objects: QtObject {
        property int source: 3
        property var objects: []
        onSourceChanged: device.note("objects.source", source)
        function setModelDescriptor(path) { device.note("objects.setModelDescriptor", path) }
        function setModel(path) { device.note("objects.setModel", path) }
        function setEnabled(on) { device.note("objects.setEnabled", on) }
        function control(on) { device.note("objects.control", on) }
        function updateCNNSource() { device.note("objects.updateCNNSource") }
    }

    function note() {
        const args = Array.prototype.slice.call(arguments)
        const text = args[0] + "(" + args.slice(1).filter(function(a) { return a !== undefined }).join(",") + ")"
        calls.push(text)
        if (probe)
            probe(text)
    }

    /// The calls that begin with `prefix`; all of them without one.
    function callsTo(prefix) {
        return calls.filter(function(call) { return !prefix || call.indexOf(prefix) === 0 })
    }

    function forget() {
        calls = []
    }

    /// What a device does when it stops: every model goes.
    function dropModels() {
        ["rgb", "rgbd", "tof", "tofIr", "stereo", "imu", "slam", "edge", "objects", "planes", "edgePlanes", "map",
            "tof3d", "sgbm"].forEach(function(name) { device[name] = null })
    }

    function enableSync(on) { note("enableSync", on); return true }
    function saveImages(name) { note("saveImages", name); return "/captures/" + name }
    function setRecordingSlam(on) { note("setRecordingSlam", on); return "" }
    function sendHid(text) { note("sendHid", text); return "" }
    function getGlassLog() { return "" }
}
