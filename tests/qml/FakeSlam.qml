import QtQuick 2.13

// One SLAM stream at rest, as the documents read it.
QtObject {
    id: slam

    property bool enabled: false
    property int prediction: 0
    property int dataFrameRate: 0
    property double confidence: 0
    property double distance: 0
    property int localizedPercent: 0
    property matrix4x4 matrix: Qt.matrix4x4()
    property QtObject position: QtObject {
        property double x: 0
        property double y: 0
        property double z: 0
        property vector3d vector: Qt.vector3d(0, 0, 0)
    }
    property QtObject orientation: QtObject {
        property double roll: 0
        property double pitch: 0
        property double yaw: 0
        property quaternion quaternion: Qt.quaternion(1, 0, 0, 0)
        property vector3d viewVector: Qt.vector3d(0, 0, 1)

        function viewCenter(position, viewVector) { return position.plus(viewVector) }
    }

    signal loopClosureFinished()
    signal controlled(bool on)

    function control(on) { controlled(on) }
    function getMapPath() { return "/tmp/loopclosure.map" }
}
