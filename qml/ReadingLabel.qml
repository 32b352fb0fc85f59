import QtQuick 2.13
import QtQuick.Controls 2.13

// One word or number among a view's readings.
Label {
    font.pointSize: 10
}
