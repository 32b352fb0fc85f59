import QtQuick 2.13
import QtQuick.Controls 2.13

// An editable spin box with its caption at the right, in the rest of the row.
SpinBox {
    id: control

    property alias caption: label.text
    readonly property real rowWidth: parent ? parent.width : 0

    height: 40
    editable: true

    Label {
        id: label

        x: control.width
        width: control.rowWidth - x
        anchors.verticalCenter: parent.verticalCenter
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 7
        elide: Text.ElideRight
    }
}
