import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import "qrc:/"

// The read-outs at the top left of the views, which share their row with the view's buttons.
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

    Component { id: imuView; ImuView { height: 300 } }
    Component { id: stereoView; StereoView { height: 300 } }
    Component { id: tofView; TofView { height: 300 } }
    Component { id: irView; IrView { height: 300 } }
    Component { id: rgbView; RgbView { height: 300 } }
    Component { id: rgbdView; RgbdView { height: 300 } }
    Component { id: sgbmView; SgbmView { height: 300 } }

    TextMetrics { id: metrics }

    StrictCase {
        name: "ViewCaptions"

        // With the button that saves a picture, as the page gives it to all but the last two, and without.
        function views() {
            return [
                { tag: "stereo", component: stereoView, save: true },
                { tag: "tof", component: tofView, save: true },
                { tag: "ir", component: irView, save: true },
                { tag: "rgb", component: rgbView, save: true },
                { tag: "sgbm", component: sgbmView, save: true },
                { tag: "rgbd", component: rgbdView, save: false },
                { tag: "imu", component: imuView, save: false }
            ]
        }

        function captionOf(data, width, text) {
            var view = make(data.component, { width: width, showSaveImageButton: data.save })
            var label = find(view, "infoLabel")
            label.text = text
            return { view: view, label: label, background: label.background }
        }

        function leftmostButton(view) {
            var buttons = ["imgBtn", "maxBtn", "closeBtn"].map(function(name) { return find(view, name) })
            return Math.min.apply(null, buttons.filter(function(button) { return button.visible })
                                  .map(function(button) { return button.mapToItem(view, 0, 0).x }))
        }

        function test_captionsLeaveTheButtonsAlone_data() { return views() }

        function test_captionsLeaveTheButtonsAlone(data) {
            var shown = captionOf(data, 200, "[STEREO]  1920x1200@100fps")
            var left = leftmostButton(shown.view)
            compare(left, 200 - (data.save ? 96 : 64))
            var start = shown.label.mapToItem(shown.view, 0, 0).x
            verify(start >= 0)
            verify(start + shown.label.width <= left, start + shown.label.width)
            verify(start + shown.background.x + shown.background.width <= left)
            verify(start + shown.label.leftPadding + shown.label.contentWidth <= left)
            // The words have gone below one another instead of away.
            verify(!shown.label.truncated)
            verify(shown.label.lineCount > 1)
            verify(shown.background.height >= shown.label.contentHeight + shown.label.topPadding + shown.label.bottomPadding)
        }

        function wordWidth(label, word) {
            metrics.font = label.font
            metrics.text = word
            return metrics.advanceWidth
        }

        function test_aNarrowViewTakesSmallerLettersBeforeAWordBreaks_data() { return views() }

        function test_aNarrowViewTakesSmallerLettersBeforeAWordBreaks(data) {
            var shown = captionOf(data, 700, "[RGB]  1920x1080@30fps")
            var size = shown.label.font.pixelSize
            var gone = 700 - shown.label.width + shown.label.leftPadding + shown.label.rightPadding
            var whole = wordWidth(shown.label, "1920x1080@30fps")
            shown.view.width = Math.ceil(whole + gone)
            compare(shown.label.font.pixelSize, size)
            compare(shown.label.lineCount, 2)
            shown.view.width = Math.ceil(whole + gone) - 10
            verify(shown.label.font.pixelSize < size)
            verify(wordWidth(shown.label, "1920x1080@30fps") <= shown.label.availableWidth)
            compare(shown.label.lineCount, 2)
            // Legible to the end.
            shown.view.width = Math.ceil(gone) + 20
            compare(shown.label.font.pixelSize, 9)
            shown.view.width = 700
            compare(shown.label.font.pixelSize, size)
            compare(shown.label.lineCount, 1)
        }

        function test_theDarkGroundIsAsWideAsTheWords_data() { return views() }

        function test_theDarkGroundIsAsWideAsTheWords(data) {
            var shown = captionOf(data, 640, "[RGB]  640x480@30fps")
            metrics.font = shown.label.font
            metrics.text = shown.label.text
            verify(metrics.advanceWidth > 50)
            compare(shown.label.lineCount, 1)
            fuzzyCompare(shown.background.width,
                         metrics.advanceWidth + shown.label.leftPadding + shown.label.rightPadding, 2)
            verify(shown.background.width < shown.label.width - 100)
            verify(shown.background.visible)
            shown.label.text = ""
            verify(!shown.background.visible)
        }
    }
}
