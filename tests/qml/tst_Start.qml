import QtQuick 2.13
import QtQuick.Window 2.13
import QtTest 1.13
import Qt.labs.settings 1.1

Item {
    width: 100
    height: 100

    Settings {
        id: store

        category: "Settings"
    }

    StrictCase {
        name: "Start"

        property var start: null

        function init() {
            expectedWarnings = []
            messages.start()
            listener.list([])
            documents.replace("qrc:/main.qml", Qt.resolvedUrl("stubs/EmptyPage.qml"))
            documents.replace("qrc:/CameraView.qml", Qt.resolvedUrl("stubs/Page.qml"))
        }

        function load(properties) {
            var component = Qt.createComponent("qrc:/start.qml")
            compare(component.errorString(), "")
            start = createTemporaryObject(component, null, properties || {})
            verify(start)
        }

        function loadForMainPage() {
            documents.restore("qrc:/main.qml")
            load()
        }

        // Keys go to the active window.
        function activate() {
            start.requestActivate()
            tryCompare(start, "active", true)
        }

        function film() {
            return findChild(start, "film")
        }

        // The film can't jump to its end, but it can hurry.
        function hurryThroughTheFilm() {
            film().speed = 20
            tryVerify(function() { return film() === null || film().paused }, 60000)
        }

        function emptyPage() {
            return findChild(start, "emptyPage")
        }

        function mainPage() {
            return find(start, "mainWindow")
        }

        function test_windowOpensMaximised() {
            load()
            compare([start.visible, start.minimumWidth, start.minimumHeight, start.title], [true, 640, 480, "QVSDK Viewer"])
            compare([start.fullscreen, start.isHeaderHovered], [false, false])
            compare(start.visibility, Window.Maximized)
            start.fullscreen = true
            compare(start.visibility, Window.FullScreen)
            start.fullscreen = false
            compare(start.visibility, Window.Maximized)
        }

        function test_windowThatIsNotMaximisedHasItsOwnSize() {
            load({ visibility: Window.Windowed })
            compare([start.width, start.height], [1024, 800])
        }

        function test_filmPlaysOnceAndGivesWayToTheMainPage() {
            load()
            compare(film().frameCount, 150)
            compare([film().sourceSize.width, film().sourceSize.height], [1920, 1080])
            compare([film().width, film().height], [start.width, start.height])
            compare([film().cache, film().visible], [false, true])
            tryCompare(film(), "playing", true)
            var begin = Date.now()
            tryVerify(function() { return emptyPage() !== null }, 30000)
            verify(Date.now() - begin > 5500)
            compare([emptyPage().x, emptyPage().y], [0, 0])
            tryVerify(function() { return film() === null })
        }

        function test_brokenMainPageLeavesTheWindowEmpty() {
            documents.replace("qrc:/main.qml", Qt.resolvedUrl("stubs/Broken.qml"))
            load()
            hurryThroughTheFilm()
            expectWarning(/NoSuchType is not a type/)
            compare([film().visible, film().paused, film().currentFrame], [false, true, 149])
            compare(find(start, "loader").children.length, 1)
            compare(start.contentItem.children.length, 1)
            compare(start.visible, true)
        }

        function test_savedLanguageAppliesWhenTheMainPageAppears_data() {
            return [{ tag: "Japanese", index: 2 }, { tag: "unknown", index: 99 }]
        }

        function test_savedLanguageAppliesWhenTheMainPageAppears(data) {
            store.setValue("currentLanguageIndex", data.index)
            TranslateController.loaded = []
            loadForMainPage()
            tryCompare(film(), "playing", true)
            tryVerify(function() { return film().currentFrame > 2 })
            compare(TranslateController.loaded, [])
            hurryThroughTheFilm()
            compare(TranslateController.loaded, [data.index])
            compare(find(mainPage(), "infoButton").hint, "main/Info")

            store.setValue("currentLanguageIndex", 0)
            TranslateController.loadLanguage(0)
        }

        function test_ctrlQDoesNothingDuringTheFilm() {
            loadForMainPage()
            activate()
            var before = quits.count
            // Keys do arrive.
            keyClick(Qt.Key_F, Qt.ControlModifier)
            compare(start.fullscreen, true)
            keyClick(Qt.Key_F, Qt.ControlModifier)
            compare(start.fullscreen, false)
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare(quits.count, before)
        }

        function test_ctrlQEndsTheProgramFromTheMainPage() {
            loadForMainPage()
            hurryThroughTheFilm()
            compare([mainPage().width, mainPage().height], [start.width, start.height])
            activate()
            var before = quits.count
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare(quits.count, before + 1)
        }

        function test_ctrlFIsAmbiguousOnceTheMainPageIsThere() {
            loadForMainPage()
            hurryThroughTheFilm()
            activate()
            for (var i = 0; i < 3; ++i) {
                keyClick(Qt.Key_F, Qt.ControlModifier)
                compare([start.fullscreen, mainPage().fullscreen], [false, false])
            }
        }
    }
}
