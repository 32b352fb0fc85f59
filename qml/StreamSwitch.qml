import QtQuick 2.13
import QtQuick.Controls 2.13

// The switch of one stream. While `ready` is false the model is settling: the switch then keeps its state, however it
// is pressed. `clicked` is emitted all the same, so handlers test the model before they call it.
CustomSwitch {
    id: control

    property bool ready: true
    property bool compact: false
    property bool checkedAtPress: false

    checkable: ready
    checked: false
    font.pointSize: compact ? 6 : 11

    onPressed: checkedAtPress = checked
    onReleased: {
        if (ready)
            return
        // Dragging the knob moves it although `checkable` is false, and makes the switch checkable again.
        checked = checkedAtPress
        checkable = Qt.binding(function() { return control.ready })
    }
}
