import QtQuick 2.13
import QtQuick.Controls 2.13

// The parameters of one unified camera model.
Row {
    id: control

    property var ucm

    spacing: 8

    Rectangle {
        width: 3
        height: grid.height
        color: "white"
    }

    Grid {
        id: grid
        columns: 3
        columnSpacing: 15

        Repeater {
            model: ["w", "h", "fx", "fy", "u0", "v0", "xi"]

            Label {
                text: control.ucm && modelData in control.ucm ? modelData + ": " + control.ucm[modelData].toFixed(5) : ""
            }
        }
    }
}
