import QtQuick 2.13
import QtQuick.Controls 2.13

// The versions of the library and of the viewer.
Page {
    id: control

    property string sdkversion: ""
    property string viewerversion: ""

    visible: false
    title: qsTr("Device version")

    function open() {
        visible = true
    }

    function close() {
        visible = false
    }

    header: DialogHeader {
        title: control.title
        onQuit: control.close()
    }

    Grid {
        rows: 2
        columns: 2
        verticalItemAlignment: Grid.AlignVCenter

        Label {
            objectName: "sdkversionLabel"
            leftPadding: 15
            text: control.sdkversion
        }

        CopyButton {
            id: copySdkVersion
            objectName: "copySdkVersion"
            value: qv_sdk_version
            hint: qsTr("Copied")
        }

        Label {
            objectName: "viewerversionLabel"
            leftPadding: 15
            text: control.viewerversion
        }

        CopyButton {
            objectName: "copyViewerVersion"
            value: version
            hint: qsTr("Copied")
            hintButton: copySdkVersion
        }
    }
}
