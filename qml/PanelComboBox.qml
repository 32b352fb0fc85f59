import QtQuick 2.13

// The panel's combo box, shrunk towards the right edge of its row. `isListModel` lists keep their index when the
// language changes.
CustomComboBox {
    transformOrigin: Item.Right
    textRole: "name"
}
