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
            find(view, "editSend").text = "02 fe 55 04"
            mouseClick(find(view, "sendButton"))
            compare(device.sent, ["02 fe 55 04"])
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
            mouseClick(find(view, "sendButton"))
            verify(received() !== "")
            mouseClick(find(view, "clearButton"))
            compare(received(), "")
        }

        function test_glassLogIsPolledWhileChecked() {
            var button = find(view, "glassLogButton")
            compare(find(view, "glasstimer").interval, 1)
            mouseClick(button)
            tryVerify(function() { return device.polls > 20 })
            compare(received(), "")
            device.log = "boot"
            tryVerify(function() { return received().indexOf("boot") === 0 })
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
            tryVerify(function() { return device.sent.length >= 5 })
            verify(Date.now() - start >= 480)
            mouseClick(box)
            verify(!find(view, "timer").running)
        }

        function test_boxesHaveTheirShare() {
            compare(view.height, 600)
            verify(view.clip)
            var edit = find(view, "editSend")
            compare(edit.selectByMouse, true)
            compare(find(view, "editReceive").selectByMouse, true)
            compare(find(view, "editReceive").readOnly, false)
        }
    }
}
