import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import "qrc:/"

Item {
    id: window

    width: 600
    height: 500

    Component {
        id: customSwitch
        CustomSwitch {}
    }

    Component {
        id: customLabel
        CustomLabel { width: 200; text: "Stereo" }
    }

    Component {
        id: comboBox
        CustomComboBox {
            x: 50
            y: 50
            textRole: "name"
            model: [{ name: "first", value: 3 }, { name: "second", value: 5 }]
        }
    }

    Component {
        id: listComboBox
        CustomComboBox {
            textRole: "name"
            isListModel: true
            model: ListModel {
                ListElement { name: "alpha" }
                ListElement { name: "beta" }
            }
        }
    }

    CustomEditCombobox {
        id: allSettingsCombobox
        x: 300
        y: 50
        editable: true
        model: ListModel {
            ListElement { text: "Default" }
            ListElement { text: "Mine" }
        }
    }

    StrictCase {
        name: "Controls"

        function test_switchShowsItsState() {
            var item = make(customSwitch)
            compare(item.contentItem.text, "off")
            compare([item.indicator.width, item.indicator.height], [48 * 0.4, 26 * 0.4])
            compare([item.onText, item.offText, item.checked], ["on", "off", false])
            compare(item.indicator.radius, 13)
            verify(Qt.colorEqual(item.indicator.color, "transparent"))
            verify(Qt.colorEqual(item.indicator.border.color, "#F56C6C"))
            verify(Qt.colorEqual(item.contentItem.color, "#F56C6C"))
            var knob = find(item, "knob")
            compare(knob.x, 0)
            compare([knob.width, knob.height, knob.radius], [26 * 0.4, 26 * 0.4, 13 * 0.4])
            verify(Qt.colorEqual(knob.color, "transparent"))
            verify(Qt.colorEqual(knob.border.color, "#F56C6C"))
            mouseClick(item)
            compare(item.contentItem.text, "on")
            verify(Qt.colorEqual(item.indicator.color, "#409EFF"))
            verify(Qt.colorEqual(item.contentItem.color, "#409EFF"))
            verify(Qt.colorEqual(item.indicator.border.color, "transparent"))
            verify(Qt.colorEqual(knob.color, "#3E4D59"))
            verify(Qt.colorEqual(knob.border.color, "#409EFF"))
            compare(knob.x, 48 * 0.4 - 26 * 0.4)
            compare(item.contentItem.leftPadding, item.indicator.width + item.spacing)
        }

        function test_switchTakesItsWords() {
            var item = make(customSwitch, { onText: "MF", offText: "AF" })
            compare(item.contentItem.text, "AF")
            item.checked = true
            compare(item.contentItem.text, "MF")
        }

        function test_disabledSwitchHasFaintWords() {
            var item = make(customSwitch)
            compare(item.contentItem.opacity, 1)
            item.enabled = false
            fuzzyCompare(item.contentItem.opacity, 0.3, 0.001)
            compare(item.indicator.opacity, 1)
        }

        function test_labelFolds() {
            var item = make(customLabel)
            var indicator = find(item, "dropIndicator")
            compare([item.checked, indicator.rotation], [false, 270])
            mouseClick(item)
            compare([item.checked, indicator.rotation], [true, 0])
            mouseClick(item, item.width - 2, 2)
            compare(item.checked, false)
        }

        function test_labelStandsCloseToItsSign() {
            // Upright, so that the sign's right edge is on the right.
            var item = make(customLabel, { checked: true })
            var indicator = find(item, "dropIndicator")
            compare(String(indicator.source),
                    "qrc:/qt-project.org/imports/QtQuick/Controls.2/Material/images/drop-indicator.png")
            verify(indicator.width > 5)
            verify(Qt.colorEqual(indicator.color, "white"))
            var words = textIn(item, "Stereo")
            verify(Qt.colorEqual(words.color, "white"))
            compare(words.mapToItem(item, 0, 0).x, indicator.mapToItem(item, indicator.width, 0).x - 5)
            compare(words.mapToItem(item, 0, 0).y, 2)
        }

        // The text item with these words below `item`.
        function textIn(item, text) {
            for (var i = 0; i < item.children.length; ++i) {
                var child = item.children[i]
                var found = child.text === text && child.paintedWidth !== undefined ? child : textIn(child, text)
                if (found)
                    return found
            }
            return null
        }

        function test_labelLightsUnderTheMouse() {
            var item = make(customLabel, { y: 200 })
            mouseMove(item, 10, 10)
            tryVerify(function() { return Qt.colorEqual(item.color, "#33717171") })
            mouseMove(item, 10, 150)
            tryVerify(function() { return Qt.colorEqual(item.color, "transparent") })
        }

        function opened(item) {
            return function() { return item.popup.opened }
        }

        function closed(item) {
            return function() { return !item.popup.visible }
        }

        function test_arrowOpensAndCloses() {
            var item = make(comboBox)
            var arrow = find(item, "arrowArea")
            mouseClick(arrow)
            tryVerify(opened(item))
            mouseClick(arrow)
            tryVerify(closed(item))
            wait(0)
            verify(!item.popup.visible)
            compare(item.isClosed, false)
            mouseClick(arrow)
            tryVerify(opened(item))
            item.popup.close()
            tryVerify(closed(item))
        }

        function test_faceOpensAndCloses() {
            var item = make(comboBox)
            mouseClick(item, 20, item.height / 2)
            tryVerify(opened(item))
            mouseClick(item, 20, item.height / 2)
            tryVerify(closed(item))
        }

        function both() {
            return [{ tag: "choice", edited: false }, { tag: "presets", edited: true }]
        }

        function boxOf(data) {
            return data.edited ? allSettingsCombobox : make(comboBox)
        }

        function test_boxesAreDark_data() {
            return both()
        }

        function test_boxesAreDark(data) {
            var item = boxOf(data)
            compare([item.scale, item.rScale, item.isClosed, item.isListModel], [0.8, 0.8, false, false])
            verify(Qt.colorEqual(item.background.color, "#090B0D"))
            compare([item.background.implicitWidth, item.background.implicitHeight], [120, 40])
            compare([item.indicator.width, item.indicator.height], [0, 0])
            item.popup.open()
            tryVerify(opened(item))
            verify(Qt.colorEqual(item.popup.background.color, "#090B0D"))
            compare([item.popup.padding, item.popup.width, item.popup.y], [1, item.width * 0.8, item.height - 5])
            var entries = [0, 1].map(function(i) { return item.popup.contentItem.itemAtIndex(i) })
            entries.forEach(function(entry) {
                verify(Qt.colorEqual(entry.contentItem.color, "white"))
                compare([entry.contentItem.scale, entry.contentItem.elide, entry.width],
                        [0.8, Text.ElideRight, item.width * 0.8])
            })
            verify(Qt.colorEqual(entries[0].background.color, "#3E4D59"))
            verify(Qt.colorEqual(entries[1].background.color, "#090B0D"))
            entries[1].down = true
            verify(Qt.colorEqual(entries[1].background.color, "#242C33"))
            item.popup.close()
            tryVerify(closed(item))
            compare(item.popup.contentItem.model, null)
        }

        function test_borderIsThickerUnderVisualFocus_data() {
            return both()
        }

        function test_borderIsThickerUnderVisualFocus(data) {
            var item = boxOf(data)
            item.focus = false
            compare([item.visualFocus, item.background.border.width], [false, 1])
            item.forceActiveFocus(Qt.MouseFocusReason)
            compare([item.visualFocus, item.background.border.width], [false, 1])
            item.focus = false
            item.forceActiveFocus(Qt.TabFocusReason)
            compare([item.visualFocus, item.background.border.width], [true, 2])
            item.focus = false
        }

        function test_arrowBoxLightsUnderTheMouse_data() {
            return both()
        }

        function test_arrowBoxLightsUnderTheMouse(data) {
            var item = boxOf(data)
            var box = find(item, "arrowBox")
            mouseMove(item, 10, 10)
            tryVerify(function() { return Qt.colorEqual(box.color, "#3E4D59") })
            mouseMove(find(item, "arrowArea"), 10, 10)
            tryVerify(function() { return Qt.colorEqual(box.color, "#586773") })
            var arrow = box.children[0]
            compare([arrow.source.toString(), arrow.rotation], ["qrc:/images/triangle", 180])
            verify(Qt.colorEqual(arrow.color, "white"))
            mouseMove(item, 10, 10)
            tryVerify(function() { return Qt.colorEqual(box.color, "#3E4D59") })
        }

        function test_wordsStandInTheMiddle() {
            var item = make(comboBox)
            verify(Qt.colorEqual(item.contentItem.color, "white"))
            compare([item.contentItem.horizontalAlignment, item.contentItem.verticalAlignment],
                    [Text.AlignHCenter, Text.AlignVCenter])
            compare(item.contentItem.leftPadding, 5)
        }

        function test_escapeDoesNotSwallowTheNextClick_data() {
            return both()
        }

        function test_escapeDoesNotSwallowTheNextClick(data) {
            var item = boxOf(data)
            var arrow = find(item, "arrowArea")
            mouseMove(arrow, 10, 10)
            mouseClick(arrow)
            tryVerify(opened(item))
            keyClick(Qt.Key_Escape)
            tryVerify(closed(item))
            tryCompare(item, "isClosed", false)
            mouseClick(arrow)
            tryVerify(opened(item))
            mouseMove(item, 2, 2)
            item.popup.close()
            tryVerify(closed(item))
        }

        function test_closingUnderTheMouseHoldsOffOneClick_data() {
            return both()
        }

        function test_closingUnderTheMouseHoldsOffOneClick(data) {
            var item = boxOf(data)
            var arrow = find(item, "arrowArea")
            mouseMove(arrow, 10, 10)
            mouseClick(arrow)
            tryVerify(opened(item))
            item.popup.close()
            tryVerify(closed(item))
            compare(item.isClosed, true)
            mouseClick(arrow)
            compare(item.isClosed, false)
            verify(closed(item))
            mouseClick(arrow)
            tryVerify(opened(item))
            // Away from the box nothing is held off.
            mouseMove(item, 2, 2)
            item.popup.close()
            tryVerify(closed(item))
            compare(item.isClosed, false)
        }

        function test_popupThatClosesOnThePressStaysClosed_data() {
            return both()
        }

        function test_popupThatClosesOnThePressStaysClosed(data) {
            var item = boxOf(data)
            var arrow = find(item, "arrowArea")
            mouseMove(arrow, 10, 10)
            mouseClick(arrow)
            tryVerify(opened(item))
            mousePress(arrow)
            item.popup.close()
            tryVerify(closed(item))
            compare(item.isClosed, true)
            mouseRelease(arrow)
            compare(item.popup.visible, false)
            compare(item.isClosed, false)
        }

        function test_entriesShowTheirNames_data() {
            return [
                { tag: "array", component: comboBox, names: ["first", "second"] },
                { tag: "list", component: listComboBox, names: ["alpha", "beta"] }
            ]
        }

        function test_entriesShowTheirNames(data) {
            var item = make(data.component)
            compare(item.scale, 0.8)
            item.popup.open()
            tryVerify(opened(item))
            var list = item.popup.contentItem
            for (var i = 0; i < data.names.length; ++i) {
                var entry = list.itemAtIndex(i)
                compare(entry.contentItem.text, data.names[i])
                compare(entry.width, item.width * 0.8)
            }
            mouseClick(list.itemAtIndex(1))
            compare(item.currentIndex, 1)
            compare(item.contentItem.text, data.names[1])
            tryVerify(closed(item))
            compare(list.model, null)
        }

        function test_wordsEndBeforeTheArrowBox() {
            var item = make(comboBox, { spacing: 7 })
            compare(item.contentItem.rightPadding, find(item, "arrowBox").width + 7)
        }

        function test_arrowBoxIsSquare_data() {
            return both()
        }

        function test_arrowBoxIsSquare(data) {
            var item = boxOf(data)
            var box = find(item, "arrowBox")
            compare(box.width, box.height)
            compare(box.height, item.background.height)
            compare(box.mapToItem(item, box.width, 0).x, item.background.x + item.background.width)
            item.popup.open()
            tryVerify(opened(item))
            compare(item.popup.y, item.height - 5)
            item.popup.close()
            tryVerify(closed(item))
        }

        function test_editableBoxShowsAndEditsItsName() {
            var input = find(allSettingsCombobox, "allSettingsText")
            compare(allSettingsCombobox.contTxt, input)
            compare(input.text, "Default")
            allSettingsCombobox.currentIndex = 1
            compare(input.text, "Mine")
            mouseClick(input)
            input.selectAll()
            keyClick(Qt.Key_N)
            compare(allSettingsCombobox.contTxt.text, "n")
            allSettingsCombobox.currentIndex = 0
            compare([input.selectByMouse, input.leftPadding], [true, 5])
            verify(Qt.colorEqual(input.color, "white"))
            compare(input.font, allSettingsCombobox.font)
            verify(allSettingsCombobox.contentItem.clip)
            verify(Qt.colorEqual(allSettingsCombobox.contentItem.color, "transparent"))
        }

        function test_editableBoxListsItsEntries() {
            mouseClick(find(allSettingsCombobox, "arrowArea"))
            tryVerify(opened(allSettingsCombobox))
            var list = allSettingsCombobox.popup.contentItem
            compare(list.itemAtIndex(0).contentItem.text, "Default")
            compare(list.itemAtIndex(1).contentItem.text, "Mine")
            mouseClick(find(allSettingsCombobox, "arrowArea"))
            tryVerify(closed(allSettingsCombobox))
        }
    }
}
