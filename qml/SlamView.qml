import QtQuick 2.13
import QtQuick.Controls 2.13
import QtQuick.Layouts 1.13
import QtQuick.Scene3D 2.13
import QtQuick.Extras 1.4
import Qt.labs.settings 1.1

// The device's way through space with the map and the planes, readings over it, and the map's controls.
DisplayItem {
    id: control

    property var camera: null
    property bool isedge: false
    property bool sourceChecked: true
    property int planesSourceIndex: 0
    // A reset is under way: poses at zero stay out of the path until another one comes.
    property bool isReset: false
    property bool isLoadMap: false
    // The `SlamData` that was last asked to save its map. A property of this type becomes null when its object goes.
    property QtObject savingSlam: null
    property bool isMultiSlamShow: true
    property real rootRatio2: valueControl.width / control.width
    property real rootRatio3: 0.8 - col.width / control.width
    property int slamPoseCount: 0
    property int edgePoseCount: 0

    readonly property int maximumPathLength: 100000
    readonly property int posesPerDrawing: 50
    // In a narrow view the buttons and the mode take the whole row.
    readonly property int percentWidth: isLoadMap && slamSourceButton.checked ? 170 : 0
    readonly property bool hasRoomForCaptions: width >= 460 + percentWidth
    readonly property bool hasRoomForModes: width >= 340 + percentWidth
    // What would lie over something else in a small view doesn't show there.
    readonly property bool isLaidOut: width > 0 && height > 0
    readonly property bool hasRoomForButtons: !isLaidOut || (width >= 230 && height >= 200)
    readonly property bool hasRoomForReadings: {
        if (!isLaidOut)
            return true
        const right = valueControl.x + valueControl.width
        const bottom = valueControl.y + valueControl.height
        return right <= col.x && bottom <= height && (bottom <= slamSourceRow.y || right <= slamSourceRow.x)
    }
    readonly property matrix4x4 fallbackMatrix: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1)

    readonly property var slam: camera && camera.slam ? camera.slam : null
    readonly property var edge: camera && camera.edge ? camera.edge : null
    readonly property var map: camera && camera.map ? camera.map : null

    function clearPath(path, draw) {
        path.length = 0
        draw()
    }

    function clearPaths() {
        if (root.displaySlamCamera)
            clearPath(root.slamPath, root.drawSlamPath)
        if (root.displayEdgeCamera)
            clearPath(root.edgePath, root.drawEdgePath)
    }

    function resetSource(source, path, draw) {
        if (source)
            source.reset()
        path.length = 0
        isReset = true
        draw()
    }

    function resetSources() {
        if (root.displaySlamCamera)
            resetSource(slam, root.slamPath, root.drawSlamPath)
        if (root.displayEdgeCamera)
            resetSource(edge, root.edgePath, root.drawEdgePath)
    }

    // Whether a pose belongs to the path. The first one away from zero ends a reset.
    function takesPose(vector) {
        if (!isReset)
            return true
        if (vector.x === 0 && vector.y === 0 && vector.z === 0)
            return false
        isReset = false
        return true
    }

    function feedSlamPath(vector) {
        if (!takesPose(vector))
            return
        root.slamPath.push(vector)
        while (root.slamPath.length > maximumPathLength)
            root.shiftSlamPath()
        if (++slamPoseCount % posesPerDrawing === 0)
            root.drawSlamPath()
    }

    function feedEdgePath(vector) {
        if (!takesPose(vector))
            return
        root.edgePath.push(vector)
        while (root.edgePath.length > maximumPathLength)
            root.shiftEdgePath()
        if (++edgePoseCount % posesPerDrawing === 0)
            root.drawEdgePath()
    }

    function clearPlanes(source) {
        const planes = camera ? (source < 2 ? camera.planes : camera.edgePlanes) : null
        if (planes && source % 2 === 0)
            planes.clearTofPlanes()
        else if (planes)
            planes.clearStereoPlanes()
    }

    // The model restarts an overrated stream as well; this one stands beside it.
    function guardRate() {
        if (!d.slamSource || d.slamSource !== slam || slam.dataFrameRate <= 600)
            return
        console.log("dataframe too big")
        slam.control(false)
        slam.control(true)
    }

    function selectSource(edgeSelected) {
        isedge = edgeSelected
        if (slam)
            slam.enabled = !edgeSelected
        if (edge)
            edge.enabled = edgeSelected
        const selected = edgeSelected ? edge : slam
        if (selected)
            selected.control(true)
    }

    function tell(note, text) {
        note.close()
        note.text = text
        note.open()
    }

    function loadMap() {
        slam.visualOdometry()
        isLoadMap = slam.loadMap()
        if (isLoadMap)
            loadButton.text = "Stop Load Map"
        tell(loadPopup, isLoadMap ? qsTr("Load map successful") : qsTr("Load map fail"))
    }

    function stopLoadMap() {
        loadButton.text = "Load map"
        slam.visualOdometry()
        isLoadMap = false
        tell(loadPopup, qsTr("Stop load map successful"))
    }

    function saveMap() {
        savingSlam = slam
        slam.loopClosure()
        loopClosureIndicator.running = true
        loopClosureButton.done = true
        tell(loopClosurePopup, qsTr("Save map successful"))
    }

    function createMap() {
        slam.visualOdometry()
        loopClosureButton.done = false
        tell(loopClosurePopup, qsTr("Create map successful"))
    }

    function swapCameras(selector, other) {
        const camera = selector.camera
        selector.camera = other.camera
        other.camera = camera
    }

    Component.onCompleted: freeViewCheckBox.checked = false

    Settings {
        category: "SlamView"
        property alias freeView: freeViewCheckBox.checked
        property alias displayPlanes: sourceCheckbox.checked
    }

    QtObject {
        id: d

        readonly property var slamSource: {
            if (!control.camera)
                return null
            return slamSourceButton.checked || bothSourceButton.checked ? control.slam : control.edge
        }

        function planesSource(source) {
            const planes = source < 2 ? control.camera.planes : control.camera.edgePlanes
            if (!planes)
                return null
            return source % 2 === 0 ? planes.tofPlanes : planes.stereoPlanes
        }
    }

    Connections {
        target: control.slam ? control.slam.position : null
        function onVectorChanged(vector) { control.feedSlamPath(vector || control.slam.position.vector) }
    }

    Connections {
        target: control.edge ? control.edge.position : null
        function onVectorChanged(vector) { control.feedEdgePath(vector || control.edge.position.vector) }
    }

    // The ring stops also for a save that wasn't asked for here,
    Connections {
        target: control.slam
        function onLoopClosureFinished() { loopClosureIndicator.running = false }
    }

    // for one that ends while its device isn't shown here,
    Connections {
        target: control.savingSlam
        function onLoopClosureFinished() { loopClosureIndicator.running = false }
    }

    // and for one whose device goes, so that nobody tells its end.
    onSavingSlamChanged: {
        if (!savingSlam)
            loopClosureIndicator.running = false
    }

    Connections {
        target: control.edge
        function onLoopClosureFinished() { loopClosureIndicator.running = false }
    }

    Scene3D {
        id: scene3d

        objectName: "scene3d"
        anchors.fill: parent
        visible: parent.width > 0
        focus: true
        aspects: ["input", "logic"]
        cameraAspectRatioMode: Scene3D.AutomaticAspectRatio
        multisample: Qt.platform.os !== "android"

        SlamScene {
            id: root

            width: control.width
            position: d.slamSource ? d.slamSource.position.vector : Qt.vector3d(0, 0, 0)
            orientation: d.slamSource ? d.slamSource.orientation.quaternion : Qt.quaternion(0, 0, 0, 1)
            viewVector: d.slamSource ? d.slamSource.orientation.viewVector : Qt.vector3d(0, 0, 1)
            viewCenter: d.slamSource ? d.slamSource.orientation.viewCenter(d.slamSource.position.vector,
                                                                           d.slamSource.orientation.viewVector)
                                     : Qt.vector3d(0, 0, 1)
            matrix: d.slamSource ? d.slamSource.matrix : control.fallbackMatrix
            cameraMatrixFromSlam: control.slam ? control.slam.matrix : control.fallbackMatrix
            cameraMatrixFromEdge: control.edge ? control.edge.matrix : control.fallbackMatrix
            displaySlamCamera: slamSourceButton.checked || bothSourceButton.checked
            displayEdgeCamera: edgeSourceButton.checked || bothSourceButton.checked
            displayMap: mapCheckbox.checked
            freeView: freeViewCheckBox.checked
            planes: control.camera && control.sourceChecked ? d.planesSource(control.planesSourceIndex) : null
            poses: control.map ? control.map.poses : null
            pointCloud: control.map ? control.map.pointCloud : null
            ratio2: control.rootRatio2
            ratio3: control.rootRatio3
        }
    }

    MouseArea {
        objectName: "sceneArea"

        property double lastPress: 0
        property point lastPoint

        // Presses that are passed on never become a double click of this area.
        function isSecondPress(mouse) {
            const now = Date.now()
            const near = Math.max(Math.abs(mouse.x - lastPoint.x), Math.abs(mouse.y - lastPoint.y))
                         <= Qt.styleHints.startDragDistance
            const second = near && now - lastPress <= Qt.styleHints.mouseDoubleClickInterval
            lastPress = second ? 0 : now
            lastPoint = Qt.point(mouse.x, mouse.y)
            return second
        }

        anchors.fill: parent
        onDoubleClicked: control.doubleClicked()
        onPressed: {
            if (!freeViewCheckBox.checked)
                return
            // The scene below takes the drags.
            mouse.accepted = false
            if (isSecondPress(mouse))
                control.doubleClicked()
        }
    }

    MouseArea {
        objectName: "insetArea2"
        z: 100
        anchors { left: valueControl.right; top: valueControl.top }
        width: 0.2 * control.width
        height: width
        onClicked: control.swapCameras(root.viewCam, root.viewCam2)
    }

    MouseArea {
        objectName: "insetArea3"
        z: 100
        anchors { right: col.left; top: col.top }
        width: 0.2 * control.width
        height: width
        onClicked: control.swapCameras(root.viewCam, root.viewCam3)
    }

    StreamLabel {
        id: fpsLabel

        objectName: "fpsLabel"
        anchors { top: parent.top; left: parent.left; margins: 5 }
        room: control.captionWidth
        text: d.slamSource ? "[SLAM]  @" + d.slamSource.dataFrameRate.toFixed(0) + "fps" : ""
        onTextChanged: control.guardRate()
    }

    Page {
        id: valueControl

        objectName: "valueControl"
        anchors { left: parent.left; top: fpsLabel.bottom; margins: 5 }
        visible: !control.minimized

        background: Rectangle {
            color: "black"
            opacity: control.hasRoomForReadings ? 0.5 : 0
            visible: slamInfoCol.visible
        }

        header: ToolBar {
            background: null

            ButtonGroup {
                buttons: sourceButtons.children
            }

            Row {
                id: sourceButtons

                ToolButton {
                    id: edgeSourceButton

                    objectName: "edgeSourceButton"
                    checkable: true
                    text: qsTr("Edge")
                    onClicked: {
                        control.selectSource(true)
                        console.log("edgeSourceButton onClicked")
                    }
                    onPressAndHold: slamInfoCol.visible = !slamInfoCol.visible
                }

                ToolButton {
                    id: slamSourceButton

                    objectName: "slamSourceButton"
                    checkable: true
                    checked: true
                    text: qsTr("Mixed")
                    onClicked: {
                        control.selectSource(false)
                        console.log("slamSourceButton onClicked")
                    }
                    onPressAndHold: slamInfoCol.visible = !slamInfoCol.visible
                }

                ToolButton {
                    id: bothSourceButton

                    objectName: "bothSourceButton"
                    checkable: true
                    visible: advanced
                    text: qsTr("Both")
                    onPressAndHold: slamInfoCol.visible = !slamInfoCol.visible
                }
            }
        }

        SlamReadings {
            id: slamInfoCol

            objectName: "slamInfoCol"
            opacity: control.hasRoomForReadings ? 1 : 0
            enabled: control.hasRoomForReadings
            source: d.slamSource
            pointCount: d.slamSource && d.slamSource === control.slam && control.map ? control.map.pointCount : null
            edge: control.edge
            slam: control.slam
            bothSources: bothSourceButton.checked
            onClear: control.clearPaths()
            onReset: control.resetSources()
        }
    }

    Page {
        objectName: "settingsPage"
        anchors {
            left: Qt.platform.os === "android" ? parent.left : valueControl.right
            top: Qt.platform.os === "android" ? valueControl.bottom : valueControl.top
            margins: 5
        }
        visible: settingsButton.checked

        background: Rectangle {
            color: "black"
            opacity: 0.5
        }

        Column {
            padding: 5

            CheckBox {
                id: sourceCheckbox

                objectName: "sourceCheckbox"
                text: qsTr("Planes source:")
                checked: true
            }

            ComboBox {
                id: planesSourceComboBox

                objectName: "planesSourceComboBox"
                width: 150
                textRole: "name"
                model: ListModel {
                    ListElement { name: qsTr("Host - TOF") }
                    ListElement { name: qsTr("Host - Stereo") }
                    ListElement { name: qsTr("Edge - TOF") }
                    ListElement { name: qsTr("Edge - Stereo") }
                }
            }

            Button {
                objectName: "clearPlanesButton"
                text: qsTr("Clear planes")
                onClicked: control.clearPlanes(planesSourceComboBox.currentIndex)
            }
        }
    }

    Column {
        id: col

        objectName: "col"
        anchors { top: parent.top; topMargin: 40; right: parent.right; rightMargin: 5 }
        visible: !control.minimized
        opacity: control.hasRoomForButtons ? 1 : 0
        enabled: control.hasRoomForButtons

        CheckBox {
            id: mapCheckbox

            objectName: "mapCheckbox"
            text: qsTr("Map")
            checked: true
        }

        CheckBox {
            id: freeViewCheckBox

            objectName: "freeViewCheckBox"
            text: qsTr("Free view")
        }

        ToolButton {
            id: settingsButton

            objectName: "settingsButton"
            width: 48
            checkable: true
            visible: false
            icon.source: "qrc:/images/settings"
            rotation: checked ? 180 : 90

            Behavior on rotation {
                NumberAnimation { duration: 500 }
            }
        }
    }

    Row {
        id: slamSourceRow

        objectName: "slamSourceRow"
        anchors { right: parent.right; bottom: parent.bottom; margins: 10 }
        spacing: 5
        visible: slamSourceButton.checked
        opacity: control.hasRoomForButtons ? 1 : 0
        enabled: control.hasRoomForButtons

        Label {
            objectName: "localizedPercentLable"
            anchors.verticalCenter: parent.verticalCenter
            visible: control.isLoadMap && Qt.platform.os !== "android"
            // Rather not at all than without its beginning.
            opacity: slamSourceRow.x >= 0 ? 1 : 0
            text: "localized:  " + (control.slam ? control.slam.localizedPercent : 0).toLocaleString() + " %"
        }

        Label {
            objectName: "modeCaption"
            anchors.verticalCenter: parent.verticalCenter
            visible: Qt.platform.os !== "android" && control.hasRoomForCaptions
            text: qsTr("SLAM mode:")
        }

        Label {
            objectName: "modeLabel"
            anchors.verticalCenter: parent.verticalCenter
            visible: Qt.platform.os !== "android" && control.hasRoomForModes
            text: loopClosureButton.done || loadButton.text === "Stop Load Map" ? qsTr("Loop Closure")
                                                                                : qsTr("Visual Odometry")
        }

        Button {
            id: loopClosureButton

            property bool done: false

            objectName: "loopClosureButton"
            visible: Qt.platform.os !== "android"
            enabled: !loopClosureIndicator.running && !control.isLoadMap
            text: done ? "Create map" : "Save map"
            ToolTip.visible: hovered
            ToolTip.delay: 500
            ToolTip.text: text === "Create map" ? qsTr("Create map and switch to visual odometry")
                                                : qsTr("Save map and swicth to loop closure,map path=")
                                                  + control.camera.slam.getMapPath()
            onClicked: done ? control.createMap() : control.saveMap()
        }

        Button {
            id: loadButton

            objectName: "loadButton"
            visible: Qt.platform.os !== "android"
            enabled: !loopClosureButton.done
            // What a click does is told by these words, so they are the same in every language.
            text: "Load map"
            ToolTip.visible: hovered
            ToolTip.delay: 500
            ToolTip.text: text === "Load map" ? qsTr("Load map and switch to loop closure, map path=")
                                                + control.camera.slam.getMapPath()
                                              : qsTr("Stop load map and switch to visual odometry")
            onClicked: text === "Load map" ? control.loadMap() : control.stopLoadMap()
        }
    }

    // The twin for the device's own SLAM. It can't be clicked.
    Row {
        id: edgeSourceRow

        objectName: "edgeSourceRow"
        anchors { right: parent.right; bottom: parent.bottom; margins: 10 }
        spacing: 5
        visible: edgeSourceButton.checked
        opacity: control.hasRoomForButtons ? 1 : 0
        enabled: false

        Label {
            objectName: "edgeModeCaption"
            anchors.verticalCenter: parent.verticalCenter
            visible: Qt.platform.os !== "android" && control.hasRoomForCaptions
            text: qsTr("SLAM mode:")
        }

        Label {
            objectName: "edgeModeLabel"
            anchors.verticalCenter: parent.verticalCenter
            visible: Qt.platform.os !== "android" && control.hasRoomForModes
            text: loopClosureEdgeButton.done ? qsTr("Loop Closure") : qsTr("VIO")
        }

        Button {
            id: loopClosureEdgeButton

            property bool done: false

            objectName: "loopClosureEdgeButton"
            visible: Qt.platform.os !== "android"
            text: done ? "Create map" : "Save map"
            onClicked: {
                if (done)
                    control.edge.visualOdometry()
                else
                    control.edge.loopClosure()
                done = !done
            }
        }
    }

    BusyIndicator {
        id: loopClosureIndicator

        objectName: "loopClosureIndicator"
        anchors.centerIn: parent
        running: false
    }

    FadingNote {
        id: loopClosurePopup

        objectName: "loopClosurePopup"
        row: slamSourceRow.visible ? slamSourceRow : edgeSourceRow.visible ? edgeSourceRow : null
        button: slamSourceRow.visible ? loopClosureButton : loopClosureEdgeButton
        onAboutToShow: popTimer.start()
    }

    FadingNote {
        id: loadPopup

        objectName: "loadPopup"
        row: slamSourceRow.visible ? slamSourceRow : edgeSourceRow.visible ? edgeSourceRow : null
        button: loadButton
        onAboutToShow: popTimer.start()
    }

    Timer {
        id: popTimer

        objectName: "popTimer"
        interval: 2000
        onTriggered: {
            loadPopup.close()
            loopClosurePopup.close()
        }
    }
}
