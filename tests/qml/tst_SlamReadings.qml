import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

Item {
    id: window

    property bool isHeaderHovered: false
    property bool advanced: true

    width: 1000
    height: 700

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    SlamCase {
        id: testCase

        name: "SlamReadings"

        function angles() {
            return ["pitchLabel", "yawLabel", "rollLabel"].map(function(name) {
                const text = item(name).text
                verify(/^-?\d+\.\d$/.test(text), text)
                return Number(text) === 0 ? "0.0" : text
            })
        }

        function test_aTurnedDeviceTurnsTheScene() {
            open()
            device.deliverTurned("slam", 1, 2, 3, aboutY)
            const half = Math.sqrt(0.5)
            fuzzyCompare(scene.orientation.scalar, half, 1e-5)
            compareVectors(scene.orientation, 0, half, 0)
            compareVectors(scene.viewVector, 1, 0, 0)
            compareVectors(scene.viewCenter, 2, 2, 3)
            compare(scene.matrix, device.slam.matrix)
            // A metre behind it, which is along the world's x now.
            compareVectors(scene.viewCam.camera.position, 0, 2, 3)
            compareVectors(scene.viewCam.camera.viewCenter, 1, 2, 3)
            compare(angles(), ["0.0", "90.0", "0.0"])
        }

        function test_eachAngleHasItsLabel() {
            open()
            device.deliverTurned("slam", 0, 0, 0, aboutX)
            compare(angles(), ["30.0", "0.0", "0.0"])
            compareVectors(scene.viewVector, 0, -0.5, Math.sqrt(3) / 2)
            device.deliverTurned("slam", 0, 0, 0, aboutZ)
            compare(angles(), ["0.0", "0.0", "30.0"])
            compareVectors(scene.viewVector, 0, 0, 1)
        }

        function test_theAnglesAreThoseOfTheSource() {
            open()
            device.deliverTurned("slam", 0, 0, 0, aboutX)
            device.deliverTurned("edge", 4, 5, 6, aboutZ)
            compare(angles(), ["30.0", "0.0", "0.0"])
            item("edgeSourceButton").checked = true
            compare(angles(), ["0.0", "0.0", "30.0"])
            compareVectors(scene.viewCenter, 4, 5, 7)
        }

        function test_aConfidenceThatIsNoNumberIsStood() {
            open()
            const indicator = item("statusIndicator")
            device.deliver("slam", 1, 0, 0, 0.5)
            device.deliver("slam", 2, 0, 0, NaN)
            verify(isNaN(device.slam.confidence))
            compare(indicator.active, true)
            ;[Infinity, -Infinity, -3, 7].forEach(function(confidence) {
                device.deliver("slam", 2, 0, 0, confidence)
                compare(indicator.active, true)
            })
            device.deliver("slam", 3, 0, 0, 1)
            verify(Qt.colorEqual(indicator.color, "#00ff00"))
        }

        function test_clicksStartAStreamThatIsSwitchedOff() {
            open()
            device.slam.enabled = true
            device.edge.control(false)
            device.takeCalls()
            mouseClick(item("edgeSourceButton"))
            compare(device.takeCalls(), ["slam.stop", "edge.start", "edge.registerCallback", "edge.registerLostCallback",
                                         "edge.start"])
            device.slam.control(false)
            device.takeCalls()
            mouseClick(item("slamSourceButton"))
            compare(device.takeCalls(), ["slam.start", "slam.registerCallback", "slam.registerLostCallback", "slam.start",
                                         "edge.stop"])
        }

        function test_bothIsForAdvancedUsers() {
            open()
            compare(item("bothSourceButton").visible, true)
            window.advanced = false
            const shown = item("bothSourceButton").visible
            window.advanced = true
            compare(shown, false)
        }

        function test_theHiddenBoxesShowWhatIsEnabled() {
            open()
            const edge = node("edgeEnabledCheckBox"), mixed = node("mixedEnabledCheckBox")
            compare([edge.visible, mixed.visible], [false, false])
            compare([edge.text, mixed.text], ["Enabled", "Enabled"])
            compare([edge.checked, mixed.checked], [false, false])
            device.slam.enabled = true
            compare([edge.checked, mixed.checked], [false, true])
            device.edge.enabled = true
            compare([edge.checked, mixed.checked], [true, true])
            item("bothSourceButton").checked = true
            compare([edge.text, mixed.text], ["Edge enabled", "Mixed enabled"])
        }

        function test_theWordsOfTheReadings() {
            open()
            const words = function(parent) {
                let found = []
                for (let i = 0; i < parent.children.length; ++i) {
                    const child = parent.children[i]
                    if (child.text === undefined)
                        found = found.concat(words(child))
                    else if (child.visible)
                        found.push(child.text)
                }
                return found
            }
            compare(words(item("slamInfoCol")),
                    ["Status", "Position (m):", "x", "y", "z", "0.000", "0.000", "0.000", "Orientation (deg):",
                     "roll", "pitch", "yaw", "0.0", "0.0", "0.0", "Distance:", "0.00 m", "Points:", "0", "Clear", "Reset"])
        }

        function test_theReadingsAreTenPointsHigh() {
            open()
            const names = ["xLabel", "yLabel", "zLabel", "rollLabel", "pitchLabel", "yawLabel", "distanceLabel",
                           "pointsLabel"]
            compare(names.map(function(name) { return item(name).font.pointSize }), names.map(function() { return 10 }))
            compare(item("slamInfoCol").padding, 5)
        }

        function test_theSettingsButtonIsHiddenAndTurns() {
            open()
            const button = node("settingsButton")
            compare(button.visible, false)
            compare(button.width, 48)
            compare(node("sourceCheckbox").checked, true)
            compare(button.rotation, 90)
            compare(String(button.icon.source), "qrc:/images/settings")
            button.checked = true
            verify(button.rotation < 180)
            tryCompare(button, "rotation", 180)
            button.checked = false
            tryCompare(button, "rotation", 90)
        }

        function test_theLoadedMapIsOfTheHostAlone() {
            open()
            device.putMapFile()
            mouseClick(item("loadButton"))
            const label = item("localizedPercentLable")
            compare(label.visible, true)
            device.progress(0.25)
            tryCompare(label, "text", "localized:  25 %")
            mouseClick(item("edgeSourceButton"))
            compare(label.visible, false)
            compare(item("loadButton").visible, false)
            compare(item("loopClosureButton").visible, false)
            compare(item("edgeModeLabel").text, "VIO")
            mouseClick(item("slamSourceButton"))
            compare(label.visible, true)
            compare(item("loadButton").text, "Stop Load Map")
            compare(item("modeLabel").text, "Loop Closure")
            compare(item("loopClosureButton").enabled, false)
            device.finishLoad()
        }

        // In a narrow view the words before the buttons give way, and the percentage is whole or not there.
        function test_thePercentageOfALoadedMapIsNeverCut() {
            open()
            device.putMapFile()
            mouseClick(item("loadButton"))
            device.progress(1)
            const label = item("localizedPercentLable")
            tryCompare(label, "text", "localized:  100 %")
            compare(label.visible, true)
            for (let width = 230; width <= 900; width += 10) {
                view.width = width
                waitForRendering(view)
                const left = label.mapToItem(view, 0, 0).x
                verify(label.opacity === 0 || (left >= 0 && left + label.width <= width), width + " wide")
                verify(width < 500 || label.opacity === 1, width + " wide")
            }
            device.finishLoad()
        }

        function test_theLoadPopupStandsOverItsButtonAndClosesByItself() {
            open()
            device.removeMapFile()
            const popup = node("loadPopup"), button = item("loadButton"), row = item("slamSourceRow")
            const words = device.node(popup, "words"), timer = node("popTimer")
            let seen = []
            popup.opacityChanged.connect(function() { seen.push(popup.opacity) })
            const faded = function() { return seen.some(function(opacity) { return opacity < 0.9 }) }
            mouseClick(button)
            testCase.expectWarning(/does not exists/)
            compare(popup.visible, true)
            compare(popup.modal, false)
            compare(popup.padding, 0)
            compare(popup.width, Math.max(button.width, words.contentWidth))
            compare(popup.height, words.contentHeight)
            compare(popup.x, row.x + button.x - Math.abs(button.width - words.contentWidth))
            compare(popup.y, row.y - popup.height)
            verify(Qt.colorEqual(words.color, "white"))
            compare(words.text, "Load map fail")
            compare(timer.repeat, false)
            compare(timer.running, true)
            tryCompare(popup, "opacity", 1)
            verify(faded(), "fades in")
            seen = []
            tryCompare(popup, "visible", false, 5000)
            verify(faded(), "fades out")
            compare(timer.running, false)
        }

        function test_aSecondPopupDoesNotExtendTheTime() {
            open()
            device.removeMapFile()
            const popup = node("loadPopup"), button = item("loadButton"), timer = node("popTimer")
            let shown = 0, starts = 0, ends = 0
            timer.interval = 60000
            popup.aboutToShow.connect(function() { ++shown })
            timer.runningChanged.connect(function() { starts += timer.running; ends += !timer.running })
            mouseClick(button)
            testCase.expectWarning(/does not exists/)
            compare([shown, starts, ends], [1, 1, 0])
            button.clicked() // a press would close the first one by itself
            testCase.expectWarning(/does not exists/)
            compare([shown, starts, ends], [2, 1, 0])
            timer.interval = 100
            tryCompare(popup, "visible", false, 10000)
            compare([shown, starts, ends], [2, 1, 1])
        }
    }
}
