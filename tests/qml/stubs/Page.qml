import QtQuick 2.13
import QtQuick.Controls 2.13

// In the place of a device's page: as light as can be.
Item {
    property var camera: null
    property int topMargin: 0
    property alias cameraDrawer: drawer
    property string mark: ""

    objectName: "page"

    Popup {
        id: drawer
        width: 50
        height: 50
        closePolicy: Popup.NoAutoClose
        z: -1
    }
}
