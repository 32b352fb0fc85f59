import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Controls.impl 2.13

// A heading that folds and unfolds what follows it.
Rectangle {
    id: control

    property bool checked: false
    property string text: ""

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    color: mouseArea.containsMouse ? "#33717171" : "transparent"

    Row {
        id: row

        ColorImage {
            id: dropIndicator
            objectName: "dropIndicator"
            source: "qrc:/qt-project.org/imports/QtQuick/Controls.2/Material/images/drop-indicator.png"
            color: "white"
            rotation: control.checked ? 0 : 270
        }

        Item {
            // The row's own spacing can't be negative for one neighbour only.
            width: label.implicitWidth - 5
            height: Math.max(dropIndicator.height, label.implicitHeight + 2)

            Label {
                id: label
                x: -5
                y: 2
                height: parent.height - y
                verticalAlignment: Text.AlignVCenter
                text: control.text
                color: "white"
            }
        }
    }

    MouseArea {
        id: mouseArea
        anchors.fill: parent
        hoverEnabled: true
        onClicked: control.checked = !control.checked
    }
}
