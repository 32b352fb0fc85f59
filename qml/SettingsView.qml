import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import Qt.labs.platform 1.1 as Platform
import Qt.labs.settings 1.0

// The options of one device, and the language of the interface.
Page {
    id: control

    property var camera: null

    signal quit()

    title: qsTr("Options")
    padding: 15

    header: DialogHeader {
        title: control.title
        onQuit: control.quit()
    }

    Settings {
        category: "Settings"
        property alias cnnModelDescriptor: cnnModelDescriptor.model
    }

    Platform.FileDialog {
        id: fileDialog
        objectName: "fileDialog"
        folder: tools.fileExists(cnnModelDescriptor.model)
                ? tools.folderUrl(cnnModelDescriptor.model)
                : Platform.StandardPaths.writableLocation(Platform.StandardPaths.DocumentsLocation)
        onAccepted: cnnModelDescriptor.model = file
    }

    GridLayout {
        columns: 2
        columnSpacing: 20

        Label {
            text: qsTr("Enable Sync")
        }

        CheckBox {
            objectName: "enableSyncCheckbox"
            checked: false
            enabled: control.camera !== null
            onCheckedChanged: control.camera.enableSync(checked)
        }

        Label {
            text: qsTr("Enable CNN")
        }

        CheckBox {
            id: enableCNNCheckbox
            objectName: "enableCNNCheckbox"
            checked: false
            enabled: control.camera !== null && control.camera.objects !== null
            onCheckedChanged: {
                if (checked)
                    control.camera.objects.setModelDescriptor(tools.filepath(cnnModelDescriptor.model))
                control.camera.objects.setEnabled(checked)
            }
        }

        Label {
            text: qsTr("CNN model descriptor")
        }

        RowLayout {
            TextField {
                id: cnnModelDescriptor
                objectName: "cnnModelDescriptor"

                property url model

                readOnly: true
                text: focus ? tools.filepath(model) : tools.filename(model)
                onModelChanged: {
                    if (enableCNNCheckbox.checked)
                        control.camera.objects.setModelDescriptor(tools.filepath(model))
                }
                Layout.minimumWidth: 200
            }

            ToolButton {
                icon.source: "qrc:images/save"
                onClicked: fileDialog.open()
            }
        }

        Label {
            text: qsTr("IMU Offset")
        }

        RowLayout {
            SpinBox {
                objectName: "imuOffset"
                editable: true
                value: 0
                from: -100000
                to: 100000
                stepSize: 100
                onValueChanged: control.camera.imu.offset = value
            }

            Label {
                text: qsTr("µs")
            }
        }

        Label {
            text: qsTr("Edge Prediction")
        }

        RowLayout {
            SpinBox {
                objectName: "edgePrediction"
                editable: true
                value: 0
                from: -100000
                to: 100000
                stepSize: 100
                onValueChanged: control.camera.edge.prediction = value
            }

            Label {
                text: qsTr("µs")
            }
        }

        Label {
            text: qsTr("Language")
        }

        ComboBox {
            id: combobox
            objectName: "languageCombobox"
            model: ["English", "简体中文", "日本語"]
            currentIndex: mainSettings.currentLanguageIndex
            onActivated: {
                mainSettings.currentLanguageIndex = index
                TranslateController.loadLanguage(index)
            }
            // The page ends at the box's lower edge: its list has room above only.
            Component.onCompleted: popup.y = Qt.binding(function() { return -popup.height })
        }
    }
}
