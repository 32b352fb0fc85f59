import QtQuick 2.13
import QtQuick.Controls 2.13

// A caption at the left and whatever it belongs to at the right edge.
Item {
    id: row

    default property alias controls: slot.data
    property alias caption: label.text
    property int captionWidth: 125
    property int indent: 0
    readonly property alias captionTextWidth: label.implicitWidth

    width: parent ? parent.width : 0
    height: 40

    Label {
        id: label

        x: row.indent
        width: row.captionWidth
        anchors.verticalCenter: parent.verticalCenter
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 7
        elide: Text.ElideRight
    }

    Row {
        id: slot

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6
    }
}
