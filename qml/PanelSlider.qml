import QtQuick 2.13
import QtQuick.Controls 2.13

// A slider between its caption and its value.
Slider {
    id: control

    property alias caption: label.text
    property string unit
    property int decimals: 0
    property int captionWidth: 125
    property int valueWidth: 40

    width: parent ? parent.width : 0
    height: 36
    leftPadding: captionWidth + 6
    rightPadding: valueWidth + 8

    Label {
        id: label

        width: control.captionWidth
        anchors.verticalCenter: parent.verticalCenter
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 7
        elide: Text.ElideRight
    }

    Label {
        objectName: "valueLabel"
        width: control.valueWidth
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        horizontalAlignment: Text.AlignRight
        text: control.value.toFixed(control.decimals) + control.unit
    }
}
