import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13

// A terminal for raw commands to the device. The document that holds it says which `camera`.
Flickable {
    id: control

    height: 600
    contentHeight: layout.implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    clip: true

    function send() {
        editReceive.append(camera.sendHid(editSend.text))
    }

    Timer {
        id: glasstimer
        objectName: "glasstimer"
        interval: 1
        repeat: true
        running: glassLogButton.checked
        onTriggered: {
            var log = camera.getGlassLog()
            if (log !== "")
                editReceive.append(log)
        }
    }

    Timer {
        id: timer
        objectName: "timer"
        interval: spinbox.value
        repeat: true
        running: repeatSend.checked
        onTriggered: control.send()
    }

    ColumnLayout {
        id: layout
        x: control.height / 20
        width: control.width - x

        Text {
            text: qsTr("Received Data")
            color: "white"
        }

        Rectangle {
            color: "#3E4D59"
            border.color: "#d7cfcf"
            Layout.preferredWidth: 0.9 * control.width
            Layout.preferredHeight: control.height / 3

            ScrollView {
                anchors.fill: parent
                anchors.margins: 5
                clip: true
                contentWidth: availableWidth
                ScrollBar.horizontal.policy: ScrollBar.AlwaysOff

                TextEdit {
                    id: editReceive
                    objectName: "editReceive"
                    width: parent.width
                    color: "white"
                    selectByMouse: true
                    wrapMode: TextEdit.Wrap
                }
            }
        }

        Row {
            spacing: 10

            Button {
                objectName: "clearButton"
                text: qsTr("Clear")
                onClicked: editReceive.clear()
            }

            Button {
                id: glassLogButton
                objectName: "glassLogButton"
                text: qsTr("Glass Log")
                checkable: true
            }
        }

        Text {
            text: qsTr("Send Data")
            color: "white"
        }

        Rectangle {
            color: "#3E4D59"
            border.color: "#d7cfcf"
            Layout.preferredWidth: 0.9 * control.width
            Layout.preferredHeight: control.height / 3

            Flickable {
                id: flick
                anchors.fill: parent
                anchors.margins: 5
                contentWidth: width
                contentHeight: editSend.implicitHeight
                boundsBehavior: Flickable.StopAtBounds
                clip: true

                function ensureVisible(r) {
                    if (contentY >= r.y)
                        contentY = r.y
                    else if (contentY + height <= r.y + r.height)
                        contentY = r.y + r.height - height
                }

                TextEdit {
                    id: editSend
                    objectName: "editSend"
                    width: flick.width
                    height: Math.max(flick.height, implicitHeight)
                    color: "white"
                    focus: true
                    selectByMouse: true
                    wrapMode: TextEdit.Wrap
                    onCursorRectangleChanged: flick.ensureVisible(cursorRectangle)
                    Keys.onReturnPressed: control.send()
                }
            }
        }

        Row {
            spacing: 10

            Button {
                objectName: "sendButton"
                text: qsTr("Send")
                onClicked: control.send()
            }

            CheckBox {
                id: repeatSend
                objectName: "repeatSend"
                text: "Repeat Send"
            }
        }

        Row {
            objectName: "intervalRow"
            spacing: 10
            visible: repeatSend.checked

            SpinBox {
                id: spinbox
                objectName: "spinbox"
                from: 100
                to: 60000
                value: 1000
                stepSize: 100
                editable: true
            }

            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("ms")
                color: "white"
            }
        }
    }
}
