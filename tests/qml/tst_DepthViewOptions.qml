import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import "qrc:/"

// The option buttons of the depth views, and what is kept of them and of the hidden page.
Item {
    id: window

    property bool isHeaderHovered: false

    width: 700
    height: 500

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    Component {
        id: tofView
        TofView { width: 640; height: 480; minimized: false }
    }

    Component {
        id: sgbmView
        SgbmView { width: 640; height: 480; minimized: false }
    }

    StrictCase {
        name: "DepthViewOptions"

        function views() {
            return [{ tag: "tof", component: tofView }, { tag: "sgbm", component: sgbmView }]
        }

        function test_buttonsStandAtTheTopRight_data() { return views() }

        function test_buttonsStandAtTheTopRight(data) {
            var view = make(data.component)
            var column = find(view, "optionsColumn")
            verify(!column.visible)
            view.optionsVisible = true
            verify(column.visible)
            compare([column.x, column.y, column.width, column.spacing], [640 - 48 - 5, 40, 48, -10]);
            ["hFlipButton", "vFlipButton"].forEach(function(name, i) {
                var button = find(view, name)
                compare([button.width, button.height, button.y], [48, 48, 38 * i])
                compare(button.icon.source, "qrc:/images/vertical_flip")
                compare(button.rotation, 90 * i)
                verify(button.visible && button.checkable && !button.checked)
            })
            verify(!find(view, "settingsButton").visible)
            compare(find(view, "settingsButton").icon.source, "qrc:/images/settings")
            verify(!find(view, "settingsPage").visible)
        }

        function test_flipSignsAreWhiteWhileTheyAreOn_data() { return views() }

        function test_flipSignsAreWhiteWhileTheyAreOn(data) {
            var view = make(data.component, { optionsVisible: true })
            var buttons = ["hFlipButton", "vFlipButton"].map(function(name) { return find(view, name) })
            buttons.forEach(function(button, i) {
                verify(Qt.colorEqual(button.icon.color, "gray"))
                mouseClick(button)
                verify(button.checked)
                verify(Qt.colorEqual(button.icon.color, "white"))
                verify(Qt.colorEqual(buttons[1 - i].icon.color, "gray"))
                mouseClick(button)
                verify(Qt.colorEqual(button.icon.color, "gray"))
            })
        }

        function test_flipsPersist_data() { return views() }

        function test_flipsPersist(data) {
            var view = make(data.component, { optionsVisible: true })
            var painter = find(view, "painter")
            mouseClick(find(view, "hFlipButton"))
            mouseClick(find(view, "vFlipButton"))
            compare([painter.horizontalFlip, painter.verticalFlip], [true, true])
            view.destroy()
            wait(0)
            var later = make(data.component, { optionsVisible: true })
            compare([later.horizontalFlip, later.verticalFlip], [true, true])
            mouseClick(find(later, "hFlipButton"))
            mouseClick(find(later, "vFlipButton"))
        }

        function test_theHiddenTofPageStoresItsValues() {
            var view = make(tofView)
            find(view, "maxDistanceSlider").value = 4
            find(view, "minDistanceSlider").value = 0.5
            find(view, "tofFramerateSlider").value = 20
            find(view, "colorizeCheckbox").checked = false
            view.destroy()
            wait(0)
            view = make(tofView)
            compare([find(view, "maxDistanceSlider").value, find(view, "minDistanceSlider").value,
                     find(view, "tofFramerateSlider").value, find(view, "colorizeCheckbox").checked],
                    [4, 0.5, 20, false])
            fuzzyCompare(find(view, "painter").maxDistance, 4, 1e-6)
            compare(find(view, "painter").colorize, false)
            find(view, "maxDistanceSlider").value = 1.0
            find(view, "minDistanceSlider").value = 0.1
            find(view, "tofFramerateSlider").value = 15
            find(view, "colorizeCheckbox").checked = true
        }

        function test_theHiddenTofPageHasItsDefaults() {
            var view = make(tofView)
            var sliders = [["maxDistanceSlider", 0.1, 7.5, 0, 1.0], ["minDistanceSlider", 0.1, 7.5, 0, 0.1],
                           ["tofFramerateSlider", 5, 30, 5, 15]]
            sliders.forEach(function(row) {
                var slider = find(view, row[0])
                compare([slider.from, slider.to, slider.stepSize, slider.value], row.slice(1), row[0])
                verify(!slider.visible)
            })
            var boxes = [["modeComboBox", 1, 6], ["distanceModeComboBox", 1, 3], ["frequencyCombox", 0, 2],
                         ["resolutionCombox", 0, 2], ["combox", 5, 6], ["sonyTofModecombox", 0, 3]]
            boxes.forEach(function(row) {
                compare([find(view, row[0]).currentIndex, find(view, row[0]).count], row.slice(1), row[0])
            })
        }
    }
}
