import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import "qrc:/"

Item {
    id: window

    property bool isHeaderHovered: false

    width: 640
    height: 480

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    QtObject {
        id: recorder
        property var calls: []
        property string answer: "/captures/slam"
        function setRecordingSlam(on) {
            calls.push(on)
            return on ? answer : ""
        }
    }

    Shortcut {
        id: leave
        property int uses: 0
        sequence: "Ctrl+Q"
        onActivated: ++uses
    }

    Component {
        id: display
        DisplayItem { width: 400; height: 300 }
    }

    Component {
        id: spy
        SignalSpy {}
    }

    StrictCase {
        id: testCase
        name: "DisplayItem"

        property var item: null

        function create(properties) {
            item = createTemporaryObject(display, window, properties)
            verify(item)
        }

        function watch(name) {
            return createTemporaryObject(spy, window, { target: item, signalName: name })
        }

        function test_defaults() {
            create({})
            compare([item.maximized, item.optionsVisible, item.active, item.showSaveImageButton, item.showPathButton, item.path,
                     item.modelIndex, item.minimized], [false, false, true, false, false, "", -1, true])
            verify(!find(item, "imgBtn").visible)
            verify(!find(item, "pathBtn").visible)
            verify(find(item, "closeBtn").visible)
            verify(find(item, "maxBtn").visible)
        }

        function test_clickTogglesTheOptions() {
            create({ minimized: false })
            var clicked = watch("clicked")
            mouseClick(item, 200, 200)
            compare(clicked.count, 1)
            compare(item.optionsVisible, true)
            item.clicked()
            compare(item.optionsVisible, false)
        }

        function test_clickOnAMinimizedViewDoesNothing() {
            create({ minimized: true })
            var clicked = watch("clicked")
            mouseClick(item, 200, 200)
            compare(clicked.count, 0)
            compare(item.optionsVisible, false)
        }

        function test_doubleClickMaximizes_data() {
            return [{ tag: "minimized", minimized: true }, { tag: "large", minimized: false }]
        }

        function test_doubleClickMaximizes(data) {
            create({ minimized: data.minimized, optionsVisible: true })
            var doubleClicked = watch("doubleClicked")
            mouseDoubleClickSequence(item, 200, 200)
            compare(doubleClicked.count, 1)
            compare(item.maximized, true)
            compare(item.optionsVisible, false)
            item.doubleClicked()
            compare(item.maximized, false)
        }

        function test_buttonsTellWhatIsWanted_data() {
            return [
                { tag: "close", button: "closeBtn", signalName: "closeSensor" },
                { tag: "maximize", button: "maxBtn", signalName: "maximize" },
                { tag: "save", button: "imgBtn", signalName: "saveImage" }
            ]
        }

        function test_buttonsTellWhatIsWanted(data) {
            create({ showSaveImageButton: true })
            var told = watch(data.signalName)
            mouseClick(find(item, data.button))
            compare(told.count, 1)
        }

        function test_holdingTheSaveButtonDoesNotSave() {
            create({ showSaveImageButton: true })
            var saved = watch("saveImage")
            var held = watch("imgPressAndHold")
            var button = find(item, "imgBtn")
            mousePress(button)
            held.wait()
            mouseRelease(button)
            compare(saved.count, 0)
        }

        function test_buttonsTellTheirPurpose_data() {
            return [
                { tag: "closeBtn", icon: "qrc:/images/close", hint: "Stop this Sensor" },
                { tag: "maxBtn", icon: "qrc:/images/maximize", hint: "Maximize this Sensor" },
                { tag: "imgBtn", icon: "qrc:images/image", hint: "Save image" },
                { tag: "pathBtn", icon: "qrc:images/path", hint: "Save path" }
            ]
        }

        function test_buttonsTellTheirPurpose(data) {
            create({ showSaveImageButton: data.tag === "imgBtn", showPathButton: data.tag === "pathBtn" })
            waitForRendering(item)
            var button = find(item, data.tag)
            compare([button.icon.source.toString(), button.ToolTip.text], [data.icon, data.hint])
            mouseMove(item, 200, 200)
            verify(!button.ToolTip.visible)
            mouseMove(button, 16, 16)
            tryCompare(button.ToolTip, "visible", true)
            mouseMove(item, 200, 200)
            tryCompare(button.ToolTip, "visible", false)
        }

        function test_pathButtonIsRedWhileItRecords() {
            listener.list([recorder])
            create({ showPathButton: true })
            var button = find(item, "pathBtn")
            verify(Qt.colorEqual(button.icon.color, "white"))
            mouseClick(button)
            verify(Qt.colorEqual(button.icon.color, "red"))
            mouseClick(button)
            verify(Qt.colorEqual(button.icon.color, "white"))
        }

        function test_pathButtonRecordsThePath() {
            recorder.calls = []
            listener.list([recorder])
            create({ showPathButton: true })
            var button = find(item, "pathBtn")
            mouseClick(button)
            compare(recorder.calls, [true])
            compare(button.path, "/captures/slam")
            mouseClick(button)
            compare(recorder.calls, [true, false])
            compare(button.path, "/captures/slam")
        }

        function test_pathButtonRecordsWithTheChosenDevice() {
            recorder.calls = []
            listener.list([window, recorder])
            uuidSelector.currentIndex = 1
            create({ showPathButton: true })
            mouseClick(find(item, "pathBtn"))
            uuidSelector.currentIndex = 0
            compare(recorder.calls, [true])
        }

        function test_holdingThePathButtonOpensThePath() {
            listener.list([recorder])
            create({ showPathButton: true })
            var button = find(item, "pathBtn")
            button.path = "/captures/slam"
            tools.opened = []
            mousePress(button)
            tryCompare(tools, "opened", ["/captures/slam"])
            mouseRelease(button)
        }

        function test_pathButtonNeedsADevice() {
            create({ showPathButton: true })
            uuidSelector.count = 0
            verify(!find(item, "pathBtn").enabled)
            uuidSelector.count = 1
            verify(find(item, "pathBtn").enabled)
        }

        function test_pathButtonOutlivesItsDevice() {
            listener.list([])
            create({ showPathButton: true })
            var button = find(item, "pathBtn")
            button.checked = true
            compare(button.path, "")
        }

        function test_hoverReachesTheWindow() {
            create({ showPathButton: true })
            waitForRendering(item)
            mouseMove(item, 200, 200)
            mouseMove(find(item, "pathBtn"), 16, 16)
            tryCompare(window, "isHeaderHovered", true)
            mouseMove(item, 200, 200)
            tryCompare(window, "isHeaderHovered", false)
        }

        function test_buttonsStandAtTheTopRight() {
            create({ showSaveImageButton: true, showPathButton: true })
            var close = find(item, "closeBtn")
            var max = find(item, "maxBtn")
            compare(close.x + close.width, item.width)
            compare(max.x + max.width, close.x)
            compare(find(item, "imgBtn").x, find(item, "pathBtn").x)
            compare(find(item, "imgBtn").x + find(item, "imgBtn").width, max.x)
            compare([close.y, close.z], [5, 10])
        }

        function test_popupClosesItselfAfterThreeSeconds() {
            create({})
            item.imgPopup.imgText.text = "Save image to: /captures"
            var start = Date.now()
            item.imgPopup.open()
            tryVerify(function() { return item.imgPopup.opened })
            tryCompare(item.imgPopup, "visible", false, 6000)
            var shown = Date.now() - start
            verify(shown >= 3000 && shown < 4500, "shown for " + shown + " ms")
        }

        function test_theNoteLeavesTheWindowsShortcutsAlone() {
            create({})
            leave.uses = 0
            item.imgPopup.open()
            tryVerify(function() { return item.imgPopup.opened })
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare(leave.uses, 1)
            verify(item.imgPopup.visible)
        }

        function test_secondOpeningDoesNotExtendTheTime() {
            create({})
            var start = Date.now()
            item.imgPopup.open()
            tryVerify(function() { return Date.now() - start > 1500 }, 3000)
            item.imgPopup.close()
            tryCompare(item.imgPopup, "visible", false)
            item.imgPopup.open()
            tryVerify(function() { return item.imgPopup.opened })
            tryCompare(item.imgPopup, "visible", false, 6000)
            var shown = Date.now() - start
            verify(shown >= 3000 && shown < 4400, "shown for " + shown + " ms")
        }

        function test_popupStandsAtTheRightEdgeBelowTheButton() {
            create({ showSaveImageButton: true })
            var popup = item.imgPopup
            popup.imgText.text = "Save image to: /captures"
            popup.open()
            tryVerify(function() { return popup.opened })
            compare(popup.x + popup.width, item.width)
            compare(popup.y, find(item, "imgBtn").y + 50)
            compare(popup.width, popup.imgText.implicitWidth + 10 + 24)
            compare([popup.padding, popup.modal], [0, false])
            verify(Qt.colorEqual(popup.imgText.color, "white"))
            popup.imgText.text = "Save image to: /captures/of/a/much/longer/name"
            compare(popup.width, popup.imgText.implicitWidth + 10 + 24)
            compare(popup.x + popup.width, item.width)
        }

        function test_theNoteShowsAWhiteSignBeforeItsWords() {
            create({ showSaveImageButton: true })
            var note = item.imgPopup
            compare(note.imgText.text, "")
            note.imgText.text = "Save image to: /captures"
            note.open()
            tryVerify(function() { return note.opened })
            var signs = []
            for (var i = 0; i < note.contentItem.children.length; ++i) {
                if (note.contentItem.children[i].source !== undefined)
                    signs.push(note.contentItem.children[i])
            }
            compare(signs.length, 1)
            var sign = signs[0]
            compare(sign.source, "qrc:images/info")
            compare(sign.status, Image.Ready)
            verify(Qt.colorEqual(sign.color, "white"))
            verify(sign.visible && note.imgText.visible)
            verify(sign.width > 0 && sign.x + sign.width <= note.imgText.x)
            verify(note.imgText.x + note.imgText.implicitWidth <= note.width)
            compare(note.imgText.text, "Save image to: /captures")
            verify(Qt.colorEqual(note.imgText.color, "white"))
        }

        function test_popupFadesInAndOut() {
            create({})
            var popup = item.imgPopup
            popup.imgText.text = "Save image to: /captures"
            var seen = []
            popup.opacityChanged.connect(function() { seen.push(popup.opacity) })
            popup.open()
            verify(popup.visible && !popup.opened && popup.opacity < 1)
            tryVerify(function() { return popup.opened && popup.opacity === 1 })
            popup.close()
            verify(popup.visible && !popup.opened && popup.opacity > 0)
            tryCompare(popup, "visible", false)
            // Where it begins, where it is whole, and where it ends.
            verify(seen.indexOf(0) >= 0 && seen.indexOf(1) > seen.indexOf(0) && seen.lastIndexOf(0) > seen.indexOf(1), seen)
        }
    }
}
