import QtQuick 2.13

// A bar that grows from zero, up for positive values and down for negative ones.
Rectangle {
    id: control

    enum Axis { X, Y, Z }

    property double minimumValue: 0.0
    property double maximumValue: 100.0
    property double value: 50.0
    readonly property double boundedvalue: Math.max(minimumValue, Math.min(maximumValue, value))
    property int axis: GaugeView.Axis.X
    property color positiveColor: {
        switch (axis) {
        case GaugeView.Axis.X:
            return "#EF5350"
        case GaugeView.Axis.Y:
            return "#66BB6A"
        case GaugeView.Axis.Z:
            return "#03A9F4"
        default:
            return "ligthgray"
        }
    }
    property color negativeColor: positiveColor
    readonly property double valueAsPercentage: (boundedvalue - minimumValue) / span

    readonly property double span: maximumValue - minimumValue

    implicitWidth: 15
    implicitHeight: 150
    color: "lightgray"

    // Its upper edge marks zero.
    Item {
        id: base
        objectName: "base"
        anchors.bottom: parent.bottom
        width: parent.width
        height: {
            if (control.maximumValue < 0)
                return control.height
            if (control.minimumValue > 0)
                return 0
            return control.height * Math.abs(control.minimumValue) / control.span
        }
    }

    Rectangle {
        objectName: "positiveBar"
        anchors.bottom: base.top
        width: parent.width
        height: Math.abs(control.height * (control.boundedvalue - Math.max(0, control.minimumValue)) / control.span)
        color: control.positiveColor
        visible: control.boundedvalue > 0
    }

    Rectangle {
        objectName: "negativeBar"
        anchors.top: base.top
        width: parent.width
        height: control.height * -control.boundedvalue / control.span
        color: control.negativeColor
        visible: control.boundedvalue < 0
    }
}
