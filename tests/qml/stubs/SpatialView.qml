import QtQuick 2.13
import "qrc:/"

// In the place of a 3D view: its properties without its scene.
DisplayItem {
    property var camera: null
    property bool sourceChecked: false
    property int planesSourceIndex: -1
    property bool isMultiSlamShow: false
}
