import QtQuick 2.13
import QtQuick.Controls 2.13

// A small switch that says its state beside it.
Switch {
    id: control

    property string onText: "on"
    property string offText: "off"

    readonly property real ratio: 0.4

    indicator: Rectangle {
        x: control.leftPadding
        y: (control.height - height) / 2
        implicitWidth: 48 * control.ratio
        implicitHeight: 26 * control.ratio
        radius: 13
        color: control.checked ? "#409EFF" : "transparent"
        border.color: control.checked ? "transparent" : "#F56C6C"

        Rectangle {
            objectName: "knob"
            x: control.checked ? parent.width - width : 0
            width: 26 * control.ratio
            height: 26 * control.ratio
            radius: width / 2
            color: control.checked ? "#3E4D59" : "transparent"
            border.color: control.checked ? "#409EFF" : "#F56C6C"
        }
    }

    contentItem: Text {
        leftPadding: control.indicator.width + control.spacing
        text: control.checked ? control.onText : control.offText
        font: control.font
        color: control.checked ? "#409EFF" : "#F56C6C"
        opacity: control.enabled ? 1.0 : 0.3
        verticalAlignment: Text.AlignVCenter
    }
}
