import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13

// Accelerometer, gyroscope and magnetometer as bars.
DisplayItem {
    id: control

    property var camera: null

    readonly property var imu: camera && camera.imu ? camera.imu : null

    // What the read-out and the buttons take at the top.
    readonly property real headHeight: Math.max(infoLabel.y + infoLabel.height, buttonsBottom)

    StreamLabel {
        id: infoLabel
        objectName: "infoLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: control.imu ? "[IMU]  @" + control.imu.dataFrameRate.toFixed(0) + "fps" : ""
    }

    RowLayout {
        objectName: "axes"
        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.max(control.headHeight, (parent.height - height) / 2)
        width: Math.min(parent.width - 10, 500)
        // A low view spends the room that the middle would leave below.
        height: Math.min(Math.max(parent.height - 2 * control.headHeight, Math.min(parent.height - control.headHeight - 5, 120)), 400)
        spacing: 5

        ImuAxisView {
            objectName: "accelView"
            title: qsTr("Accel [g]")
            minimumValue: -2.5
            maximumValue: 2.5
            factor: 1 / 9.81
            axis: control.imu ? control.imu.accel : null
            Layout.fillWidth: true
            Layout.fillHeight: true
        }

        ImuAxisView {
            objectName: "gyroView"
            title: qsTr("Gyro [rad/s]")
            minimumValue: -20
            maximumValue: 20
            axis: control.imu ? control.imu.gyro : null
            Layout.fillWidth: true
            Layout.fillHeight: true
        }

        ImuAxisView {
            objectName: "magnView"
            title: qsTr("Magn")
            minimumValue: -200
            maximumValue: 200
            axis: control.imu ? control.imu.magn : null
            visible: control.width > 300
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: 0.5
        visible: settingsPage.visible
    }

    ToolButton {
        id: settingsButton
        anchors { bottom: parent.bottom; right: parent.right }
        checkable: true
        visible: false
        icon.source: "qrc:/images/settings"
    }

    Column {
        id: settingsPage
        anchors.centerIn: parent
        visible: settingsButton.checked && settingsButton.visible

        Label {
            text: qsTr("IMU Mode")
        }

        ComboBox {
            id: imumodeComboBox
            textRole: "text"
            currentIndex: 1
            // List elements, since an array would fall back to its first entry when the language changes.
            model: ListModel {
                ListElement { text: qsTr("VSlam only"); value: 0 }
                ListElement { text: qsTr("VSlam+IMU"); value: 1 }
                ListElement { text: qsTr("IMU only"); value: 2 }
                ListElement { text: qsTr("Fusion on host"); value: 4 }
            }
            onCurrentIndexChanged: {
                if (currentIndex >= 0 && control.imu)
                    control.imu.mode = model.get(currentIndex).value
            }
        }
    }
}
