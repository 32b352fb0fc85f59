import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import Qt.labs.settings 1.1

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

    Settings {
        id: store

        category: "Settings"
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

        function test_devicesThatAreThereAtTheStartHaveTheirPages() {
            listed(["A", "B"])
            var later = make(Qt.createComponent("qrc:/main.qml"))
            compare(find(later, "cameraViews").count, 2)
            compare(find(later, "uuidSelector").count, 2)
        }

        function test_savedLanguageIsLoadedAtTheStart() {
            compare(TranslateController.loaded[TranslateController.loaded.length - 1], 0)
            store.setValue("currentLanguageIndex", 2)
            make(Qt.createComponent("qrc:/main.qml"))
            compare(TranslateController.loaded[TranslateController.loaded.length - 1], 2)
            store.setValue("currentLanguageIndex", 0)
            TranslateController.loadLanguage(0)
        }

        function test_hintsBelongToThisDocument() {
            var hints = { menuButton: "Menu List", infoButton: "Info", saveImagesButton: "Save images",
                saveVideoButton: "Save video", savePathButton: "Save path", documentationButton: "Documentation" }
            Object.keys(hints).forEach(function(name) { compare(find(page, name).ToolTip.text, hints[name]) })
            TranslateController.loadLanguage(1)
            Object.keys(hints).forEach(function(name) { compare(find(page, name).ToolTip.text, "main/" + hints[name]) })
            compare(selector.displayText, "Add Source")
            TranslateController.loadLanguage(0)
        }

        function test_hintAppearsUnderTheMouse() {
            var button = find(page, "documentationButton")
            mouseMove(page, 500, 500)
            verify(!button.ToolTip.visible)
            mouseMove(button, 20, 20)
            tryCompare(button.ToolTip, "visible", true)
            mouseMove(page, 500, 500)
            tryCompare(button.ToolTip, "visible", false)
        }

        function test_barStandsInItsOrder() {
            listed(["A"])
            var names = ["menuButton", "uuidSelector", "infoButton", "documentationButton", "maker"]
            var bar = find(page, "toolBar")
            var begins = names.map(function(name) { return find(page, name).mapToItem(bar, 0, 0).x })
            compare(begins, begins.slice().sort(function(a, b) { return a - b }))
            compare(begins[0], 0)
            verify(Qt.colorEqual(bar.background.color, "#3E4D59"))
            compare([bar.height, bar.background.implicitHeight], [40, 40])
            var maker = find(page, "maker")
            tryCompare(maker, "status", Image.Ready)
            fuzzyCompare(begins[4] + maker.width, bar.width - 5, 0.01)
            compare(maker.height, 30)
            fuzzyCompare(maker.width, maker.paintedWidth, 1)
            compare([maker.y, maker.antialiasing, maker.fillMode], [5, true, Image.PreserveAspectFit])
            compare(["menuButton", "infoButton", "saveImagesButton", "saveVideoButton", "savePathButton", "documentationButton"]
                    .map(function(name) { return find(page, name).icon.source.toString().split("/").pop() }),
                    ["list", "info", "image", "videocam", "path", "description"])
        }

        function test_selectorTellsItsState() {
            var face = selector.background
            mouseMove(page, 500, 500)
            tryVerify(function() { return Qt.colorEqual(face.color, "transparent") })
            mouseMove(selector, 20, 20)
            tryVerify(function() { return Qt.colorEqual(face.color, "#586773") })
            mousePress(selector, 20, 20)
            verify(Qt.colorEqual(face.color, "#243440"))
            mouseRelease(selector, 20, 20)
            var words = selector.contentItem
            verify(Qt.colorEqual(words.color, "white"))
            compare([words.horizontalAlignment, words.elide], [Text.AlignHCenter, Text.ElideRight])
            selector.popup.close()
            tryCompare(selector.popup, "visible", false)
        }

        function test_withoutDeviceOnlyTheDocumentationReacts() {
            var names = ["menuButton", "infoButton", "saveImagesButton", "saveVideoButton", "savePathButton"]
            compare(names.map(function(name) { return find(page, name).enabled }), [false, false, false, false, false])
            compare(selector.displayText, "Add Source")
            names.slice(0, 2).forEach(function(name) { mouseClick(find(page, name)) })
            ;["infoDialog", "calibrationDialog"].forEach(function(name) { verify(!find(page, name).visible) })
            compare([views.count, selector.count, selector.currentIndex], [0, 0, -1])
            mouseClick(find(page, "documentationButton"))
            compare(tools.opened, ["/usr/share/doc/qvsdk/index.html"])
        }

        function test_theLogTellsThatTheGuideIsMissing() {
            var told = function() {
                return messages.lines().filter(function(line) { return /can't be opened/.test(line) })
                        .map(function(line) { return line.replace("qml: ", "") })
            }
            mouseClick(find(page, "documentationButton"))
            compare(told(), [])
            tools.opens = false
            mouseClick(find(page, "documentationButton"))
            tools.opens = true
            compare(told(), ["The documentation can't be opened, the guide or a browser is missing: "
                             + "/usr/share/doc/qvsdk/index.html"])
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
            compare([selector.popup.y, selector.popup.padding], [selector.height - 1, 1])
            verify(Qt.colorEqual(selector.popup.background.color, "#3E4D59"))
            verify(Qt.colorEqual(selector.popup.background.border.color, "grey"))
            var entry = list.itemAtIndex(1)
            compare([entry.width, entry.contentItem.elide], [selector.width, Text.ElideRight])
            verify(Qt.colorEqual(entry.contentItem.color, "white"))
            compare([list.itemAtIndex(0).highlighted, entry.highlighted], [true, false])
            keyClick(Qt.Key_Down)
            compare([list.itemAtIndex(0).highlighted, entry.highlighted], [false, true])
            mouseClick(entry)
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
            compare([selector.indicator.width, selector.indicator.height], [0, 0])
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

        function test_menuButtonClosesADrawerThatClosesByItself() {
            listed(["A"])
            var drawer = views.currentItem.cameraDrawer
            drawer.closePolicy = Popup.CloseOnEscape | Popup.CloseOnReleaseOutside
            mouseClick(find(page, "menuButton"))
            tryVerify(function() { return drawer.opened })
            // The release closes it already; the click must not bring it back.
            mouseClick(find(page, "menuButton"))
            tryVerify(function() { return !drawer.visible })
            waitForRendering(page, 200)
            verify(!drawer.visible)
        }

        function test_menuButtonWorksOnTheCurrentPage() {
            listed(["A", "B"])
            views.setCurrentIndex(1)
            mouseClick(find(page, "menuButton"))
            tryVerify(function() { return views.itemAt(1).cameraDrawer.opened })
            verify(!views.itemAt(0).cameraDrawer.visible)
            views.itemAt(1).cameraDrawer.close()
            tryVerify(function() { return !views.itemAt(1).cameraDrawer.visible })
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

        function test_dialogsStandAboveThePanel_data() {
            return [{ tag: "versionDialog" }, { tag: "infoDialog" }, { tag: "calibrationDialog" }]
        }

        function test_dialogsStandAboveThePanel(data) {
            listed(["A"])
            var drawer = views.currentItem.cameraDrawer
            drawer.width = 1024
            drawer.height = 800
            drawer.open()
            tryVerify(function() { return drawer.opened })
            var dialog = find(page, data.tag)
            dialog.open()
            waitForRendering(dialog)
            mouseClick(find(dialog, "clearButton"))
            verify(!dialog.visible)
            compare([dialog.x + dialog.width / 2, dialog.y + dialog.height / 2].map(Math.round), [512, 400])
        }

        function test_aDialogsListOpensAboveIt() {
            listed(["A"])
            var dialog = find(page, "calibrationDialog")
            dialog.height = 400
            dialog.open()
            waitForRendering(dialog)
            var box = find(dialog, "calib")
            mouseClick(box)
            tryVerify(function() { return box.popup.opened })
            mouseClick(box.popup.contentItem, 20, box.popup.contentItem.height - 10)
            tryCompare(box, "currentText", "tof")
        }

        function test_veilClosesTheDialogs() {
            listed(["A"])
            var veil = find(page, "veil")
            verify(!veil.visible)
            var dialogs = ["versionDialog", "infoDialog", "calibrationDialog"].map(function(name) { return find(page, name) })
            dialogs.forEach(function(dialog) { dialog.open() })
            verify(Qt.colorEqual(veil.color, "black"))
            compare([veil.width, veil.height], [1024, 800])
            // It fades in.
            verify(veil.opacity < 0.65)
            tryCompare(veil, "opacity", 0.65)
            mouseClick(veil, 5, 700)
            compare(dialogs.map(function(dialog) { return dialog.visible }), [false, false, false])
            tryCompare(veil, "visible", false)
        }

        function test_eachDialogDarkensThePage_data() {
            return [{ tag: "versionDialog" }, { tag: "infoDialog" }, { tag: "calibrationDialog" }]
        }

        function test_eachDialogDarkensThePage(data) {
            listed(["A"])
            find(page, data.tag).open()
            tryCompare(find(page, "veil"), "opacity", 0.65)
            find(page, data.tag).close()
            tryCompare(find(page, "veil"), "visible", false)
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
            compare(video.icon.source, "qrc:images/videocam_off")
            video.checked = false
            compare(page.path, "/captures/2")
            compare(video.icon.source, "qrc:images/videocam")
            path.checked = true
            verify(Qt.colorEqual(path.icon.color, "red"))
            path.checked = false
            verify(Qt.colorEqual(path.icon.color, "white"))
            compare(cameras[0].calls, ["saveImages", "setRecording true", "setRecording false", "setRecordingSlam true",
                                       "setRecordingSlam false"])
            ;[images, video, path].forEach(function(button) { button.pressAndHold() })
            compare(tools.opened, ["/captures/2", "/captures/2", "/captures/2"])
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
