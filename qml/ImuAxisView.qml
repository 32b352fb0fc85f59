import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Controls.Styles 1.4
import QtQuick.Extras 1.4
import QtQuick.Layouts 1.13

// One inertial quantity: a scale and a bar for each of its axes.
Item {
    id: control

    property double minimumValue: 0.0
    property double maximumValue: 100.0
    property alias tickmarkStepSize: gauge.tickmarkStepSize
    property double factor: 1.0
    property var axis: null
    property string title: ""

    readonly property double span: maximumValue - minimumValue
    // What the scale and the gaps leave to each of the three bars.
    readonly property real barWidth: Math.max(2, Math.min(Math.floor((width - Math.ceil(gauge.implicitWidth) - 25) / 3), 15))

    // Not from the row: its scale's font follows the width in turn.
    implicitWidth: 100
    implicitHeight: 180

    Label {
        id: titleLabel
        objectName: "titleLabel"
        anchors { top: parent.top; horizontalCenter: parent.horizontalCenter }
        text: control.title
    }

    RowLayout {
        objectName: "row"
        anchors { top: titleLabel.bottom; topMargin: 5; bottom: parent.bottom; horizontalCenter: parent.horizontalCenter }
        spacing: 5

        Item {
            Layout.preferredWidth: 5
        }

        Gauge {
            id: gauge
            objectName: "gauge"
            minimumValue: control.minimumValue
            maximumValue: control.maximumValue
            tickmarkStepSize: control.span / 8
            // Every number has its line; a low scale leaves numbers out.
            readonly property int numbering: [1, 2, 4, 8].find(
                every => every === 8 || height * every * tickmarkStepSize >= font.pixelSize * control.span)

            formatValue: function(value) {
                const tickmark = Math.round((value - minimumValue) / tickmarkStepSize)
                return tickmark % numbering === 0 ? value.toFixed(control.span > 10 ? 0 : 1) : ""
            }
            font.pixelSize: Math.max(4, Math.min(12 * control.width / 100, 12))
            style: GaugeStyle {
                // The bars stand beside the scale, one per axis.
                valueBar: Item {
                    implicitWidth: 0
                }
                foreground: null
            }
            Layout.fillHeight: true
        }

        GaugeView {
            objectName: "xGauge"
            minimumValue: control.minimumValue
            maximumValue: control.maximumValue
            axis: GaugeView.Axis.X
            value: control.axis ? control.axis.x * control.factor : 0.0
            Layout.fillHeight: true
            Layout.preferredWidth: control.barWidth
        }

        GaugeView {
            objectName: "yGauge"
            minimumValue: control.minimumValue
            maximumValue: control.maximumValue
            axis: GaugeView.Axis.Y
            value: control.axis ? control.axis.y * control.factor : 0.0
            Layout.fillHeight: true
            Layout.preferredWidth: control.barWidth
        }

        GaugeView {
            objectName: "zGauge"
            minimumValue: control.minimumValue
            maximumValue: control.maximumValue
            axis: GaugeView.Axis.Z
            value: control.axis ? control.axis.z * control.factor : 0.0
            Layout.fillHeight: true
            Layout.preferredWidth: control.barWidth
        }
    }
}
