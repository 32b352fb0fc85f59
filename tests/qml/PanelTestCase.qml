import QtQuick 2.13
import QtTest 1.13

// Finds the controls of a page by name and works them as a user does.
TestCase {
    id: testCase

    property var fixture: null
    readonly property var page: fixture.page
    readonly property var device: fixture.device
    property var content: null
    readonly property var expectedWarnings: [
        // A change of language makes the runner's own bindings complain.
        /PanelTestCase: Binding loop/,
        // The fake device is no item, and Qt 3D would rather have it one.
        /QQmlComponent: Created graphical object was not placed/,
        // The tool tips of the map buttons ask for a path, camera or none.
        /SlamView\.qml:\d+: TypeError: (Cannot read property 'slam' of null|Type error)/
    ]

    when: windowShown

    function init() {
        fixture.clearStore()
        messages.start()
    }

    // Nothing warns, neither while a page is used nor when it goes.
    function cleanup() {
        content = null
        fixture.close()
        wait(0)
        compare(messages.warnings().filter(function(text) {
            return !expectedWarnings.some(function(pattern) { return pattern.test(text) })
        }), [])
    }

    function open(change) {
        fixture.open(change)
        settle()
    }

    function openWithout(names) {
        fixture.openWithout(names)
        settle()
    }

    // The opening of the drawer and the first layout are over.
    function settle() {
        content = findChild(fixture.page, "content")
        tryVerify(function() { return fixture.page.cameraDrawer.opened && content.mode >= 0 })
    }

    function control(name) {
        const item = findChild(page.cameraDrawer.contentItem, name)
        verify(item, "no control " + name)
        return item
    }

    function viewNamed(name) {
        const models = [content.sideModel, content.uniqueModel, content.unusedModel]
        for (let m = 0; m < models.length; ++m) {
            for (let i = 0; i < models[m].count; ++i) {
                if (models[m].get(i).objectName === name)
                    return models[m].get(i)
            }
        }
        fail("no view " + name)
        return null
    }

    function names(model) {
        const result = []
        for (let i = 0; i < model.count; ++i)
            result.push(model.get(i).objectName)
        return result
    }

    // Brings a control into the visible part of the drawer.
    function reveal(item) {
        const flickable = control("flickable")
        const column = control("buttonColumn")
        tryVerify(function() {
            const last = Math.max(0, flickable.contentHeight - flickable.height)
            flickable.contentY = Math.min(last, Math.max(0, item.mapToItem(column, 0, 0).y - 150))
            const y = item.mapToItem(flickable, 0, 0).y
            return item.visible && y >= 0 && y + item.height <= flickable.height
        })
        return item
    }

    function openSection(name) {
        control(name).checked = true
        waitForRendering(control("flickable"))
    }

    function click(name) {
        mouseClick(reveal(control(name)))
    }

    function switchOn() {
        for (let i = 0; i < arguments.length; ++i)
            control(arguments[i]).checked = true
    }

    // What starts and stops streams.
    function controls() {
        return device.callsTo().filter(function(call) {
            return call.indexOf("control(") >= 0 || call.indexOf("registerFisheyeCameras") >= 0
        })
    }

    function placed() {
        return content.sideModel.count + content.uniqueModel.count
    }
}
