import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import Qt.labs.platform 1.1 as Platform
import "qrc:/"

// Measures, colours and letters of the dialogs.
Item {
    id: window

    width: 1000
    height: 900

    QtObject {
        id: mainSettings
        property int currentLanguageIndex: 0
    }

    Component {
        id: infoDialog
        InfoDialog { width: 500; height: 600 }
    }

    Component {
        id: versionDialog
        VersionDialog { width: 400 }
    }

    Component {
        id: calibrationDialog
        CalibrationDialog { width: 600; height: 500 }
    }

    Component {
        id: calibrationDisplay
        CalibrationDisplay {}
    }

    Component {
        id: settingsView
        SettingsView {}
    }

    StrictCase {
        name: "DialogLooks"

        readonly property var infos: ({
            "Firmware Version": "1.4.2",
            "uuid": "DEVICE-0001",
            "features": { "downsample Available": true, "rgb2 Available": false }
        })

        // All visible items below `item` for which `wanted` holds, from top to bottom.
        function all(item, wanted) {
            var found = item.visible && wanted(item) ? [item] : []
            for (var i = 0; item.visible && item.children && i < item.children.length; ++i)
                found = found.concat(all(item.children[i], wanted))
            return found
        }

        function isText(item) {
            return typeof item.text === "string" && item.text !== "" && item.paintedWidth !== undefined
        }

        function label(item, text) {
            var found = all(item, function(child) { return isText(child) && child.text === text })
            compare(found.length, 1, text)
            return found[0]
        }

        function openInfo(infos) {
            var dialog = make(infoDialog)
            dialog.infos = infos
            dialog.open()
            waitForRendering(dialog)
            return dialog
        }

        function test_headersHaveOneForm_data() {
            return [
                { tag: "info", component: infoDialog },
                { tag: "version", component: versionDialog },
                { tag: "calibration", component: calibrationDialog },
                { tag: "settings", component: settingsView }
            ]
        }

        function test_headersHaveOneForm(data) {
            var page = make(data.component)
            page.visible = true
            waitForRendering(page)
            var header = page.header
            compare(header.width, page.width)
            var background = header.background
            compare(background.implicitHeight, 40)
            compare(background.gradient.orientation, Gradient.Horizontal)
            var stops = background.gradient.stops
            compare(stops.length, 2)
            compare([stops[0].position, stops[1].position], [0, 1])
            verify(Qt.colorEqual(stops[0].color, "#02f1d3"))
            verify(Qt.colorEqual(stops[1].color, "#0e90e7"))
            var title = find(header, "titleLabel")
            compare(title.text, page.title)
            verify(Qt.colorEqual(title.color, "black"))
            compare(title.mapToItem(header, 0, 0).x, 10)
            var button = find(header, "clearButton")
            compare(button.mapToItem(header, button.width, 0).x, header.width - 5)
            compare(String(button.icon.source), "qrc:images/clear")
            verify(Qt.colorEqual(button.icon.color, "white"))
        }

        function test_namesAreBoldAndCapitalized_data() {
            return ["Viewer version: ", "QVSDK version: ", "Firmware Version", "uuid", "downsample Available",
                    "rgb2 Available"].map(function(name) { return { tag: name } })
        }

        function test_namesAreBoldAndCapitalized(data) {
            var name = label(find(openInfo(infos), "layout"), data.tag)
            compare([name.font.bold, name.font.capitalization], [true, Font.Capitalize])
        }

        function test_valuesFillTheirRowsUpToTheButton_data() {
            return ["3.2.0-2-20230907", "1.2.3", "1.4.2", "DEVICE-0001"].map(function(value) { return { tag: value } })
        }

        function test_valuesFillTheirRowsUpToTheButton(data) {
            var value = label(find(openInfo(infos), "layout"), data.tag)
            compare([value.font.bold, value.elide, value.truncated], [false, Text.ElideRight, false])
            var row = value.parent
            var button = row.children[2]
            verify(value.width > value.implicitWidth + 50)
            compare(value.x + value.width, button.x - row.spacing)
            compare(button.x + button.width, row.width)
            compare(String(button.icon.source), "qrc:images/copy")
        }

        function test_aLongValueIsElided() {
            var endless = "0123456789".repeat(30)
            var dialog = openInfo({ uuid: endless })
            var value = label(find(dialog, "layout"), endless)
            verify(value.truncated)
            var button = find(dialog, "copyValue")
            verify(button.mapToItem(dialog, button.width, 0).x <= dialog.width)
            mouseClick(button)
            compare(tools.clipboardText(), endless)
        }

        function test_featureNamesFillTheirRows() {
            var layout = find(openInfo(infos), "layout")
            var name = label(layout, "rgb2 Available")
            var box = name.parent.children[1]
            compare(box.objectName, "featureBox")
            compare(name.x + name.width, box.x - name.parent.spacing)
        }

        function test_indicatorsHoldAWhiteSign() {
            var boxes = all(find(openInfo(infos), "layout"), function(item) { return item.objectName === "featureBox" })
            compare(boxes.length, 2)
            boxes.forEach(function(box) {
                compare([box.tristate, box.indicator.width, box.indicator.height], [true, 28, 28])
                verify(Qt.colorEqual(box.indicator.color, "transparent"))
            })
            var mark = find(boxes[0], "checkMark")
            verify(mark.status === Image.Ready)
            verify(Qt.colorEqual(mark.color, "white"))
            var bar = find(boxes[1], "missingBar")
            compare([bar.width, bar.height], [16, 3])
            verify(Qt.colorEqual(bar.color, "white"))
        }

        function record(models) {
            return {
                translation: [1, 2, 3],
                rotation: [1, 0, 0, 0, 1, 0, 0, 0, 1],
                ucms: models ? [{ w: 640, h: 400, fx: 250, fy: 251, u0: 320, v0: 200, xi: 0.9 }] : [],
                pdcms: models ? [{ w: 640, h: 400, fx: 1, fy: 2, u0: 3, v0: 4, distor: [1, 2, 3, 4, 5] }] : []
            }
        }

        function test_eachSectionHasAWhiteBarOnItsLeft_data() {
            return [{ tag: "with models", models: true, bars: 4 }, { tag: "without", models: false, bars: 2 }]
        }

        function test_eachSectionHasAWhiteBarOnItsLeft(data) {
            var display = make(calibrationDisplay, { calibration: record(data.models) })
            waitForRendering(display)
            var bars = all(display.contentItem, function(item) { return item.border !== undefined })
            compare(bars.length, data.bars)
            bars.forEach(function(bar) {
                compare([bar.x, bar.width], [0, 3])
                verify(Qt.colorEqual(bar.color, "white"))
                compare(bar.height, bar.parent.height)
                verify(bar.height > 10)
            })
        }

        function test_headingsAreBold() {
            var display = make(calibrationDisplay, { calibration: record(true) })
            var bold = all(display, function(item) { return isText(item) && item.font.bold })
            compare(bold.map(function(item) { return item.text }), ["Translation", "Rotation", "UCM", "PDCM"])
            compare(bold[0].parent.spacing, 5)
        }

        function test_numbersStandInThreeColumns() {
            var display = make(calibrationDisplay, { calibration: record(true) })
            waitForRendering(display)
            var numbers = all(find(display, "rotation"), isText)
            compare(numbers.map(function(item) { return item.text }).filter(function(text) { return text === "1.00000" }).length, 3)
            var x = [0, 1, 2].map(function(i) { return numbers[i].x })
            verify(x[0] < x[1] && x[1] < x[2])
            numbers.forEach(function(item, i) {
                compare(item.x, x[i % 3])
                compare(item.y, numbers[3 * Math.floor(i / 3)].y)
            })
            var values = all(find(display, "ucms").parent, function(item) { return isText(item) && /: /.test(item.text) })
            compare(values.slice(0, 7).map(function(item) { return item.text.split(":")[0] }),
                    ["w", "h", "fx", "fy", "u0", "v0", "xi"])
            compare(values[3].x, values[0].x)
            compare(values[6].x, values[0].x)
            verify(values[6].y > values[3].y && values[3].y > values[0].y)
            values = values.slice(7)
            compare(values.slice(0, 6).map(function(item) { return item.text.split(":")[0] }), ["w", "h", "fx", "fy", "u0", "v0"])
            compare([values[1].y, values[2].y, values[3].x, values[5].x], [values[0].y, values[0].y, values[0].x, values[2].x])
            verify(values[2].x > values[1].x && values[1].x > values[0].x && values[3].y > values[0].y)
        }

        function test_settingsRowsHaveTheirRanges_data() {
            return [{ tag: "imuOffset" }, { tag: "edgePrediction" }]
        }

        function test_settingsRowsHaveTheirRanges(data) {
            var box = find(make(settingsView), data.tag)
            compare([box.value, box.from, box.to, box.stepSize, box.editable], [0, -100000, 100000, 100, true])
            compare(label(box.parent, "µs").parent, box.parent)
        }

        function test_settingsRowsStandInTwoColumns() {
            var view = make(settingsView)
            waitForRendering(view)
            var names = ["Enable Sync", "Enable CNN", "CNN model descriptor", "IMU Offset", "Edge Prediction", "Language"]
            var labels = names.map(function(name) { return label(view.contentItem, name) })
            labels.forEach(function(item, i) {
                compare(item.x, labels[0].x)
                verify(i === 0 || item.y > labels[i - 1].y)
            })
            verify(find(view, "cnnModelDescriptor").width >= 200)
        }

        function test_theFileDialogStartsWhereTheModelIs() {
            var view = make(settingsView)
            var dialog = find(view, "fileDialog")
            var field = find(view, "cnnModelDescriptor")
            field.model = "file:///no/such/folder/model.json"
            compare(String(dialog.folder), String(Platform.StandardPaths.writableLocation(Platform.StandardPaths.DocumentsLocation)))
            var existing = String(Qt.resolvedUrl("tst_DialogLooks.qml"))
            field.model = existing
            compare(String(dialog.folder), existing.replace("/tst_DialogLooks.qml", ""))
            field.model = ""
        }
    }
}
