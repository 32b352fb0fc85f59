import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import Qt.labs.platform 1.1 as Platform

// A file of the object detector: its name in a read-only field, its whole path while the field has focus, and a button
// that picks another one.
Column {
    id: row

    property url model
    property alias caption: label.text
    property alias field: field
    property alias text: field.text
    property alias readOnly: field.readOnly
    property int indent: 0

    /// A file was picked; `model` already holds it.
    signal picked()

    function open() {
        dialog.open()
    }

    width: parent ? parent.width : 0
    leftPadding: indent

    Label {
        id: label

        width: row.width - row.indent
        elide: Text.ElideRight
    }

    RowLayout {
        width: row.width - row.indent
        spacing: 0

        TextField {
            id: field

            Layout.fillWidth: true
            Layout.minimumWidth: 200
            readOnly: true
            selectByMouse: true
            text: activeFocus ? tools.filepath(row.model) : tools.filename(row.model)
        }

        ToolButton {
            icon.source: "qrc:images/save"
            onClicked: row.open()
        }
    }

    Platform.FileDialog {
        id: dialog
        objectName: "dialog"

        folder: tools.fileExists(row.model)
                ? tools.folderUrl(row.model)
                : Platform.StandardPaths.writableLocation(Platform.StandardPaths.DocumentsLocation)
        onAccepted: {
            row.model = file
            row.picked()
        }
    }
}
