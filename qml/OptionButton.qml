import QtQuick 2.13
import QtQuick.Controls 2.13

// A switch among a view's options: white while it is on, gray while it is off.
ToolButton {
    implicitWidth: 48
    implicitHeight: 48
    checkable: true
    icon.color: checked ? "white" : "gray"

    // Its sign stays legible over any picture.
    Rectangle {
        z: -1
        anchors { fill: parent; margins: 8 }
        color: "#0e1418"
        opacity: 0.55
        radius: 3
    }
}
