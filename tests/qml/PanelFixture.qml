import QtQuick 2.13
import Qt.labs.settings 1.1
import "qrc:/"

// One page on one fake device, with what the main window gives to a page.
Item {
    id: window

    property bool isHeaderHovered: false
    property string version: "3.2.0"
    property string qv_sdk_version: "7.8.9"
    property bool advanced: true
    property bool filesExist: false

    property var page: null
    property var device: null
    /// What the device was asked while the page was made.
    property var callsOfOpening: []
    property alias mainSettings: mainSettings
    property alias devices: listener.cameras

    width: 1024
    height: 768

    QtObject {
        id: listener

        property var cameras: []
    }

    QtObject {
        id: mainSettings

        property int currentLanguageIndex: 0
    }

    QtObject {
        id: uuidSelector

        property int currentIndex: 0
        property int count: 1
    }

    QtObject {
        id: tools

        function filename(url) { return url.toString().split("/").pop() }
        function filepath(url) { return url.toString().replace("file://", "") }
        function fileExists() { return window.filesExist }
        function folderUrl(url) { return url }
        function openUrl() { return true }
        function copyToClipboard() {}
        function mapVector(matrix, vector) { return matrix.times(vector) }
    }

    Settings {
        id: modeStore

        category: "CameraView"
    }

    Settings {
        id: tofStore

        category: "TofView"
    }

    PresetStore {
        id: store
    }

    Component {
        id: deviceComponent

        FakeDevice {}
    }

    // The 3D scenes have tests of their own, and need more of a device than this one has.
    function makePage(properties) {
        documents.replace("qrc:/SlamView.qml", Qt.resolvedUrl("stubs/SpatialView.qml"))
        documents.replace("qrc:/Tof3DView.qml", Qt.resolvedUrl("stubs/SpatialView.qml"))
        const component = Qt.createComponent("qrc:/CameraView.qml")
        if (component.status !== Component.Ready)
            console.warn(component.errorString())
        return component.createObject(window, properties)
    }

    /// A fresh page; `change` may alter the device before the page sees it.
    function open(change) {
        device = deviceComponent.createObject(window)
        if (change)
            change(device)
        listener.cameras = [device]
        page = makePage({ width: window.width, height: window.height, camera: device })
        callsOfOpening = device.calls.slice()
        device.forget()
        return page
    }

    function openWithout(names) {
        return open(function(fake) { names.forEach(function(name) { fake[name] = null }) })
    }

    function openEmpty() {
        page = makePage({ width: window.width, height: window.height })
        return page
    }

    function close() {
        if (page)
            page.destroy()
        if (device)
            device.destroy()
        page = null
        device = null
        listener.cameras = []
    }

    function clearStore() {
        modeStore.setValue("mode", 0)
        for (let i = 0; i < 10; ++i)
            store.release(i)
    }

    function storeTofDistances(nearest, furthest) {
        tofStore.setValue("minDistance", nearest)
        tofStore.setValue("maxDistance", furthest)
    }

    function slot(index) {
        return store.saveSettings[index]
    }

    function storeMode(mode) {
        modeStore.setValue("mode", mode)
    }

    function storedMode() {
        return modeStore.value("mode", -1)
    }
}
