import QtQuick 2.13

// The panel's combo box, shrunk towards the right edge of its row. `isListModel` lists keep their index when the
// language changes; the text on show has to be asked for again.
CustomComboBox {
    transformOrigin: Item.Right
    textRole: "name"
    displayText: isListModel && currentIndex >= 0 && currentIndex < count ? model.get(currentIndex).name : currentText
}
