import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import "qrc:/"

Item {
    id: window

    property var camera: device

    width: 500
    height: 700

    QtObject {
        id: device
        property var sent: []
        property string reply: "02 fe "
        property string log: ""
        property int polls: 0
        function sendHid(text) {
            sent.push(text)
            return reply
        }
        function getGlassLog() {
            ++polls
            return log
        }
    }

    Component {
        id: hidView
        HidView { width: 400 }
    }

    StrictCase {
        name: "HidView"

        property var view: null

        function init() {
            expectedWarnings = []
            messages.start()
            device.sent = []
            device.reply = "02 fe "
            device.log = ""
            device.polls = 0
            view = make(hidView)
            waitForRendering(view)
        }

        function received() {
            return find(view, "editReceive").text
        }

        function test_sendAppendsTheReply() {
            // As it was typed: what counts is the device's to say.
            find(view, "editSend").text = " 02 fe 55 04\n"
            mouseClick(find(view, "sendButton"))
            compare(device.sent, [" 02 fe 55 04\n"])
            compare(received(), "02 fe ")
            mouseClick(find(view, "sendButton"))
            compare(received(), "02 fe \n02 fe ")
        }

        function test_aFailureShowsAsAnEmptyLine() {
            find(view, "editSend").text = "02"
            mouseClick(find(view, "sendButton"))
            device.reply = ""
            mouseClick(find(view, "sendButton"))
            compare(received(), "02 fe \n")
            compare(find(view, "editReceive").lineCount, 2)
        }

        function test_returnSends() {
            var edit = find(view, "editSend")
            edit.text = "aa"
            edit.forceActiveFocus()
            keyClick(Qt.Key_Return)
            compare(device.sent, ["aa"])
            compare(edit.text, "aa")
        }

        function test_clearEmptiesTheLog() {
            find(view, "editSend").text = "02"
            mouseClick(find(view, "sendButton"))
            verify(received() !== "")
            mouseClick(find(view, "clearButton"))
            compare(received(), "")
            compare(find(view, "editSend").text, "02")
        }

        function test_glassLogIsPolledWhileChecked() {
            var button = find(view, "glassLogButton")
            compare(find(view, "glasstimer").interval, 1)
            find(view, "editReceive").text = "before"
            mouseClick(button)
            tryVerify(function() { return device.polls > 20 })
            // A poll that brings nothing leaves no line.
            compare(received(), "before")
            device.log = "boot"
            tryVerify(function() { return received().indexOf("before\nboot\nboot") === 0 })
            mouseClick(button)
            verify(!find(view, "glasstimer").running)
        }

        function test_repeatSendsAtItsInterval() {
            var box = find(view, "repeatSend")
            var interval = find(view, "spinbox")
            compare(box.text, "Repeat Send")
            verify(!find(view, "intervalRow").visible)
            compare([interval.from, interval.to, interval.value, interval.stepSize, interval.editable], [100, 60000, 1000, 100, true])
            interval.value = 100
            var start = Date.now()
            mouseClick(box)
            verify(find(view, "intervalRow").visible)
            tryVerify(function() { return device.sent.length >= 15 })
            verify(Date.now() - start >= 1440)
            compare(find(view, "timer").interval, 100)
            mouseClick(box)
            verify(!find(view, "timer").running)
            // Every reply has its line.
            compare(received().split("\n").length, device.sent.length)
            interval.value = 2500
            compare(find(view, "timer").interval, 2500)
        }

        // The frame around one of the editors.
        function boxOf(edit) {
            var item = edit.parent
            while (item && item.border === undefined)
                item = item.parent
            verify(item)
            return item
        }

        function both() {
            return [{ tag: "editReceive" }, { tag: "editSend" }]
        }

        function lines(count) {
            var text = ""
            for (var i = 0; i < count; ++i)
                text += "line " + i + "\n"
            return text
        }

        function test_viewIsASixHundredHighWindow() {
            compare(view.height, 600)
            verify(view.clip)
        }

        function test_boxesHaveTheirShare_data() {
            return both()
        }

        function test_boxesHaveTheirShare(data) {
            var box = boxOf(find(view, data.tag))
            // A twentieth of the height is the margin.
            compare(box.mapToItem(view, 0, 0).x, 30)
            compare([box.width, box.height], [360, 200])
            verify(Qt.colorEqual(box.color, "#3E4D59"))
            verify(Qt.colorEqual(box.border.color, "#d7cfcf"))
        }

        function test_editorsWrapWhiteText_data() {
            return both()
        }

        function test_editorsWrapWhiteText(data) {
            var edit = find(view, data.tag)
            verify(Qt.colorEqual(edit.color, "white"))
            compare([edit.selectByMouse, edit.readOnly], [true, false])
            var box = boxOf(edit)
            // With blanks to break at, and without any.
            edit.text = "02 fe 55 04 ".repeat(20)
            verify(edit.lineCount > 2)
            verify(edit.contentWidth <= box.width)
            edit.text = "02fe5504".repeat(20)
            verify(edit.lineCount > 2)
            verify(edit.contentWidth <= box.width)
        }

        function test_receivedTextCanBeErasedByHand() {
            mouseClick(find(view, "sendButton"))
            var edit = find(view, "editReceive")
            mouseClick(edit)
            compare(edit.activeFocus, true)
            edit.selectAll()
            keyClick(Qt.Key_Delete)
            compare(received(), "")
        }

        function test_receivedTextScrollsWithoutAHorizontalBar() {
            var edit = find(view, "editReceive")
            var scroller = edit.parent
            while (scroller.contentChildren === undefined || scroller.ScrollBar.horizontal === null)
                scroller = scroller.parent
            edit.text = "0".repeat(500)
            compare(scroller.ScrollBar.horizontal.policy, ScrollBar.AlwaysOff)
            verify(!scroller.ScrollBar.horizontal.visible)
            edit.text = lines(60)
            verify(edit.height > 2 * scroller.height)
            tryVerify(function() { return scroller.ScrollBar.vertical.size < 0.5 })
        }

        function test_theCommandHasTheFocusAtTheStart() {
            var edit = find(view, "editSend")
            verify(edit.focus)
            verify(edit.activeFocus)
            keyClick("a")
            keyClick("b")
            compare(edit.text, "ab")
        }

        function test_theCursorStaysInView() {
            var edit = find(view, "editSend")
            var flick = edit.parent.parent
            verify(flick.clip)
            edit.text = lines(60)
            edit.cursorPosition = edit.length
            var cursor = edit.cursorRectangle
            verify(cursor.y > 2 * flick.height)
            verify(flick.contentY > 0)
            verify(cursor.y >= flick.contentY && cursor.y + cursor.height <= flick.contentY + flick.height)
            edit.cursorPosition = 0
            compare(flick.contentY, 0)
        }

        function test_wordsAndButtonsStandInTheirOrder() {
            mouseClick(find(view, "repeatSend"))
            var words = labels(view.contentItem, [])
            compare(words.map(function(item) { return item.text }),
                    ["Received Data", "Clear", "Glass Log", "Send Data", "Send", "Repeat Send", "ms"])
            ;[0, 3, 6].forEach(function(i) { verify(Qt.colorEqual(words[i].color, "white")) })
            compare(find(view, "glassLogButton").checkable, true)
            var rows = [words[0], boxOf(find(view, "editReceive")), find(view, "clearButton"), words[3],
                        boxOf(find(view, "editSend")), find(view, "sendButton"), find(view, "spinbox")]
            tryVerify(function() {
                var y = rows.map(function(item) { return item.mapToItem(view.contentItem, 0, 0).y })
                return y.every(function(value, i) { return i === 0 || value > y[i - 1] })
            })
            mouseClick(find(view, "repeatSend"))
        }

        // Captions and controls with a text, but neither editors nor what controls are made of.
        function labels(item, found) {
            for (var i = 0; i < item.children.length; ++i) {
                var child = item.children[i]
                if (typeof child.text === "string" && child.selectByMouse === undefined && child.text !== "")
                    found.push(child)
                else if (child.border === undefined && child.objectName !== "spinbox")
                    labels(child, found)
            }
            return found
        }
    }
}
