import QtQuick 2.13
import QtQuick.Controls 2.13

// A few words that fade in above a button of a row, and out again.
Popup {
    id: control

    property string text: ""
    // The row that shows the button; null while it is hidden.
    property Item row: null
    property Item button: null

    readonly property real widthBeyond: row ? Math.abs(button.width - words.contentWidth) : 0

    x: row ? row.x + button.x - widthBeyond : 0
    y: row ? row.y - height : 0
    width: row ? Math.max(button.width, words.contentWidth) : 0
    height: row ? words.contentHeight : 0
    modal: false
    padding: 0
    // A popup that Escape closes holds off the window's shortcuts while it stands.
    closePolicy: Popup.CloseOnPressOutside

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 250 }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 250 }
    }

    contentItem: Text {
        id: words

        objectName: "words"
        text: control.text
        color: "white"
        horizontalAlignment: Text.AlignHCenter
    }
}
