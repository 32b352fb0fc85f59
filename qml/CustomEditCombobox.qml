import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Controls.impl 2.13
import QtQuick.Window 2.13

// The combo box of the presets: as the dark one, with a name that can be edited.
ComboBox {
    id: control

    property bool isListModel: false
    // The popup has just closed itself on a press on this box, so the click that follows must not open it again.
    property bool isClosed: false
    property real rScale: 0.8
    property alias contTxt: allSettingsText

    scale: rScale
    indicator: Item {}

    delegate: ItemDelegate {
        id: entry
        width: control.width * control.rScale
        highlighted: control.highlightedIndex === index

        contentItem: Text {
            scale: control.rScale
            text: modelData
            font: control.font
            color: "white"
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
        }

        background: Rectangle {
            color: entry.down ? "#242C33" : entry.highlighted ? "#3E4D59" : "#090B0D"
        }
    }

    contentItem: Rectangle {
        color: "transparent"
        clip: true

        TextInput {
            id: allSettingsText
            objectName: "allSettingsText"
            anchors.fill: parent
            anchors.rightMargin: rect.width
            leftPadding: 5
            text: allSettingsCombobox.displayText
            font: allSettingsCombobox.font
            color: "white"
            selectByMouse: true
            verticalAlignment: Text.AlignVCenter
        }
    }

    background: Rectangle {
        implicitWidth: 120
        implicitHeight: 40
        color: "#090B0D"
        border.color: "#586773"
        border.width: control.visualFocus ? 2 : 1

        Rectangle {
            id: rect
            objectName: "arrowBox"
            anchors.right: parent.right
            width: height
            height: parent.height
            color: mouseArea.containsMouse ? "#586773" : "#3E4D59"

            ColorImage {
                anchors.centerIn: parent
                source: "qrc:/images/triangle"
                color: "white"
                rotation: 180
            }
        }
    }

    // After a key no click is on its way that must be held off.
    Keys.onReleased: {
        Qt.callLater(function() { control.isClosed = false })
        event.accepted = false
    }

    MouseArea {
        id: mouseArea
        objectName: "arrowArea"
        x: control.width - width
        y: control.topInset
        width: rect.width
        height: rect.height
        hoverEnabled: true
        onClicked: {
            if (!control.popup.visible && !control.isClosed) {
                control.forceActiveFocus(Qt.MouseFocusReason)
                control.popup.open()
            } else {
                control.popup.close()
                control.isClosed = false
            }
        }
    }

    popup: Popup {
        y: control.height - 5
        width: control.width * control.rScale
        height: Math.min(contentItem.implicitHeight + 2, control.Window.height - topMargin - bottomMargin)
        topMargin: 12
        bottomMargin: 12
        padding: 1

        onAboutToHide: {
            if (mouseArea.containsMouse)
                control.isClosed = true
        }

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.popup.visible ? control.delegateModel : null
            currentIndex: control.highlightedIndex
            ScrollIndicator.vertical: ScrollIndicator {}
        }

        background: Rectangle {
            color: "#090B0D"
        }
    }
}
