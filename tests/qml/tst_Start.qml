import QtQuick 2.13
import QtQuick.Window 2.13
import QtTest 1.13

Item {
    width: 100
    height: 100

    StrictCase {
        name: "Start"

        property var start: null

        function init() {
            expectedWarnings = []
            messages.start()
            documents.replace("qrc:/main.qml", Qt.resolvedUrl("stubs/EmptyPage.qml"))
        }

        function load() {
            var component = Qt.createComponent("qrc:/start.qml")
            compare(component.errorString(), "")
            start = createTemporaryObject(component, null)
            verify(start)
        }

        function mainPage() {
            return findChild(start, "emptyPage")
        }

        function test_windowOpensMaximised() {
            load()
            compare([start.visible, start.minimumWidth, start.minimumHeight, start.title], [true, 640, 480, "QVSDK Viewer"])
            compare(start.visibility, Window.Maximized)
            start.fullscreen = true
            compare(start.visibility, Window.FullScreen)
            start.fullscreen = false
            compare(start.visibility, Window.Maximized)
        }

        function test_filmPlaysOnceAndGivesWayToTheMainPage() {
            load()
            var film = find(start, "film")
            compare(film.frameCount, 150)
            compare([film.sourceSize.width, film.sourceSize.height], [1920, 1080])
            compare(film.cache, false)
            tryCompare(film, "playing", true)
            var begin = Date.now()
            tryVerify(function() { return mainPage() !== null }, 30000)
            verify(Date.now() - begin > 5500)
            compare([mainPage().x, mainPage().y], [0, 0])
            tryVerify(function() { return findChild(start, "film") === null })
        }

        function test_keysDoNotQuitDuringTheFilm() {
            load()
            start.requestActivate()
            var before = quits.count
            keyClick(Qt.Key_Q, Qt.ControlModifier)
            compare(quits.count, before)
        }

        function test_brokenMainPageLeavesTheWindowEmpty() {
            documents.replace("qrc:/main.qml", Qt.resolvedUrl("stubs/Broken.qml"))
            load()
            var film = find(start, "film")
            start.create()
            compare(mainPage(), null)
            compare(find(start, "film"), film)
            expectWarning(/NoSuchType is not a type/)
        }

    }
}
