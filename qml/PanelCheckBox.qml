import QtQuick 2.13
import QtQuick.Controls 2.13

// A check box that shrinks towards the left edge of its row.
CheckBox {
    height: 40
    leftPadding: 0
    transformOrigin: Item.Left
}
