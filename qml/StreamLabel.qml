import QtQuick 2.13
import QtQuick.Controls 2.13

// White words that stay legible over any picture.
Label {
    id: control

    // The width that the view leaves to the words; 0 for as much as they need.
    property real room: 0
    readonly property int fullSize: 14
    readonly property real availableWidth: room > 0 ? room - leftPadding - rightPadding : Infinity

    width: room > 0 ? room : undefined
    padding: 4
    leftPadding: 8
    rightPadding: 8
    color: "white"
    // A narrow view takes smaller letters before a word breaks.
    font.pixelSize: longestWord.advanceWidth > availableWidth + 1
                    ? Math.max(9, Math.floor(fullSize * availableWidth / longestWord.advanceWidth)) : fullSize
    wrapMode: Text.Wrap

    TextMetrics {
        id: longestWord
        font.family: control.font.family
        font.weight: control.font.weight
        font.pixelSize: control.fullSize
        text: control.text.split(" ").reduce(function(longest, word) {
            return word.length > longest.length ? word : longest
        }, "")
    }

    // No wider than the words, whatever room they have.
    background: Rectangle {
        width: control.contentWidth + control.leftPadding + control.rightPadding
        height: control.height
        visible: control.text !== ""
        color: "#0e1418"
        opacity: 0.55
        radius: 3
    }
}
