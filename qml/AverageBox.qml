import QtQuick 2.13

// A frame on a depth picture that the user drags: the stream averages what lies in it.
Rectangle {
    id: control

    property var picture: null
    property var stream: null
    // The painter tells of a new place before it has stored the ratio that belongs to it, and tells nothing of the
    // ratio itself: it is read again once the paint is over.
    property real ratio: 0

    signal doubleClicked()

    width: 50
    height: 50
    x: picture ? picture.topLeftPoint.x + picture.sourceWidth * ratio / 2 : 0
    y: picture ? picture.topLeftPoint.y + picture.sourceHeight * ratio / 2 : 0
    color: "transparent"
    border.color: "#225022"
    border.width: 3

    function readRatio() {
        ratio = picture.imageRation
    }

    // By the painter's own ratio: the one read last may be that of the frame before.
    function sendX() {
        if (stream && picture && picture.imageRation > 0)
            stream.setCenterAvgX((x - picture.topLeftPoint.x) / picture.imageRation)
    }

    function sendY() {
        if (stream && picture && picture.imageRation > 0)
            stream.setCenterAvgY((y - picture.topLeftPoint.y) / picture.imageRation)
    }

    // Keeps the box on the picture, and tells the stream its size in pixels of the frame.
    function fit() {
        if (!visible || ratio <= 0)
            return
        mouseAreaDrag.drag.minimumX = picture.topLeftPoint.x
        mouseAreaDrag.drag.maximumX = picture.topLeftPoint.x + picture.sourceWidth * ratio - width
        mouseAreaDrag.drag.minimumY = picture.topLeftPoint.y
        mouseAreaDrag.drag.maximumY = picture.topLeftPoint.y + picture.sourceHeight * ratio - height
        if (stream) {
            stream.setCenterAvgWidth(width / ratio)
            stream.setCenterAvgHeight(height / ratio)
        }
    }

    onXChanged: sendX()
    onYChanged: sendY()
    onRatioChanged: fit()
    onVisibleChanged: {
        readRatio()
        fit()
    }

    Connections {
        target: control.picture
        function onTopLeftPointChanged() {
            control.readRatio()
            control.fit()
            Qt.callLater(control.readRatio)
        }
        function onSourceWidthChanged() {
            Qt.callLater(control.readRatio)
        }
        // Once a second, for a paint that was still under way.
        function onFpsChanged() {
            control.readRatio()
        }
    }

    MouseArea {
        id: mouseAreaDrag
        objectName: "mouseAreaDrag"
        anchors.fill: parent
        drag.target: control
        drag.axis: Drag.XAndYAxis
        onDoubleClicked: control.doubleClicked()
        drag.onActiveChanged: {
            // An assignment cuts the bindings to the middle: the box stays where it is dropped.
            if (drag.active) {
                control.x = control.x
                control.y = control.y
            }
        }
    }
}
