import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Window 2.13

// The window and its splash film. The main page takes the film's place when the film has ended.
ApplicationWindow {
    id: window

    property bool fullscreen: false
    property bool isHeaderHovered: false

    visible: true
    minimumWidth: 640
    minimumHeight: 480
    width: 1024
    height: 800
    title: qsTr("QVSDK Viewer")
    visibility: Window.Maximized
    // No binding: with each choice of a language all bindings are made anew, and the window would grow.
    onFullscreenChanged: visibility = fullscreen ? Window.FullScreen : Window.Maximized

    function create() {
        var component = Qt.createComponent("main.qml")
        if (component.status === Component.Ready) {
            component.createObject(window, { x: 0, y: 0 })
            loader.sourceComponent = undefined
        } else {
            console.error(component.errorString())
        }
    }

    Component.onCompleted: {
        if (Qt.platform.os === "android")
            window.create()
    }

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: window.fullscreen = !window.fullscreen
    }

    Loader {
        id: loader
        objectName: "loader"
        anchors.fill: parent
        sourceComponent: imgCom
    }

    Component {
        id: imgCom

        AnimatedImage {
            objectName: "film"
            anchors.fill: parent
            source: "qrc:/images/start"
            fillMode: Image.PreserveAspectCrop
            cache: false
            visible: Qt.platform.os !== "android"

            onStatusChanged: playing = (status === AnimatedImage.Ready)
            onCurrentFrameChanged: {
                if (currentFrame === frameCount - 1) {
                    paused = true
                    visible = false
                    window.create()
                }
            }
        }
    }
}
