import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import Qt.labs.settings 1.1
import "qrc:/"

Item {
    id: window

    property var camera: null

    width: 1000
    height: 900

    QtObject {
        id: mainSettings
        property int currentLanguageIndex: 0
    }

    Component {
        id: infoDialog
        InfoDialog {}
    }

    Component {
        id: versionDialog
        VersionDialog {
            title: qsTr("Version")
            sdkversion: "QVSDK version: " + qv_sdk_version
            viewerversion: "Viewer version: " + version
        }
    }

    Component {
        id: plainVersionDialog
        VersionDialog {}
    }

    Component {
        id: calibrationDialog
        CalibrationDialog {}
    }

    Component {
        id: calibrationDisplay
        CalibrationDisplay {}
    }

    Component {
        id: ucmView
        CalibrationUcmView {}
    }

    Component {
        id: pdcmView
        CalibrationPdcmView {}
    }

    Component {
        id: settingsView
        SettingsView {}
    }

    Settings {
        id: store
        category: "Settings"
    }

    Component {
        id: device
        QtObject {
            id: fake
            property var calls: []
            property QtObject objects: QtObject {
                function setModelDescriptor(path) { fake.calls.push("setModelDescriptor " + path) }
                function setEnabled(on) { fake.calls.push("setEnabled " + on) }
            }
            property QtObject imu: QtObject { property int offset: 0 }
            property QtObject edge: QtObject { property int prediction: 0 }
            function enableSync(on) { calls.push("enableSync " + on) }
        }
    }

    StrictCase {
        name: "Dialogs"

        readonly property var infos: ({
            "Firmware Version": "1.4.2",
            "uuid": "DEVICE-0001",
            "features": { "downsample Available": true, "rgb2 Available": false },
            "calibration": {
                "stereo": [record(1), record(2), record(3)],
                "stereo current resolution": "640*400",
                "color": [record(4)]
            }
        })

        function record(scale) {
            return {
                translation: [0.1 * scale, 0, -1],
                rotation: [1, 0, 0, 0, 1, 0, 0, 0, 1],
                ucms: [{ w: 640, h: 400, fx: 250.123456, fy: 251, u0: 320, v0: 200, xi: 0.9 }],
                pdcms: [{ w: 640, h: 400, fx: 1, fy: 2, u0: 3, v0: 4, distor: [0.1, 0.2, 0.3, 0.4, 0.5] }]
            }
        }

        // All that the item shows as words, from top to bottom.
        function texts(item) {
            var found = []
            if (item.visible && typeof item.text === "string" && item.text !== "" && item.paintedWidth !== undefined)
                found.push(item.text)
            for (var i = 0; item.children && i < item.children.length; ++i)
                found = found.concat(texts(item.children[i]))
            return found
        }

        function all(item, name) {
            var found = item.objectName === name ? [item] : []
            for (var i = 0; i < item.children.length; ++i)
                found = found.concat(all(item.children[i], name))
            return found
        }

        function openInfo(infos) {
            var dialog = make(infoDialog, { y: 100, width: 500, height: 600 })
            dialog.infos = infos
            dialog.open()
            waitForRendering(dialog)
            return dialog
        }

        function test_dialogsOpenAndClose_data() {
            return [
                { tag: "info", component: infoDialog, title: "Info" },
                { tag: "version", component: plainVersionDialog, title: "Device version" },
                { tag: "calibration", component: calibrationDialog, title: "Calibration info" }
            ]
        }

        function test_dialogsOpenAndClose(data) {
            var dialog = make(data.component)
            compare(dialog.visible, false)
            dialog.open()
            compare(dialog.visible, true)
            compare(find(dialog, "titleLabel").text, data.title)
            waitForRendering(dialog)
            mouseClick(find(dialog, "clearButton"))
            compare(dialog.visible, false)
            dialog.open()
            dialog.close()
            compare(dialog.visible, false)
        }

        function test_escapeClosesTheOpenDialog_data() {
            return test_dialogsOpenAndClose_data()
        }

        function test_escapeClosesTheOpenDialog(data) {
            var dialog = make(data.component)
            var closed = make(data.component)
            dialog.open()
            waitForRendering(dialog)
            keyClick(Qt.Key_Escape)
            compare(dialog.visible, false)
            // One that isn't open has no ear for the key, and the other one opens again.
            compare(closed.visible, false)
            dialog.open()
            compare(dialog.visible, true)
            keyClick(Qt.Key_Escape)
            compare(dialog.visible, false)
        }

        function test_escapeClosesTheListOfKindsBeforeTheDialog() {
            var dialog = make(calibrationDialog)
            dialog.infos = infos
            dialog.open()
            waitForRendering(dialog)
            var box = find(dialog, "calib")
            mouseClick(box)
            tryVerify(function() { return box.popup.opened })
            keyClick(Qt.Key_Escape)
            tryVerify(function() { return !box.popup.visible })
            compare(dialog.visible, true)
            keyClick(Qt.Key_Escape)
            compare(dialog.visible, false)
        }

        function test_escapeLeavesTheSettings() {
            var view = make(settingsView)
            waitForRendering(view)
            var quit = createTemporaryQmlObject("import QtTest 1.13; SignalSpy { signalName: 'quit' }", window)
            quit.target = view
            keyClick(Qt.Key_Escape)
            compare(quit.count, 1)
        }

        function test_infoListsVersionsTextsAndFeatures() {
            var dialog = openInfo(infos)
            compare(texts(find(dialog, "layout")), [
                "Viewer version: ", "3.2.0-2-20230907", "QVSDK version: ", "1.2.3",
                "Firmware Version", "1.4.2", "uuid", "DEVICE-0001",
                "downsample Available", "rgb2 Available"
            ])
            compare(dialog.infoversion, "")
        }

        function test_infoIsLoggedWithAnIndentOfTwo() {
            openInfo({ uuid: "A" })
            verify(messages.lines().indexOf("{\n  \"uuid\": \"A\"\n}") >= 0
                   || messages.lines().indexOf("qml: {\n  \"uuid\": \"A\"\n}") >= 0, messages.lines().join("|"))
        }

        function test_infoTakesAVersionEntry() {
            compare(openInfo({ version: "7" }).infoversion, "7")
        }

        function test_infoWithoutFeaturesHasNoFeatureRows() {
            var dialog = openInfo({ uuid: "A" })
            compare(find(dialog, "featureRows").count, 0)
            compare(find(dialog, "infoRows").count, 1)
        }

        function test_infoForgetsTheLastDevice() {
            var dialog = openInfo(infos)
            dialog.infos = { uuid: "B" }
            compare(find(dialog, "featureRows").count, 0)
            compare(find(dialog, "infoRows").count, 1)
            dialog.infos = undefined
            compare(find(dialog, "infoRows").count, 0)
        }

        function test_infoSizesFollowItsRows() {
            var dialog = openInfo(infos)
            var flickable = find(dialog, "flickable")
            var layout = find(dialog, "layout")
            fuzzyCompare(flickable.implicitWidth, 1.1 * layout.implicitWidth, 0.001)
            fuzzyCompare(flickable.implicitHeight, 0.8 * layout.implicitHeight, 0.001)
            verify(flickable.clip)
        }

        function test_everyValueCanBeCopied() {
            var dialog = openInfo(infos)
            var rows = [{ name: "copyViewerVersion", value: "3.2.0-2-20230907" }, { name: "copySdkVersion", value: "1.2.3" }]
            rows.forEach(function(row) {
                mouseClick(find(dialog, row.name))
                compare(tools.clipboardText(), row.value)
            })
            var buttons = all(find(dialog, "layout"), "copyValue")
            compare(buttons.length, 2)
            mouseClick(buttons[0])
            compare(tools.clipboardText(), "1.4.2")
            mouseClick(buttons[1])
            compare(tools.clipboardText(), "DEVICE-0001")
            compare(find(dialog, "copyViewerVersion").scale, 0.9)
        }

        function test_copiedShowsForOneSecond() {
            var dialog = openInfo(infos)
            var button = find(dialog, "copySdkVersion")
            var toolTip = find(button, "toolTip")
            var start = Date.now()
            mouseClick(button)
            tryVerify(function() { return toolTip.opened })
            compare(toolTip.text, "Copied")
            // From here on it fades away.
            tryCompare(toolTip, "opened", false, 4000)
            var shown = Date.now() - start
            verify(shown >= 950, "shown for " + shown + " ms")
            tryCompare(toolTip, "visible", false, 4000)
        }

        function test_everyButtonSaysThatItCopied() {
            var layout = find(openInfo(infos), "layout")
            var buttons = [find(layout, "copyViewerVersion"), find(layout, "copySdkVersion")].concat(all(layout, "copyValue"))
            compare(buttons.length, 4)
            buttons.forEach(function(button) {
                mouseClick(button)
                var toolTip = find(button, "toolTip")
                tryCompare(toolTip, "visible", true)
                compare(toolTip.text, "Copied")
            })
        }

        function test_featureBoxesShowAndStay() {
            var dialog = openInfo(infos)
            var boxes = all(find(dialog, "layout"), "featureBox")
            compare(boxes.map(function(box) { return box.checkState }), [Qt.Checked, Qt.PartiallyChecked])
            compare(boxes.map(function(box) { return find(box, "checkMark").visible }), [true, false])
            compare(boxes.map(function(box) { return find(box, "missingBar").visible }), [false, true])
            var bar = find(boxes[1], "missingBar")
            compare([bar.width, bar.height], [16, 3])
            verify(Qt.colorEqual(bar.color, "white"))
            boxes.forEach(function(box) { mouseClick(box) })
            compare(boxes.map(function(box) { return box.checkState }), [Qt.Checked, Qt.PartiallyChecked])
        }

        function test_languageRetranslatesOpenDialogs() {
            var dialog = openInfo(infos)
            TranslateController.loadLanguage(1)
            compare(find(dialog, "titleLabel").text, "InfoDialog/Info")
            verify(texts(dialog).indexOf("InfoDialog/uuid") >= 0)
            verify(texts(dialog).indexOf("InfoDialog/rgb2 Available") >= 0)
            TranslateController.loadLanguage(0)
            compare(find(dialog, "titleLabel").text, "Info")
        }

        function test_versionDialogCopiesAndTellsAtTheFirstRow() {
            var dialog = make(versionDialog)
            dialog.open()
            waitForRendering(dialog)
            compare(find(dialog, "titleLabel").text, "Version")
            compare(find(dialog, "sdkversionLabel").text, "QVSDK version: 1.2.3")
            compare(find(dialog, "viewerversionLabel").text, "Viewer version: 3.2.0-2-20230907")
            compare(find(dialog, "sdkversionLabel").leftPadding, 15)
            compare(find(dialog, "viewerversionLabel").leftPadding, 15)
            // A row each: what it says, then its button.
            ;[["sdkversionLabel", "copySdkVersion"], ["viewerversionLabel", "copyViewerVersion"]].forEach(function(row) {
                var words = find(dialog, row[0])
                var button = find(dialog, row[1])
                verify(button.x >= words.x + words.width)
                verify(words.y >= button.y && words.y + words.height <= button.y + button.height)
            })
            verify(find(dialog, "copyViewerVersion").y >= find(dialog, "copySdkVersion").y + find(dialog, "copySdkVersion").height)
            mouseClick(find(dialog, "copySdkVersion"))
            compare(tools.clipboardText(), "1.2.3")
            mouseClick(find(dialog, "copyViewerVersion"))
            compare(tools.clipboardText(), "3.2.0-2-20230907")
            tryVerify(function() { return find(find(dialog, "copySdkVersion"), "toolTip").visible })
            verify(!find(find(dialog, "copyViewerVersion"), "toolTip").visible)
        }

        function test_calibrationShowsOneKindTwoToARow() {
            var dialog = make(calibrationDialog)
            dialog.infos = infos
            dialog.open()
            waitForRendering(dialog)
            var repeater = find(dialog, "calibrationRepeater")
            compare(repeater.count, 3)
            compare(repeater.itemAt(0).y, repeater.itemAt(1).y)
            compare(repeater.itemAt(1).x, repeater.itemAt(0).width + 5)
            compare(repeater.itemAt(2).x, 0)
            verify(repeater.itemAt(2).y > 0)
            var box = find(dialog, "calib")
            compare(box.model, ["stereo", "color", "tof"])
            box.currentIndex = 1
            compare(repeater.count, 1)
        }

        function test_calibrationWithoutTofShowsNothing() {
            var dialog = make(calibrationDialog)
            dialog.infos = infos
            find(dialog, "calib").currentIndex = 2
            compare(find(dialog, "calibrationRepeater").count, 0)
        }

        function test_calibrationWithoutInfos_data() {
            return [{ tag: "undefined", infos: undefined }, { tag: "empty", infos: {} }]
        }

        function test_calibrationWithoutInfos(data) {
            var dialog = make(calibrationDialog)
            dialog.infos = data.infos
            compare(dialog.calibration, [])
            compare(find(dialog, "calibrationRepeater").count, 0)
        }

        function test_calibrationNumbersHaveFiveDecimals() {
            var display = make(calibrationDisplay, { calibration: record(1) })
            compare(texts(display), [
                "Translation", "0.10000", "0.00000", "-1.00000",
                "Rotation", "1.00000", "0.00000", "0.00000", "0.00000", "1.00000", "0.00000", "0.00000", "0.00000", "1.00000",
                "UCM", "w: 640.00000", "h: 400.00000", "fx: 250.12346", "fy: 251.00000", "u0: 320.00000", "v0: 200.00000",
                "xi: 0.90000",
                "PDCM", "w: 640.00000", "h: 400.00000", "fx: 1.00000", "fy: 2.00000", "u0: 3.00000", "v0: 4.00000",
                "distor: [", "0.10000", "0.20000", "0.30000", "0.40000", "0.50000", "]"
            ])
        }

        function test_calibrationHidesTheHeadingsOfMissingModels() {
            var display = make(calibrationDisplay, { calibration: { translation: [1, 2, 3], rotation: [], ucms: [], pdcms: [] } })
            compare(texts(display), ["Translation", "1.00000", "2.00000", "3.00000", "Rotation"])
            display.calibration = {}
            compare(texts(display), ["Translation", "Rotation"])
            display.calibration = undefined
            compare(texts(display), ["Translation", "Rotation"])
        }

        function test_calibrationHidesOnlyTheHeadingOfTheMissingModel() {
            var both = record(1)
            var display = make(calibrationDisplay, { calibration: both })
            display.calibration = { translation: [], rotation: [], ucms: both.ucms, pdcms: [] }
            var shown = texts(display)
            compare([shown.indexOf("UCM") >= 0, shown.indexOf("PDCM") >= 0], [true, false])
            display.calibration = { translation: [], rotation: [], ucms: [], pdcms: both.pdcms }
            shown = texts(display)
            compare([shown.indexOf("UCM") >= 0, shown.indexOf("PDCM") >= 0], [false, true])
        }

        function test_calibrationModelsShowTheNumbersThatThereAre() {
            compare(texts(make(ucmView, { ucm: { w: 640, fy: 251, xi: 0.9 } })), ["w: 640.00000", "fy: 251.00000", "xi: 0.90000"])
            compare(texts(make(pdcmView, { pdcm: { h: 400, u0: 3 } })), ["h: 400.00000", "u0: 3.00000", "distor: [", "]"])
        }

        function test_settingsReachTheDevice() {
            var camera = createTemporaryObject(device, window)
            var view = make(settingsView, { camera: camera })
            waitForRendering(view)
            mouseClick(find(view, "enableSyncCheckbox"))
            mouseClick(find(view, "enableSyncCheckbox"))
            find(view, "cnnModelDescriptor").model = "file:///models/room.json"
            mouseClick(find(view, "enableCNNCheckbox"))
            find(view, "cnnModelDescriptor").model = "file:///models/street.json"
            mouseClick(find(view, "enableCNNCheckbox"))
            compare(camera.calls, ["enableSync true", "enableSync false", "setModelDescriptor /models/room.json", "setEnabled true",
                                   "setModelDescriptor /models/street.json", "setEnabled false"])
            find(view, "imuOffset").increase()
            find(view, "edgePrediction").decrease()
            compare([camera.imu.offset, camera.edge.prediction], [100, -100])
        }

        function test_settingsWithoutCameraAreDisabled() {
            var view = make(settingsView)
            verify(!find(view, "enableSyncCheckbox").enabled)
            verify(!find(view, "enableCNNCheckbox").enabled)
        }

        function test_settingsWithoutADetectorOfferNoNetwork() {
            var camera = createTemporaryObject(device, window)
            camera.objects = null
            var view = make(settingsView, { camera: camera })
            verify(find(view, "enableSyncCheckbox").enabled)
            verify(!find(view, "enableCNNCheckbox").enabled)
        }

        function test_settingsKeepTheModelDescriptor() {
            var view = make(settingsView)
            find(view, "cnnModelDescriptor").model = "file:///models/kept.json"
            view.destroy()
            tryVerify(function() { return String(store.value("cnnModelDescriptor")) === "file:///models/kept.json" })
            compare(String(find(make(settingsView), "cnnModelDescriptor").model), "file:///models/kept.json")
        }

        function test_settingsTakeTheFileThatIsPicked() {
            var view = make(settingsView)
            waitForRendering(view)
            var dialog = find(view, "fileDialog")
            var field = find(view, "cnnModelDescriptor")
            var button = field.parent.children[1]
            compare(String(button.icon.source), "qrc:images/save")
            // What a platform without windows says of the dialog's.
            expectedWarnings.push(/propagateSizeHints/)
            mouseClick(button)
            tryVerify(function() { return dialog.visible })
            dialog.close()
            tryVerify(function() { return !dialog.visible })
            dialog.file = "file:///models/picked.json"
            dialog.accepted()
            compare(String(find(view, "cnnModelDescriptor").model), "file:///models/picked.json")
        }

        function test_settingsShowTheStoredLanguage() {
            mainSettings.currentLanguageIndex = 2
            compare(find(make(settingsView), "languageCombobox").displayText, "日本語")
            mainSettings.currentLanguageIndex = 0
        }

        function test_settingsWithoutModelLogTheError_data() {
            return [{ tag: "imu", box: "imuOffset" }, { tag: "edge", box: "edgePrediction" }]
        }

        function test_settingsWithoutModelLogTheError(data) {
            var camera = createTemporaryObject(device, window)
            camera[data.tag] = null
            var view = make(settingsView, { camera: camera })
            find(view, data.box).increase()
            expectWarning(/TypeError/)
        }

        function test_settingsShowThePathWhileFocused() {
            var view = make(settingsView)
            var field = find(view, "cnnModelDescriptor")
            field.model = "file:///models/room.json"
            field.focus = false
            compare(field.text, "room.json")
            field.focus = true
            compare(field.text, "/models/room.json")
            verify(field.readOnly)
        }

        function test_settingsChangeTheLanguage() {
            var view = make(settingsView)
            waitForRendering(view)
            var box = find(view, "languageCombobox")
            compare(box.model, ["English", "简体中文", "日本語"])
            compare(box.currentIndex, 0)
            box.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(mainSettings.currentLanguageIndex, 1)
            compare(TranslateController.loaded[TranslateController.loaded.length - 1], 1)
            compare(find(view, "titleLabel").text, "SettingsView/Options")
            keyClick(Qt.Key_Up)
            compare(mainSettings.currentLanguageIndex, 0)
            compare(find(view, "titleLabel").text, "Options")
        }

        function test_settingsOpenTheLanguagesUpwards() {
            var view = make(settingsView)
            var box = find(view, "languageCombobox")
            box.popup.open()
            tryVerify(function() { return box.popup.opened })
            compare(box.popup.y, -box.popup.height)
            box.popup.close()
            tryVerify(function() { return !box.popup.visible })
        }

        function test_settingsButtonQuits() {
            var view = make(settingsView)
            waitForRendering(view)
            var quit = createTemporaryQmlObject("import QtTest 1.13; SignalSpy { signalName: 'quit' }", window)
            quit.target = view
            mouseClick(find(view, "clearButton"))
            compare(quit.count, 1)
        }
    }
}
