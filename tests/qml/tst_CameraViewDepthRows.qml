import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13

// Where the rows of the depth and colour sections stand, what they say, and when they are hidden.
Item {
    width: 1024
    height: 768

    PanelFixture {
        id: fixture
    }

    PanelTestCase {
        name: "CameraViewDepthRows"
        fixture: fixture

        // The row that a combo box stands in.
        function rowOf(item) {
            return item.parent.parent
        }

        function test_foldedSectionsHideTheirRows_data() {
            return [
                { tag: "tofText", manufacturer: 0, rows: ["tofShowDepthSwitch", "tofCenterPixelSwitch",
                    "colorSchemeCombobox", "maxDistanceSlider", "minDistanceSlider", "tofFramerateSlider",
                    "distanceModeComboBox"] },
                { tag: "tofText", manufacturer: 1, rows: ["tofShowDepthSwitch", "frequencyCombox", "resolutionCombox",
                    "fpscombox", "sonyTofModecombox"] },
                { tag: "irText", manufacturer: 0, rows: ["tofgammaSlider"] },
                { tag: "rgbText", manufacturer: 0, rows: ["resolutionComboBox", "rgbmodeButton", "rgbDistanceSlider",
                    "rgbFramerateSlider"] },
                { tag: "sgbmText", manufacturer: 0, rows: ["sgbmDewarpSwitch", "sgbmCenterPixelSwitch",
                    "sgbmDepthOrDisparitySwitch", "sgbmFillholesOrMaskSwitch", "sgbmSourceSwitch",
                    "sgbmcolorSchemeCombobox", "sgbmResolutionComboBox", "sgbmZoomSpinBox", "sgbmBaselineSpinBox",
                    "sgbmFovSpinBox", "sgbmMaxDisparitySpinBox", "sgbmModeSpinBox", "sgbmMaxDistanceSpinBox",
                    "sgbmMinDistanceSpinBox", "sgbmHoleSizeSpinBox", "sgbmHoleMinSpinBox", "sgbmHoleMaxSpinBox",
                    "sgbmCenterWidthSpinBox", "sgbmCenterHeightSpinBox"] }
            ].map(function(row) {
                return { tag: row.tag + row.manufacturer, label: row.tag, manufacturer: row.manufacturer,
                         rows: row.rows }
            })
        }

        function test_foldedSectionsHideTheirRows(row) {
            open(function(fake) { fake.tof.manufacturer = row.manufacturer })
            control("sgbmCenterPixelSwitch").checked = true;
            [false, true, false].forEach(function(isOpen) {
                control(row.label).checked = isOpen
                row.rows.forEach(function(name) { compare(control(name).visible, isOpen, name) })
            })
        }

        function test_captions_data() {
            return [
                { tag: "tofShowDepthSwitch", caption: "Show depth:" },
                { tag: "tofCenterPixelSwitch", caption: "AVG PX:" },
                { tag: "colorSchemeCombobox", caption: "Color Scheme:", width: 0.7 },
                { tag: "maxDistanceSlider", caption: "Maximal distance:", value: "1.0m" },
                { tag: "minDistanceSlider", caption: "Minimum distance:", value: "0.1m" },
                { tag: "tofFramerateSlider", caption: "Framerate:", value: "15Hz" },
                { tag: "tofmodeComboBox", caption: "Mode:" },
                { tag: "distanceModeComboBox", caption: "Distance Mode:" },
                { tag: "frequencyCombox", caption: "Frequency" },
                { tag: "resolutionCombox", caption: "Resolution: " },
                { tag: "fpscombox", caption: "FPS: " },
                { tag: "sonyTofModecombox", caption: "Tof Mode: " },
                { tag: "tofgammaSlider", caption: "Tof gamma:", value: "2.8", valueWidth: 40 },
                { tag: "resolutionComboBox", caption: "Resolution: " },
                { tag: "rgbmodeButton", caption: "RGB MODE:" },
                { tag: "rgbDistanceSlider", caption: "Focal Distance:", value: "255", valueWidth: 40 },
                { tag: "rgbFramerateSlider", caption: "Framerate:", value: "30Hz" },
                { tag: "sgbmDewarpSwitch", caption: "Dewarp:" },
                { tag: "sgbmCenterPixelSwitch", caption: "AVG PX:" },
                { tag: "sgbmDepthOrDisparitySwitch", caption: "Depth:" },
                { tag: "sgbmFillholesOrMaskSwitch", caption: "Fillholes:" },
                { tag: "sgbmSourceSwitch", caption: "Show depth:" },
                { tag: "sgbmcolorSchemeCombobox", caption: "Color Scheme:" },
                { tag: "sgbmResolutionComboBox", caption: "Resolution:     ", width: 0.6 },
                { tag: "sgbmZoomSpinBox", caption: "Zoom [%]" },
                { tag: "sgbmBaselineSpinBox", caption: "baseline [mm]" },
                { tag: "sgbmFovSpinBox", caption: "FOV [px]" },
                { tag: "sgbmMaxDisparitySpinBox", caption: "Confidence [px]" },
                { tag: "sgbmModeSpinBox", caption: "Mode" },
                { tag: "sgbmMaxDistanceSpinBox", caption: "Max Distance[mm]" },
                { tag: "sgbmMinDistanceSpinBox", caption: "Min Distance[mm]" },
                { tag: "sgbmHoleSizeSpinBox", caption: "Hole size" },
                { tag: "sgbmHoleMinSpinBox", caption: "Hole min" },
                { tag: "sgbmHoleMaxSpinBox", caption: "Hole max" },
                { tag: "sgbmCenterWidthSpinBox", caption: "AVG PX Width" },
                { tag: "sgbmCenterHeightSpinBox", caption: "AVG PX Height" }
            ]
        }

        function test_captions(row) {
            open()
            const item = control(row.tag)
            compare(item.caption !== undefined ? item.caption : rowOf(item).caption, row.caption)
            if (row.width)
                compare(item.width, row.width * control("buttonColumn").width)
            if (row.value)
                compare(findChild(item, "valueLabel").text, row.value)
            if (row.valueWidth)
                compare(findChild(item, "valueLabel").width, row.valueWidth)
            if (/SpinBox$/.test(row.tag)) {
                verify(item.editable)
                compare(item.width, 0.6 * control("buttonColumn").width)
            }
        }

        function test_theColourResolutionTakesMostOfWhatTheLabelLeaves() {
            open()
            const box = control("resolutionComboBox")
            fuzzyCompare(box.implicitWidth, 0.9 * (rowOf(box).width - rowOf(box).captionTextWidth), 1e-6)
            verify(box.implicitWidth > 100)
        }

        function test_theSwitchesOfTheStereoDepthAreSetIn() {
            open()
            openSection("sgbmText")
            const column = control("sgbmDewarpSwitch").parent
            compare([column.spacing, column.padding], [15, 5])
            verify(column.width > 100);
            ["sgbmDewarpSwitch", "sgbmCenterPixelSwitch", "sgbmDepthOrDisparitySwitch", "sgbmFillholesOrMaskSwitch",
             "sgbmSourceSwitch"].forEach(function(name, i) {
                const row = control(name)
                compare([row.parent, row.x, row.y, row.width],
                        [column, 5, 5 + i * (36 + 15), column.width - 10], name)
            })
        }

        function test_theSwitchesShareAGroup() {
            open()
            const shared = control("tofButton").ButtonGroup.group
            verify(shared);
            ["irButton", "rgbButton", "rgb2Button", "rgbdButton", "sgbmButton", "rgbmodeButton"].forEach(function(name) {
                compare(control(name).ButtonGroup.group, shared, name)
            })
            compare(shared.exclusive, false)
        }

        function test_valueLabelsFollowTheirSliders() {
            open()
            control("minDistanceSlider").value = 2.34
            compare(findChild(control("minDistanceSlider"), "valueLabel").text, "2.3m")
            control("rgbDistanceSlider").value = 17
            compare(findChild(control("rgbDistanceSlider"), "valueLabel").text, "17")
        }

        function test_hiddenColourModes() {
            open()
            openSection("rgbText");
            ["captureButton", "videoButton", "previewButton"].forEach(function(name) {
                verify(!control(name).visible, name)
                control(name).clicked()
            })
            compare(device.calls, ["rgb.mode(1)", "rgb.mode(2)", "rgb.mode(0)"])
        }

        function test_hiddenImuOffset() {
            open()
            openSection("generalText")
            const box = control("offsetSpinBox")
            compare([box.from, box.to, box.stepSize, box.value, box.editable, box.visible],
                    [-100000, 100000, 100, 0, true, false])
            box.value = -300
            compare(device.calls, ["imu.offset(-300)"])
        }
    }
}
