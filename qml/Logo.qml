import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Particles 2.13
import QtGraphicalEffects 1.13

// Waiting screen: the logo glows and sheds dots that flee from the mouse.
Item {
    id: control

    property bool busy: true
    property bool ready: false

    Timer {
        interval: 150
        running: true
        onTriggered: control.ready = true
    }

    MouseArea {
        id: mouseArea
        anchors.fill: parent
        hoverEnabled: control.busy
    }

    Image {
        id: logo
        objectName: "logo"
        anchors.centerIn: parent
        width: 0.3 * parent.width
        source: "qrc:images/logo"
        sourceSize.width: Math.max(1, width)
        fillMode: Image.PreserveAspectFit
    }

    ParticleSystem {
        id: particleSystem
        anchors.fill: logo

        ImageParticle {
            objectName: "dots"
            groups: ["dot"]
            source: "qrc:/images/dot"
            color: "#02cece"
            colorVariation: 0.3
        }

        Repeater {
            model: [
                { offset: -10, ratio: 0.3 },
                { offset: 0, ratio: 0.45 },
                { offset: 10, ratio: 0.60 },
                { offset: 0, ratio: 0.75 },
                { offset: -10, ratio: 0.90 }
            ]

            Item {
                Emitter {
                    id: emitter
                    objectName: "emitter" + index
                    system: particleSystem
                    group: "dot"
                    enabled: control.ready && control.busy
                    x: 5 + modelData.offset
                    y: modelData.ratio * logo.height
                    width: 5
                    height: 5
                    emitRate: 1
                    lifeSpan: 2000
                    lifeSpanVariation: 500
                    size: logo.height / 6
                    velocity: PointDirection { x: -45 }
                }

                Timer {
                    interval: 2000
                    repeat: true
                    running: true
                    triggeredOnStart: true
                    onTriggered: emitter.emitRate = 1 + Math.random()
                }
            }
        }

        Attractor {
            objectName: "attractor"
            anchors.fill: parent
            system: particleSystem
            pointX: mouseArea.mouseX - logo.x
            pointY: mouseArea.mouseY - logo.y
            strength: -1000000
            affectedParameter: Attractor.Acceleration
            proportionalToDistance: Attractor.InverseQuadratic
        }
    }

    Glow {
        id: glow
        objectName: "glow"
        anchors.fill: logo
        source: logo
        radius: 8
        samples: 17
        color: "white"

        SequentialAnimation on spread {
            running: control.busy
            loops: Animation.Infinite
            NumberAnimation { from: 0; to: 0.5; duration: 1000 }
            NumberAnimation { from: 0.5; to: 0; duration: 1000 }
        }
    }

    BusyIndicator {
        id: busyIndicator
        objectName: "busyIndicator"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: 150
        running: control.busy
    }

    Label {
        objectName: "waitingLabel"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: busyIndicator.bottom
        anchors.topMargin: 20
        visible: control.busy
        text: qsTr("Looking for Quivra camera")
    }
}
