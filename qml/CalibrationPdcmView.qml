import QtQuick 2.13
import QtQuick.Controls 2.13

// The parameters of one camera model with polynomial distortion.
Row {
    id: control

    property var pdcm

    spacing: 8

    Rectangle {
        width: 3
        height: column.height
        color: "white"
    }

    Column {
        id: column

        Grid {
            columns: 3
            columnSpacing: 15

            Repeater {
                model: ["w", "h", "fx", "fy", "u0", "v0"]

                Label {
                    text: control.pdcm && modelData in control.pdcm ? modelData + ": " + control.pdcm[modelData].toFixed(5) : ""
                }
            }
        }

        Row {
            spacing: 6

            Label {
                text: "distor: ["
            }

            Repeater {
                model: control.pdcm && "distor" in control.pdcm ? control.pdcm["distor"] : []

                Label {
                    text: modelData.toFixed(5)
                }
            }

            Label {
                text: "]"
            }
        }
    }
}
