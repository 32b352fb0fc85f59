import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

// What stands beside each control of the device, IMU, stereo, SLAM and general sections, looked for as a reader does:
// on the control's own line, under the section's own head.
Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    PanelTestCase {
        name: "CameraViewCaptions"
        fixture: fixture

        readonly property var sections: ["imuText", "stereoText", "slamText", "tofText", "irText", "rgbText", "rgb2Text",
            "rgbdText", "sgbmText", "hidText", "generalText"]

        // The drawn texts below an item that say `text`.
        function drawn(item, text) {
            let found = item.paintedWidth !== undefined && item.text === text && item.visible ? [item] : []
            for (let i = 0; i < item.children.length; ++i)
                found = found.concat(drawn(item.children[i], text))
            return found
        }

        function all(item) {
            let found = [item]
            for (let i = 0; i < item.children.length; ++i)
                found = found.concat(all(item.children[i]))
            return found
        }

        function theOnly(text) {
            const found = drawn(control("buttonColumn"), text)
            compare(found.length, 1, "'" + text + "'")
            return found[0]
        }

        // Where an item stands in the column of all rows.
        function place(item) {
            return item.mapToItem(control("buttonColumn"), 0, 0, item.width, item.height)
        }

        function middle(item) {
            const area = place(item)
            return area.y + area.height / 2
        }

        // Between the heads of its section and of the next.
        function compareSection(item, section) {
            const next = control(sections[sections.indexOf(section) + 1] || "generalText")
            verify(place(item).y > middle(control(section)), item + " above its section")
            if (next !== control(section))
                verify(place(item).y < place(next).y, item + " below its section")
        }

        function test_theRowsAboveTheSections_data() {
            return [
                { tag: "UUID: ", control: "uuidLabel" },
                { tag: "Preset: ", control: "allSettingsCombobox" },
                { tag: " Save ", control: "savePresetButton" },
                { tag: "Delete", control: "deletePresetButton" }
            ]
        }

        function test_theRowsAboveTheSections(row) {
            open(function(fake) { fake.uuid = "XV-0815" })
            waitForRendering(control("flickable"))
            const label = theOnly(row.tag)
            fuzzyCompare(middle(label), middle(control(row.control)), 4)
            verify(place(label).y < place(control("imuText")).y)
            compare(control("uuidLabel").text, "XV-0815")
        }

        function test_thePresetRowReadsFromLeftToRight() {
            open()
            waitForRendering(control("flickable"))
            const label = theOnly("Preset: ")
            const row = [control("allSettingsCombobox"), control("savePresetButton"), control("deletePresetButton")].map(place)
            verify(place(label).x + label.paintedWidth <= row[0].x)
            verify(row[0].x + row[0].width <= row[1].x)
            verify(row[1].x + row[1].width <= row[2].x)
            verify(row[2].x + row[2].width <= page.cameraDrawer.width)
        }

        // `caption` is a label at the control's left, `text` the control's own.
        function test_captions_data() {
            return [
                { tag: "imumodeComboBox", section: "imuText", caption: "IMU Mode" },
                { tag: "autoExposure", section: "stereoText", text: "Auto Exposure" },
                { tag: "gainSlider", section: "stereoText", caption: "Gain:", value: "10" },
                { tag: "brightnessSlider", section: "stereoText", caption: "Brightness:", value: "10ms" },
                { tag: "modeComboBox", section: "stereoText", caption: "UVC Mode" },
                { tag: "multiSlamCheckbox", section: "slamText", text: "Multi-view display Slam", indent: 15 },
                { tag: "sourceCheckbox", section: "slamText", text: "Planes source:", indent: 15 },
                { tag: "clearPlanesButton", section: "slamText", text: "Clear planes", indent: 15, scale: 0.8 },
                { tag: "enableSyncCheckbox", section: "generalText", text: "Enable Sync", indent: 10 },
                { tag: "enableCNNCheckbox", section: "generalText", text: "Enable CNN", indent: 10 },
                { tag: "cnnCombobox", section: "generalText", caption: "CNN Source:", indent: 25 },
                { tag: "menuAutoCloseCheckbox", section: "generalText", text: "Menu Auto Close", indent: 10 },
                { tag: "predictionSpinBox", section: "generalText", caption: "Edge Prediction", indent: 25, unit: "µs" },
                { tag: "combobox", section: "generalText", caption: "Language", indent: 25 }
            ]
        }

        function test_captions(row) {
            open()
            const item = control(row.tag)
            compare(drawn(control("buttonColumn"), row.caption || row.text), [])
            verify(!item.visible)

            openSection(row.section)
            verify(item.visible)
            compareSection(item, row.section)
            const label = theOnly(row.caption || row.text)
            verify(!label.truncated)
            fuzzyCompare(middle(label), middle(item), 4)
            if (row.text) {
                compare(item.text, row.text)
                fuzzyCompare(item.scale, row.scale || 0.9, 1e-6)
            } else {
                verify(place(label).x <= place(item).x)
            }
            if (row.indent)
                fuzzyCompare(place(row.text ? item : label).x, row.indent, 0.5)
            if (row.value)
                fuzzyCompare(middle(theOnly(row.value)), middle(item), 4)
            if (row.unit) {
                const unit = theOnly(row.unit)
                fuzzyCompare(middle(unit), middle(item), 4)
                verify(place(unit).x >= place(item).x + place(item).width)
            }
        }

        function test_theModelFilesHaveTheirCaptionsAbove_data() {
            return [
                { tag: "cnnModelDescriptor", caption: "CNN model descriptor" },
                { tag: "cnnModel", caption: "CNN model" }
            ]
        }

        function test_theModelFilesHaveTheirCaptionsAbove(row) {
            open()
            compare(drawn(control("buttonColumn"), row.caption), [])
            openSection("generalText")
            const field = control(row.tag).field
            compareSection(field, "generalText")
            const label = theOnly(row.caption)
            fuzzyCompare(place(label).x, 25, 0.5)
            verify(!label.truncated)
            verify(place(label).y + place(label).height <= place(field).y + 4)
            verify(place(field).y - place(label).y < 40)
            verify(field.width >= 200)
            verify(field.readOnly)
            const buttons = all(field.parent).filter(function(item) { return item.checkable !== undefined })
            compare(buttons.map(function(button) { return button.icon.source.toString() }), ["qrc:images/save"])
            verify(place(buttons[0]).x >= place(field).x + place(field).width)
        }

        function test_theSourcesStandBelowTheirCheckBox() {
            open()
            openSection("slamText")
            const box = control("planesSourceComboBox")
            compareSection(box, "slamText")
            verify(middle(control("sourceCheckbox")) < middle(box))
            verify(middle(box) < middle(control("clearPlanesButton")))
        }

        function test_theLanguagesHaveTheirOwnNames() {
            open()
            const box = control("combobox")
            compare(box.count, 3)
            compare([0, 1, 2].map(function(i) { return box.model[i].name }), ["English", "简体中文", "日本語"])
        }

        function test_theFocusOfTheColourCameraIsNamed() {
            open(function(fake) { fake.afRGB = true })
            openSection("rgbText")
            const button = control("rgbmodeButton")
            compareSection(theOnly("RGB MODE:"), "rgbText")
            compare([button.onText, button.offText], ["MF", "AF"])
            verify(Math.abs(middle(theOnly("AF")) - middle(button)) < 4)
            button.checked = true
            verify(Math.abs(middle(theOnly("MF")) - middle(button)) < 4)
            compare(drawn(button, "AF"), [])
        }

        // What is never shown has its words all the same.
        function test_hiddenRows() {
            open()
            sections.forEach(function(name) { control(name).checked = true })
            const row = function(name) { return control(name).parent.parent }
            compare([row("stereoResolutionComboBox").caption, row("offsetSpinBox").caption], ["Resolution:     ", "IMU Offset"])
            compare(control("offsetSpinBox").parent.children[1].text, "µs");
            [["previewButton", "Preview"], ["captureButton", "Capture"], ["videoButton", "Video"]].forEach(function(pair) {
                compare(control(pair[0]).text, pair[1])
            });
            const words = all(page.cameraDrawer.contentItem).map(function(item) { return item.text })
            verify(words.indexOf("Version") >= 0);
            [["optionsButton", "settings"], ["gridLayoutButton", "view_module"], ["sideLayoutButton", "view_sidebar"]]
                .forEach(function(pair) { compare(control(pair[0]).icon.source, "qrc:images/" + pair[1]) });
            ["IMU Offset", "Preview", "Capture", "Video", "TOF 3D", "Eye\ntracking", "Version"].forEach(function(text) {
                compare(drawn(page.cameraDrawer.contentItem, text), [], text)
            })
        }
    }
}
