import QtQuick 2.13
import QtQuick.Controls 2.13

// Numbers in rows of three, behind a white bar.
Row {
    id: control

    property var numbers: []

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
            model: control.numbers

            Label {
                text: modelData.toFixed(5)
            }
        }
    }
}
