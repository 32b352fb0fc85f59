import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

Item {
    id: root

    width: 1024
    height: 800

    Component {
        id: device
        QtObject {
            property string uuid
            property var calls: []
            property string answer: "/captures/1"
            property var info: ({ uuid: uuid, features: {}, calibration: { stereo: [] } })
            function saveImages() {
                calls.push("saveImages")
                return answer
            }
            function setRecording(on) {
                calls.push("setRecording " + on)
                return on ? answer : ""
            }
            function setRecordingSlam(on) {
                calls.push("setRecordingSlam " + on)
                return on ? answer : ""
            }
        }
    }

    StrictCase {
        name: "MainPage"

        property var page: null
        property var views: null
        property var selector: null

        function initTestCase() {
            documents.replace("qrc:/CameraView.qml", Qt.resolvedUrl("stubs/Page.qml"))
        }

        function init() {
            expectedWarnings = []
            messages.start()
            tools.opened = []
            listener.list([])
            var component = Qt.createComponent("qrc:/main.qml")
            compare(component.errorString(), "")
            page = make(component)
            views = find(page, "cameraViews")
            selector = find(page, "uuidSelector")
            waitForRendering(page)
        }

        function camera(uuid) {
            return createTemporaryObject(device, root, { uuid: uuid })
        }

        function listed(uuids) {
            var cameras = uuids.map(camera)
            listener.list(cameras)
            return cameras
        }

        function shown() {
            var uuids = []
            for (var i = 0; i < views.count; ++i)
                uuids.push(views.itemAt(i).camera.uuid)
            return uuids
        }

        function test_fillsItsParent() {
            compare([page.width, page.height], [1024, 800])
            verify(Qt.colorEqual(page.color, "transparent"))
            compare([page.fullscreen, page.isHeaderHovered, page.path], [false, false, ""])
        }

        function test_savedLanguageIsLoadedAtTheStart() {
            compare(TranslateController.loaded[TranslateController.loaded.length - 1], 0)
        }

        function test_withoutDeviceOnlyTheDocumentationReacts() {
            var names = ["menuButton", "infoButton", "saveImagesButton", "saveVideoButton", "savePathButton"]
            compare(names.map(function(name) { return find(page, name).enabled }), [false, false, false, false, false])
            compare(selector.displayText, "Add Source")
            mouseClick(find(page, "documentationButton"))
            compare(tools.opened, ["/usr/share/doc/qvsdk/index.html"])
        }

        function test_selectorAlwaysShowsAddSource() {
            listed(["A", "B"])
            compare(selector.count, 2)
            compare(selector.contentItem.text, "Add Source")
            views.setCurrentIndex(1)
            compare(selector.contentItem.text, "Add Source")
        }

        function test_selectorListsTheUuids() {
            listed(["A", "B"])
            mouseClick(selector)
            tryVerify(function() { return selector.popup.opened })
            var list = selector.popup.contentItem
            compare([list.itemAtIndex(0).contentItem.text, list.itemAtIndex(1).contentItem.text], ["A", "B"])
            compare(selector.popup.y, selector.height - 1)
            mouseClick(list.itemAtIndex(1))
            compare(views.currentIndex, 1)
            compare(selector.bActived, true)
            tryVerify(function() { return !selector.popup.visible })
            compare(list.model, null)
        }

        function test_selectorAndPagesFollowEachOther() {
            listed(["A", "B"])
            compare([selector.currentIndex, views.currentIndex], [0, 0])
            views.setCurrentIndex(1)
            compare(selector.currentIndex, 1)
            selector.forceActiveFocus()
            keyClick(Qt.Key_Up)
            compare(views.currentIndex, 0)
        }

        function test_selectorSizes() {
            compare(selector.implicitHeight, 40)
            compare(selector.implicitWidth, 102.4)
            compare(find(page, "menuButton").height, 40)
        }

        function test_eachDeviceHasAPage() {
            var cameras = listed(["A", "B", "C"])
            compare(shown(), ["A", "B", "C"])
            compare(views.itemAt(1).camera, cameras[1])
            compare(views.itemAt(1).topMargin, 40)
        }

        function test_pagesLiveAsLongAsTheirDevice() {
            var cameras = listed(["A", "B"])
            views.itemAt(0).mark = "first"
            views.itemAt(1).mark = "second"
            var third = camera("C")
            listener.list(cameras.concat([third]))
            compare(shown(), ["A", "B", "C"])
            compare([views.itemAt(0).mark, views.itemAt(1).mark, views.itemAt(2).mark], ["first", "second", ""])
            listener.list([cameras[1], third])
            compare(shown(), ["B", "C"])
            compare(views.itemAt(0).mark, "second")
        }

        function test_currentDeviceStaysCurrent() {
            var cameras = listed(["A", "B", "C"])
            views.setCurrentIndex(1)
            listener.list(cameras.concat([camera("D")]))
            compare([views.currentIndex, selector.currentIndex], [1, 1])
            listener.list([cameras[1], cameras[2]])
            compare([views.currentIndex, selector.currentIndex], [0, 0])
            compare(views.currentItem.camera, cameras[1])
            listener.list([camera("E"), cameras[2], cameras[1]])
            compare(views.currentItem.camera, cameras[1])
            compare(selector.currentIndex, views.currentIndex)
            compare(shown(), ["E", "C", "B"])
        }

        function test_currentDeviceVanishes() {
            var cameras = listed(["A", "B"])
            views.setCurrentIndex(1)
            listener.list([cameras[0]])
            compare(shown(), ["A"])
            compare([views.currentIndex, selector.currentIndex], [0, 0])
            listener.list([])
            compare(views.count, 0)
            verify(!find(page, "infoButton").enabled)
            listener.list([cameras[1]])
            compare([views.currentIndex, selector.currentIndex], [0, 0])
            verify(find(page, "infoButton").enabled)
        }

        function test_deviceThatComesBackGetsANewPage() {
            listed(["A"])
            views.itemAt(0).mark = "old"
            listed(["A"])
            compare(views.count, 1)
            compare(views.itemAt(0).mark, "")
        }

        function test_choosingADeviceLogsItsInfo() {
            listed(["A"])
            verify(messages.lines().some(function(line) { return line.indexOf("{\n  \"uuid\": \"A\"") >= 0 }))
        }

        function test_menuButtonOpensAndClosesTheDrawer() {
            listed(["A"])
            var drawer = views.currentItem.cameraDrawer
            mouseClick(find(page, "menuButton"))
            tryVerify(function() { return drawer.opened })
            mouseClick(find(page, "menuButton"))
            tryVerify(function() { return !drawer.visible })
        }

        function test_infoButtonShowsTheDevice() {
            var cameras = listed(["A"])
            mouseClick(find(page, "infoButton"))
            var dialog = find(page, "infoDialog")
            verify(dialog.visible)
            compare(dialog.infos.uuid, cameras[0].uuid)
            verify(!find(page, "calibrationDialog").visible)
        }

        function test_holdingTheInfoButtonShowsTheCalibration() {
            listed(["A"])
            var button = find(page, "infoButton")
            var dialog = find(page, "calibrationDialog")
            mousePress(button)
            tryVerify(function() { return dialog.visible })
            mouseRelease(button)
            verify(!find(page, "infoDialog").visible)
            compare(dialog.infos.uuid, "A")
        }

        function test_veilClosesTheDialogs() {
            listed(["A"])
            var veil = find(page, "veil")
            verify(!veil.visible)
            var dialogs = ["versionDialog", "infoDialog", "calibrationDialog"].map(function(name) { return find(page, name) })
            dialogs.forEach(function(dialog) { dialog.open() })
            tryCompare(veil, "opacity", 0.65)
            mouseClick(veil, 5, 700)
            compare(dialogs.map(function(dialog) { return dialog.visible }), [false, false, false])
            tryCompare(veil, "visible", false)
        }

        function test_clickOnADialogKeepsIt() {
            var cameras = listed(["A"])
            var dialog = find(page, "infoDialog")
            mouseClick(find(page, "infoButton"))
            tryCompare(find(page, "veil"), "opacity", 0.65)
            mouseClick(dialog, 5, dialog.height - 5)
            verify(dialog.visible)
        }

        function test_showVersionOpensTheDialog() {
            var dialog = find(page, "versionDialog")
            dialog.showVersion("QVSDK version: 9")
            verify(dialog.visible)
            compare(dialog.sdkversion, "QVSDK version: 9")
        }

        function test_hiddenButtonsStillWork() {
            var cameras = listed(["A"])
            var images = find(page, "saveImagesButton")
            var video = find(page, "saveVideoButton")
            var path = find(page, "savePathButton")
            compare([images.visible, video.visible, path.visible], [false, false, false])
            images.clicked()
            compare(page.path, "/captures/1")
            cameras[0].answer = "/captures/2"
            video.checked = true
            compare(page.path, "/captures/2")
            verify(Qt.colorEqual(video.icon.color, "red"))
            video.checked = false
            compare(page.path, "/captures/2")
            path.checked = true
            path.checked = false
            compare(cameras[0].calls, ["saveImages", "setRecording true", "setRecording false", "setRecordingSlam true",
                                       "setRecordingSlam false"])
            images.pressAndHold()
            compare(tools.opened, ["/captures/2"])
        }

        function test_hoverOverTheBarIsTold_data() {
            return [{ tag: "menuButton" }, { tag: "uuidSelector" }, { tag: "infoButton" }, { tag: "documentationButton" }]
        }

        function test_hoverOverTheBarIsTold(data) {
            listed(["A"])
            waitForRendering(page)
            mouseMove(page, 500, 500)
            mouseMove(find(page, data.tag), 20, 20)
            tryCompare(page, "isHeaderHovered", true)
            mouseMove(page, 500, 500)
            tryCompare(page, "isHeaderHovered", false)
        }

        function test_shortcuts() {
            keyClick(Qt.Key_F, Qt.ControlModifier)
            compare(page.fullscreen, true)
            var quitBefore = quits.count
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare(quits.count, quitBefore + 1)
        }
    }
}
