import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Controls.impl 2.13
import QtQuick.Layouts 1.13

// Versions, the device's own information and the features it offers.
Page {
    id: control

    property var infos
    property string infoversion: ""

    visible: false
    title: qsTr("Info")

    function open() {
        visible = true
    }

    function close() {
        visible = false
    }

    onInfosChanged: {
        console.debug(JSON.stringify(infos, null, 2))
        var known = infos || {}
        if ("version" in known)
            infoversion = known["version"]
        infoModel.clear()
        for (var key in known) {
            if (typeof known[key] === "string")
                infoModel.append({ name: key, value: known[key] })
        }
        featuresModel.clear()
        var features = known["features"] || {}
        for (var feature in features)
            featuresModel.append({ name: feature, value: features[feature] === true })
    }

    ListModel {
        id: infoModel
    }

    ListModel {
        id: featuresModel
    }

    header: DialogHeader {
        title: control.title
        onQuit: control.close()
    }

    contentItem: Flickable {
        objectName: "flickable"
        implicitWidth: 1.1 * layout.implicitWidth
        implicitHeight: 0.8 * layout.implicitHeight
        contentWidth: width
        contentHeight: layout.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: layout
            objectName: "layout"
            x: (parent.width - width) / 2
            width: parent.width / 1.1
            spacing: 0

            RowLayout {
                spacing: 10

                Label {
                    text: "Viewer version: "
                    font.bold: true
                    font.capitalization: Font.Capitalize
                }

                Label {
                    text: version
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Layout.preferredWidth: Qt.platform.os === "android" ? 100 : -1
                }

                CopyButton {
                    objectName: "copyViewerVersion"
                    scale: 0.9
                    value: version
                    hint: qsTr("Copied")
                }
            }

            RowLayout {
                spacing: 10

                Label {
                    text: "QVSDK version: "
                    font.bold: true
                    font.capitalization: Font.Capitalize
                }

                Label {
                    text: qv_sdk_version
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Layout.preferredWidth: Qt.platform.os === "android" ? 100 : -1
                }

                CopyButton {
                    objectName: "copySdkVersion"
                    value: qv_sdk_version
                    hint: qsTr("Copied")
                }
            }

            Repeater {
                objectName: "infoRows"
                model: infoModel

                RowLayout {
                    spacing: 10

                    Label {
                        text: qsTr(model.name)
                        font.bold: true
                        font.capitalization: Font.Capitalize
                    }

                    Label {
                        text: model.value
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                        Layout.preferredWidth: Qt.platform.os === "android" ? 100 : -1
                    }

                    CopyButton {
                        objectName: "copyValue"
                        value: model.value
                        hint: qsTr("Copied")
                    }
                }
            }

            Repeater {
                objectName: "featureRows"
                model: featuresModel

                RowLayout {
                    spacing: 10

                    Label {
                        text: qsTr(model.name)
                        font.bold: true
                        font.capitalization: Font.Capitalize
                        Layout.fillWidth: true
                    }

                    CheckBox {
                        id: featureBox
                        objectName: "featureBox"
                        implicitWidth: 40
                        implicitHeight: 40
                        focusPolicy: Qt.NoFocus
                        tristate: true
                        checkState: model.value ? Qt.Checked : Qt.PartiallyChecked

                        indicator: Rectangle {
                            x: (featureBox.width - width) / 2
                            y: (featureBox.height - height) / 2
                            width: 28
                            height: 28
                            color: "transparent"

                            ColorImage {
                                objectName: "checkMark"
                                anchors.centerIn: parent
                                source: "qrc:/images/check"
                                color: "white"
                                visible: featureBox.checkState === Qt.Checked
                            }

                            Rectangle {
                                objectName: "missingBar"
                                anchors.centerIn: parent
                                width: 16
                                height: 3
                                color: "white"
                                visible: featureBox.checkState === Qt.PartiallyChecked
                            }
                        }

                        // Shows what the device offers; it isn't for the user to change.
                        MouseArea {
                            anchors.fill: parent
                        }
                    }
                }
            }
        }
    }
}
