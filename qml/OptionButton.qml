import QtQuick 2.13
import QtQuick.Controls 2.13

// A switch among a view's options: white while it is on, gray while it is off.
ToolButton {
    implicitWidth: 48
    implicitHeight: 48
    checkable: true
    icon.color: checked ? "white" : "gray"
}
