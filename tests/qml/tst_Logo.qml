import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Particles 2.13
import QtTest 1.13

Item {
    id: root

    width: 800
    height: 600

    Image {
        id: dot

        source: "qrc:/images/dot"
    }

    StrictCase {
        name: "Logo"

        property var logo: null

        function init() {
            expectedWarnings = []
            messages.start()
            var component = Qt.createComponent("qrc:/Logo.qml")
            compare(component.errorString(), "")
            logo = make(component, { width: 800, height: 600 })
            picture = find(logo, "logo")
        }

        property var picture: null

        function emitters() {
            return [0, 1, 2, 3, 4].map(function(i) { return find(logo, "emitter" + i) })
        }

        function test_picturesAreThere() {
            compare(picture.status, Image.Ready)
            compare(picture.width, 240)
            compare(picture.x + picture.width / 2, 400)
            fuzzyCompare(picture.y + picture.height / 2, 300, 0.5)
            compare(picture.fillMode, Image.PreserveAspectFit)
            var dots = find(logo, "dots")
            compare(dots.source, "qrc:/images/dot")
            tryCompare(dot, "status", Image.Ready)
            verify(Qt.colorEqual(dots.color, "#02cece"))
            fuzzyCompare(dots.colorVariation, 0.3, 1e-6)
        }

        function test_dotsBeginWhenReadyAndEndWithTheWaiting() {
            compare([logo.busy, logo.ready], [true, false])
            emitters().forEach(function(emitter) { compare(emitter.enabled, false) })
            tryCompare(logo, "ready", true)
            emitters().forEach(function(emitter) { compare(emitter.enabled, true) })
            logo.busy = false
            emitters().forEach(function(emitter) { compare(emitter.enabled, false) })
        }

        function test_dotsLeaveTheLogosLeftSide() {
            compare(emitters().map(function(emitter) { return emitter.x }), [-5, 5, 15, 5, -5])
            var ratios = [0.3, 0.45, 0.60, 0.75, 0.90]
            emitters().forEach(function(emitter, i) {
                fuzzyCompare(emitter.y, ratios[i] * picture.height, 1e-6)
                compare([emitter.group, emitter.lifeSpan, emitter.lifeSpanVariation], ["dot", 2000, 500])
                compare([emitter.width, emitter.height, emitter.velocity.x], [5, 5, -45])
                fuzzyCompare(emitter.size, picture.height / 6, 1e-6)
            })
        }

        function test_dotsComeAtRandomRates() {
            tryVerify(function() { return emitters().every(function(emitter) { return emitter.emitRate > 1 }) }, 1500)
            verify(emitters().every(function(emitter) { return emitter.emitRate < 2 }))
        }

        function test_dotsFleeFromTheMouse() {
            var attractor = find(logo, "attractor")
            compare([attractor.strength, attractor.affectedParameter, attractor.proportionalToDistance],
                    [-1000000, Attractor.Acceleration, Attractor.InverseQuadratic])
            waitForRendering(logo)
            mouseMove(logo, 100, 150)
            compare([attractor.pointX, attractor.pointY], [100 - picture.x, 150 - picture.y])
            logo.busy = false
            mouseMove(logo, 200, 250)
            compare([attractor.pointX, attractor.pointY], [100 - picture.x, 150 - picture.y])
        }

        function test_glowBreathes() {
            var glow = find(logo, "glow")
            compare([glow.radius, glow.samples], [8, 17])
            verify(Qt.colorEqual(glow.color, "white"))
            tryVerify(function() { return glow.spread > 0.3 })
            tryVerify(function() { return glow.spread < 0.2 })
            verify(glow.spread >= 0 && glow.spread <= 0.5)
        }

        function test_wordsTellWhatIsWaitedFor() {
            var indicator = find(logo, "busyIndicator")
            var label = find(logo, "waitingLabel")
            compare([indicator.running, label.visible, label.text], [true, true, "Looking for Quivra camera"])
            compare(indicator.y + indicator.height / 2, 450)
            compare(label.y, indicator.y + indicator.height + 20)
            TranslateController.loadLanguage(1)
            compare(label.text, "Logo/Looking for Quivra camera")
            TranslateController.loadLanguage(0)
            logo.busy = false
            compare([indicator.running, label.visible], [false, false])
        }
    }
}
