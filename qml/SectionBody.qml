import QtQuick 2.13

// The rows of a section, one under the other, indented under its head.
Column {
    property int indent: 15

    x: indent
    width: parent ? parent.width - indent - 12 : 0
    bottomPadding: 6
    spacing: 2
}
