import QtQuick 2.13
import QtQuick.Controls 2.13

// A number with its caption on the right.
Row {
    id: control

    property alias caption: label.text
    property alias from: spinBox.from
    property alias to: spinBox.to
    property alias stepSize: spinBox.stepSize
    property alias value: spinBox.value

    spacing: 5

    SpinBox {
        id: spinBox
        editable: true
    }

    Label {
        id: label
        anchors.verticalCenter: parent.verticalCenter
    }
}
