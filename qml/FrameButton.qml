import QtQuick 2.13
import QtQuick.Controls 2.13

// A small button in the corner of a view, above whatever the view shows.
ToolButton {
    id: control

    property string hint: ""
    // While something else is shown where the hint would stand.
    property bool quiet: false

    z: 10
    width: 32
    height: 32
    padding: 4
    icon.width: 20
    icon.height: 20
    hoverEnabled: true

    ToolTip.visible: hovered && !quiet
    ToolTip.delay: 500
    ToolTip.text: hint

    // White signs stay legible over bright pictures.
    Rectangle {
        z: -1
        anchors { fill: parent; margins: 2 }
        color: "#0e1418"
        opacity: 0.55
        radius: 3
    }
}
