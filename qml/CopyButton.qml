import QtQuick 2.13
import QtQuick.Controls 2.13

// Copies `value` to the clipboard and says so for a second.
ToolButton {
    id: control

    property string value: ""
    property string hint: ""
    // The button at which the hint appears.
    property Item hintButton: control

    implicitWidth: 40
    implicitHeight: 40
    icon.source: "qrc:images/copy"

    function showHint() {
        toolTip.show(hint, 1000)
    }

    onClicked: {
        tools.copyToClipboard(value)
        hintButton.showHint()
    }

    ToolTip {
        id: toolTip
        objectName: "toolTip"
        // Escape is the dialog's.
        closePolicy: Popup.NoAutoClose
    }
}
