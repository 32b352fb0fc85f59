import QtQuick 2.13
import QtQuick.Controls 2.13

// A small switch with its caption on the left.
Row {
    id: control

    property alias caption: label.text
    property alias checked: toggle.checked

    spacing: 5

    Label {
        id: label
        anchors.verticalCenter: parent.verticalCenter
    }

    CustomSwitch {
        id: toggle
    }
}
