import QtQuick 2.13
import QtQuick.Controls 2.13

// An editable spin box, 0.6 of the row wide, with its caption at the right.
SpinBox {
    id: control

    property alias caption: label.text
    readonly property real rowWidth: parent ? parent.width : 0

    width: 0.6 * rowWidth
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
