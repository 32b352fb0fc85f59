import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

// Two devices of one kind, each with its page: the stored presets belong to both, a box lists those of its page's start.
Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    Component {
        id: swipeView

        SwipeView {
            width: 1024
            height: 768
        }
    }

    Component {
        id: otherDevice

        FakeDevice {}
    }

    PanelTestCase {
        id: testCase

        name: "CameraViewTwoPages"
        fixture: fixture

        property var other: null

        function cleanup() {
            closeOther()
            content = null
            fixture.close()
            wait(0)
            compare(messages.warnings().filter(function(text) {
                return !expectedWarnings.some(function(pattern) { return pattern.test(text) })
            }), [])
        }

        function openOther() {
            const device = createTemporaryObject(otherDevice, fixture)
            other = fixture.makePage({ width: fixture.width, height: fixture.height, camera: device })
            tryVerify(function() { return other.cameraDrawer.opened })
        }

        function closeOther() {
            if (other)
                other.destroy()
            other = null
        }

        function on(panel, name) {
            const item = findChild(panel.cameraDrawer.contentItem, name)
            verify(item, "no control " + name)
            return item
        }

        function listed(panel) {
            const box = on(panel, "allSettingsCombobox")
            const result = []
            for (let i = 0; i < box.count; ++i)
                result.push(box.textAt(i))
            return result
        }

        function save(panel, name) {
            on(panel, "allSettingsCombobox").contTxt.text = name
            on(panel, "savePresetButton").clicked()
        }

        function test_thePanelOnShowIsThatOfThePageOnShow() {
            open()
            openOther()
            const pages = createTemporaryObject(swipeView, fixture)
            pages.addItem(page)
            pages.addItem(other)
            tryCompare(page.cameraDrawer, "opened", true)
            tryCompare(other.cameraDrawer, "visible", false)
            pages.currentIndex = 1
            tryCompare(other.cameraDrawer, "opened", true)
            tryCompare(page.cameraDrawer, "visible", false)
            // A closed one comes back with its page.
            other.cameraDrawer.close()
            tryCompare(other.cameraDrawer, "visible", false)
            pages.currentIndex = 0
            tryCompare(page.cameraDrawer, "opened", true)
            pages.currentIndex = 1
            tryCompare(other.cameraDrawer, "opened", true)
        }

        function test_aPresetShowsOnTheOtherPageAfterItsNextStart() {
            open()
            openOther()
            on(page, "sgbmZoomSpinBox").value = 170
            save(page, "bench")
            wait(0)
            compare(listed(page), ["Default", "bench"])
            compare(listed(other), ["Default"])
            compare(on(other, "sgbmZoomSpinBox").value, 100)

            closeOther()
            openOther()
            compare(listed(other), ["Default", "bench"])
            compare(on(other, "allSettingsCombobox").currentIndex, 0)
            on(other, "allSettingsCombobox").currentIndex = 1
            compare(on(other, "sgbmZoomSpinBox").value, 170)
            compare(other.camera.callsTo("sgbm.setZoomFactor"), ["sgbm.setZoomFactor(1.7)"])
        }

        function test_pagesThatSaveIntoOneSlotOverwriteEachOther() {
            open()
            openOther()
            on(page, "sgbmZoomSpinBox").value = 170
            save(page, "mine")
            on(other, "sgbmZoomSpinBox").value = 260
            save(other, "theirs")
            compare([listed(page), listed(other)], [["Default", "mine"], ["Default", "theirs"]])
            compare(fixture.slot(0).value("name"), "theirs")
            compare(Number(fixture.slot(1).value("isAdd", 0)), 0)

            // The page lists its own word for the slot, and loads what the slot now holds.
            on(page, "allSettingsCombobox").currentIndex = 0
            on(page, "allSettingsCombobox").currentIndex = 1
            compare(on(page, "sgbmZoomSpinBox").value, 260)
        }

        function test_aPresetDeletedOnOnePageStaysListedOnTheOther() {
            open()
            save(page, "bench")
            openOther()
            compare(listed(other), ["Default", "bench"])
            on(page, "deletePresetButton").clicked()
            wait(0)
            compare([listed(page), listed(other)], [["Default"], ["Default", "bench"]])
            compare(Number(fixture.slot(0).value("isAdd", 1)), 0)

            closeOther()
            openOther()
            compare(listed(other), ["Default"])
        }
    }
}
