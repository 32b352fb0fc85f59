import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13

// The coloured head of a dialog: its title, and a button that asks to leave.
ToolBar {
    id: control

    property alias title: titleLabel.text

    signal quit()

    Shortcut {
        sequence: StandardKey.Cancel
        enabled: control.visible
        onActivated: control.quit()
    }

    background: Rectangle {
        implicitHeight: 40
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0.0; color: "#02f1d3" }
            GradientStop { position: 1.0; color: "#0e90e7" }
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 5

        Label {
            id: titleLabel
            objectName: "titleLabel"
            color: "black"
        }

        Item {
            Layout.fillWidth: true
        }

        ToolButton {
            objectName: "clearButton"
            implicitWidth: 40
            implicitHeight: 40
            icon.source: "qrc:images/clear"
            icon.color: "white"
            onClicked: control.quit()
        }
    }
}
