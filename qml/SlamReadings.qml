import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Extras 1.4

// What one SLAM source says about itself, and the buttons for its path. Its words are translated with those of `SlamView`.
Column {
    id: control

    // The `SlamData` that is read; null for none.
    property var source: null
    property var pointCount: null
    property var slam: null
    property var edge: null
    property bool bothSources: false

    signal clear()
    signal reset()

    function number(value, decimals) {
        return source ? value.toFixed(decimals) : " - "
    }

    padding: 5

    Row {
        spacing: 5

        ReadingLabel {
            text: qsTranslate("SlamView", "Status")
        }

        StatusIndicator {
            id: indicator

            objectName: "statusIndicator"

            readonly property var stops: [
                { pct: 0.0, color: { r: 1, g: 0, b: 0 } },
                { pct: 0.5, color: { r: 1, g: 1, b: 0 } },
                { pct: 1.0, color: { r: 0, g: 1, b: 0 } }
            ]

            // Red over yellow to green. What is no number is below no stop, and takes the last two.
            function colorFromConfidence(pct) {
                let i = 1
                while (i < stops.length - 1 && !(pct < stops[i].pct))
                    ++i
                const lower = stops[i - 1]
                const upper = stops[i]
                const rangePct = (pct - lower.pct) / (upper.pct - lower.pct)
                const mix = (from, to) => from * (1 - rangePct) + to * rangePct
                return Qt.rgba(mix(lower.color.r, upper.color.r), mix(lower.color.g, upper.color.g),
                               mix(lower.color.b, upper.color.b), 1)
            }

            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16
            active: control.source !== null
            color: control.source ? colorFromConfidence(control.source.confidence) : "orange"
        }
    }

    ReadingLabel {
        text: qsTranslate("SlamView", "Position (m):")
    }

    Grid {
        width: 150
        columns: 3

        Repeater {
            model: [qsTranslate("SlamView", "x"), qsTranslate("SlamView", "y"), qsTranslate("SlamView", "z")]

            ReadingLabel {
                width: 50
                text: modelData
            }
        }

        ReadingLabel {
            objectName: "xLabel"
            width: 50
            text: control.number(control.source ? control.source.position.x : 0, 3)
        }

        ReadingLabel {
            objectName: "yLabel"
            width: 50
            text: control.number(control.source ? control.source.position.y : 0, 3)
        }

        ReadingLabel {
            objectName: "zLabel"
            width: 50
            text: control.number(control.source ? control.source.position.z : 0, 3)
        }
    }

    ReadingLabel {
        text: qsTranslate("SlamView", "Orientation (deg):")
    }

    Grid {
        width: 150
        columns: 3

        Repeater {
            model: [qsTranslate("SlamView", "roll"), qsTranslate("SlamView", "pitch"), qsTranslate("SlamView", "yaw")]

            ReadingLabel {
                width: 50
                text: modelData
            }
        }

        ReadingLabel {
            objectName: "rollLabel"
            width: 50
            text: control.number(control.source ? control.source.orientation.roll : 0, 1)
        }

        ReadingLabel {
            objectName: "pitchLabel"
            width: 50
            text: control.number(control.source ? control.source.orientation.pitch : 0, 1)
        }

        ReadingLabel {
            objectName: "yawLabel"
            width: 50
            text: control.number(control.source ? control.source.orientation.yaw : 0, 1)
        }
    }

    Row {
        spacing: 5

        ReadingLabel {
            id: distanceCaption

            text: qsTranslate("SlamView", "Distance:")
        }

        ReadingLabel {
            objectName: "distanceLabel"
            anchors.baseline: distanceCaption.baseline
            text: control.number(control.source ? control.source.distance : 0, 2) + (control.source ? " m" : "")
        }
    }

    Row {
        spacing: 5

        ReadingLabel {
            id: pointsCaption

            text: qsTranslate("SlamView", "Points:")
        }

        ReadingLabel {
            objectName: "pointsLabel"
            anchors.baseline: pointsCaption.baseline
            text: control.pointCount === null ? " - " : control.pointCount
        }
    }

    CheckBox {
        objectName: "edgeEnabledCheckBox"
        visible: false
        text: control.bothSources ? qsTranslate("SlamView", "Edge enabled") : qsTranslate("SlamView", "Enabled")
        checked: control.edge ? control.edge.enabled : false
    }

    CheckBox {
        objectName: "mixedEnabledCheckBox"
        visible: false
        text: control.bothSources ? qsTranslate("SlamView", "Mixed enabled") : qsTranslate("SlamView", "Enabled")
        checked: control.slam ? control.slam.enabled : false
    }

    Row {
        spacing: 5

        Button {
            objectName: "clearButton"
            text: qsTranslate("SlamView", "Clear")
            onClicked: control.clear()
        }

        Button {
            objectName: "resetButton"
            text: qsTranslate("SlamView", "Reset")
            onClicked: control.reset()
        }
    }
}
