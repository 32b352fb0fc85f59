import QtQuick 2.13
import QtQuick.Controls 2.13
import QtTest 1.13
import "qrc:/"

Item {
    id: window

    property bool isHeaderHovered: false

    width: 800
    height: 600

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    Component {
        id: gauge
        GaugeView { width: 15; height: 200 }
    }

    Component {
        id: axisView
        ImuAxisView { width: 150; height: 300 }
    }

    Component {
        id: imuView
        ImuView { width: 500; height: 400 }
    }

    Component {
        id: inertial
        QtObject {
            property QtObject imu: QtObject {
                property double dataFrameRate: 499.6
                property var accel: ({ x: 9.81, y: -9.81, z: 0 })
                property var gyro: ({ x: 1, y: 2, z: 3 })
                property var magn: ({ x: 10, y: 20, z: 30 })
            }
        }
    }

    StrictCase {
        name: "Gauges"

        function test_barsGrowFromZero_data() {
            return [
                // height 200: zero lies at base, the bar's length is the value's share of the span
                { tag: "positive", min: -50, max: 150, value: 75, base: 50, positive: 75, negative: -1 },
                { tag: "negative", min: -50, max: 150, value: -25, base: 50, positive: -1, negative: 25 },
                { tag: "zero", min: -50, max: 150, value: 0, base: 50, positive: -1, negative: -1 },
                { tag: "above", min: -50, max: 150, value: 1000, base: 50, positive: 150, negative: -1 },
                { tag: "below", min: -50, max: 150, value: -1000, base: 50, positive: -1, negative: 50 },
                { tag: "allPositive", min: 100, max: 200, value: 150, base: 0, positive: 100, negative: -1 },
                { tag: "allNegative", min: -200, max: -100, value: -150, base: 200, positive: -1, negative: 300 }
            ]
        }

        function test_barsGrowFromZero(data) {
            var item = make(gauge, { minimumValue: data.min, maximumValue: data.max, value: data.value })
            var positive = find(item, "positiveBar")
            var negative = find(item, "negativeBar")
            compare(find(item, "base").height, data.base)
            compare(positive.visible, data.positive >= 0)
            compare(negative.visible, data.negative >= 0)
            if (data.positive >= 0) {
                compare(positive.height, data.positive)
                compare(positive.y + positive.height, item.height - data.base)
            }
            if (data.negative >= 0) {
                compare(negative.height, data.negative)
                compare(negative.y, item.height - data.base)
            }
        }

        function test_valueAsPercentageIsTheBoundedShare() {
            var item = make(gauge, { minimumValue: -50, maximumValue: 150, value: 100 })
            compare(item.valueAsPercentage, 0.75)
            item.value = 900
            compare(item.valueAsPercentage, 1)
            compare(item.boundedvalue, 150)
        }

        function test_axisGivesTheColour_data() {
            return [
                { tag: "x", axis: GaugeView.Axis.X, color: "#ef5350" },
                { tag: "y", axis: GaugeView.Axis.Y, color: "#66bb6a" },
                { tag: "z", axis: GaugeView.Axis.Z, color: "#03a9f4" }
            ]
        }

        function test_axisGivesTheColour(data) {
            var item = make(gauge, { axis: data.axis })
            verify(Qt.colorEqual(item.positiveColor, data.color))
            verify(Qt.colorEqual(item.negativeColor, data.color))
            verify(Qt.colorEqual(item.color, "lightgray"))
        }

        function test_eachBarHasItsOwnColour() {
            var item = make(gauge, { minimumValue: -50, positiveColor: "#112233", negativeColor: "#445566" })
            verify(Qt.colorEqual(find(item, "positiveBar").color, "#112233"))
            verify(Qt.colorEqual(find(item, "negativeBar").color, "#445566"))
        }

        function test_unknownAxisHasNoColour() {
            var item = make(gauge, { axis: 7 })
            verify(!item.positiveColor.valid)
            verify(!item.negativeColor.valid)
        }

        function test_defaults() {
            var item = make(gauge)
            verify(Qt.colorEqual(item.positiveColor, "#ef5350"))
            compare([item.minimumValue, item.maximumValue, item.value, item.axis], [0, 100, 50, GaugeView.Axis.X])
            compare([item.implicitWidth, item.implicitHeight], [15, 150])
        }

        function test_axisViewScalesItsAxis() {
            var item = make(axisView, { minimumValue: -2, maximumValue: 2, factor: 0.5, axis: { x: 1, y: 2, z: -3 } })
            compare(find(item, "xGauge").value, 0.5)
            compare(find(item, "yGauge").value, 1)
            compare(find(item, "zGauge").value, -1.5)
            compare(item.tickmarkStepSize, 0.5)
            item.axis = null;
            ["xGauge", "yGauge", "zGauge"].forEach(function(name) { compare(find(item, name).value, 0) })
        }

        function test_axisViewGivesItsBoundsToScaleAndBars() {
            var item = make(axisView)
            compare([item.minimumValue, item.maximumValue, item.factor, item.axis, item.title], [0, 100, 1, null, ""])
            item.minimumValue = -3
            item.maximumValue = 5;
            ["gauge", "xGauge", "yGauge", "zGauge"].forEach(function(name) {
                compare([find(item, name).minimumValue, find(item, name).maximumValue], [-3, 5])
            })
            compare(item.tickmarkStepSize, 1)
            compare(["xGauge", "yGauge", "zGauge"].map(function(name) { return find(item, name).axis }),
                    [GaugeView.Axis.X, GaugeView.Axis.Y, GaugeView.Axis.Z])
        }

        function test_axisViewStandsInARowUnderItsTitle() {
            var item = make(axisView, { title: "Tilt" })
            waitForRendering(item)
            var label = find(item, "titleLabel")
            var row = find(item, "row")
            compare(label.text, "Tilt")
            fuzzyCompare(label.x + label.width / 2, 75, 1)
            verify(row.y >= label.height)
            var gauge = find(item, "gauge")
            // A spacer of 5 and the row's own spacing stand before the scale.
            compare([gauge.x, row.spacing], [10, 5])
            var x = find(item, "xGauge")
            compare([find(item, "yGauge").x - x.x, find(item, "zGauge").x - x.x, x.width], [20, 40, 15])
            // The scale's own bar takes no room: its bars are the three beside it.
            compare(gauge.__style.valueBar.createObject(item).implicitWidth, 0)
        }

        function test_axisViewShowsOneDecimalForSmallSpans() {
            var item = make(axisView, { minimumValue: -5, maximumValue: 5 })
            compare(find(item, "gauge").formatValue(1.25), "1.3")
            item.maximumValue = 5.5
            compare(find(item, "gauge").formatValue(1.25), "1")
        }

        function test_axisViewFontFollowsTheWidth() {
            var item = make(axisView, { width: 50 })
            compare(find(item, "gauge").font.pixelSize, 6)
            item.width = 10
            compare(find(item, "gauge").font.pixelSize, 4)
            item.width = 400
            compare(find(item, "gauge").font.pixelSize, 12)
        }

        function test_imuViewShowsTheThreeQuantities() {
            var item = make(imuView, { camera: createTemporaryObject(inertial, window) })
            compare(find(item, "infoLabel").text, "[IMU]  @500fps")
            fuzzyCompare(find(find(item, "accelView"), "xGauge").value, 1, 1e-9)
            compare(find(find(item, "gyroView"), "yGauge").value, 2)
            compare(find(find(item, "magnView"), "zGauge").value, 30)
        }

        function test_imuViewNamesAndBoundsTheQuantities_data() {
            return [
                { tag: "accelView", title: "Accel [g]", bound: 2.5, factor: 1 / 9.81 },
                { tag: "gyroView", title: "Gyro [rad/s]", bound: 20, factor: 1 },
                { tag: "magnView", title: "Magn", bound: 200, factor: 1 }
            ]
        }

        function test_imuViewNamesAndBoundsTheQuantities(data) {
            var item = find(make(imuView), data.tag)
            compare([item.title, item.minimumValue, item.maximumValue, item.factor],
                    [data.title, -data.bound, data.bound, data.factor])
            TranslateController.loadLanguage(1)
            compare(item.title, "ImuView/" + data.title)
            TranslateController.loadLanguage(0)
        }

        function test_imuViewKeepsItsBarsTogether() {
            var item = make(imuView, { width: 800, height: 600 })
            var axes = find(item, "axes")
            compare([axes.width, axes.height, axes.spacing], [500, 400, 5])
            compare([axes.x, axes.y], [150, 100])
            verify(find(item, "infoLabel").y + find(item, "infoLabel").height <= axes.y)
            item.width = 400
            item.height = 300
            verify(axes.width <= 400 && axes.height <= 300)
            fuzzyCompare(axes.x + axes.width / 2, 200, 0.5)
            fuzzyCompare(axes.y + axes.height / 2, 150, 0.5)
            verify(find(item, "infoLabel").y + find(item, "infoLabel").height <= axes.y)
        }

        function test_imuViewsTitlesStandBelowItsButtons() {
            var item = make(imuView, { width: 228, height: 240 })
            var title = find(find(item, "gyroView"), "titleLabel")
            var button = find(item, "closeBtn")
            verify(title.mapToItem(item, 0, 0).y >= button.y + button.height)
        }

        function test_theBarsOfANarrowViewStayInTheirColumns_data() {
            return [{ tag: "narrow", width: 228, height: 240 }, { tag: "three", width: 313, height: 370 },
                    { tag: "low", width: 150, height: 112 }, { tag: "wide", width: 800, height: 600 }]
        }

        function test_theBarsOfANarrowViewStayInTheirColumns(data) {
            var item = make(imuView, { width: data.width, height: data.height })
            var axes = ["accelView", "gyroView", "magnView"].map(function(name) { return find(item, name) })
                    .filter(function(axis) { return axis.visible })
            compare(axes.length, data.width > 300 ? 3 : 2)
            axes.forEach(function(axis) {
                var right = find(axis, "zGauge")
                // Inside its own column, and thus beside the next one's scale.
                tryVerify(function() { return right.mapToItem(axis, right.width, 0).x <= axis.width + 0.5 })
                verify(find(axis, "gauge").mapToItem(axis, 0, 0).x >= -0.5)
                tryCompare(right, "width", axis.barWidth)
                verify(right.width >= 2 && right.width <= 15, right.width)
                verify(right.height >= data.height / 4, right.height)
                verify(axis.mapToItem(item, 0, axis.height).y <= data.height)
            })
        }

        function test_aLowScaleLeavesNumbersOut() {
            var axis = make(axisView, { width: 100, height: 240, minimumValue: -20, maximumValue: 20 })
            var gauge = find(axis, "gauge")
            var numbers = function() {
                return [-20, -15, -10, -5, 0, 5, 10, 15, 20].map(gauge.formatValue)
            }
            compare(numbers(), ["-20", "-15", "-10", "-5", "0", "5", "10", "15", "20"])
            // Eight steps of 12 pixels are 96.
            axis.height = 240 - gauge.height + 95
            tryCompare(gauge, "height", 95)
            compare(numbers(), ["-20", "", "-10", "", "0", "", "10", "", "20"])
            axis.height -= 48
            tryCompare(gauge, "height", 47)
            compare(numbers(), ["-20", "", "", "", "0", "", "", "", "20"])
        }

        function test_imuViewHidesMagnWhenNarrow() {
            var item = make(imuView)
            var magn = find(item, "magnView")
            item.width = 301
            verify(magn.visible)
            item.width = 300
            verify(!magn.visible)
        }

        function test_imuViewLosesItsCamera() {
            var item = make(imuView, { camera: createTemporaryObject(inertial, window) })
            item.camera = null
            compare(find(item, "infoLabel").text, "")
            compare(find(find(item, "gyroView"), "yGauge").value, 0)
        }
    }
}
