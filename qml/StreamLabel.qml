import QtQuick 2.13
import QtQuick.Controls 2.13

// White words that stay legible over any picture.
Label {
    id: control

    padding: 4
    leftPadding: 8
    rightPadding: 8
    color: "white"
    wrapMode: Text.Wrap

    // No wider than the words, whatever room they have.
    background: Rectangle {
        width: control.contentWidth + control.leftPadding + control.rightPadding
        visible: control.text !== ""
        color: "#0e1418"
        opacity: 0.55
        radius: 3
    }
}
