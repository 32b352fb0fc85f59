import QtQuick 2.13
import QtQuick.Controls 2.13

// A button of the tool bar, as high as the bar, with its purpose as a tool tip.
ToolButton {
    id: control

    property string hint: ""

    implicitWidth: 44
    implicitHeight: 40
    hoverEnabled: true

    ToolTip.visible: hovered && hint !== ""
    ToolTip.delay: 500
    ToolTip.text: hint
}
