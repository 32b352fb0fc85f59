import QtQuick 2.13
import QtQuick.Controls 2.13

// A switch at the right edge of the row, its caption at the left.
CustomSwitch {
    id: control

    property alias caption: label.text
    property int switchWidth: 51

    width: parent ? parent.width : 0
    height: 36
    leftPadding: width - switchWidth

    Label {
        id: label

        width: control.leftPadding
        anchors.verticalCenter: parent.verticalCenter
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 7
        elide: Text.ElideRight
    }
}
