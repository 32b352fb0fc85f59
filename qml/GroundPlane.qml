import Qt3D.Core 2.13
import Qt3D.Render 2.13
import Qt3D.Extras 2.13

// A square grid of lines on the plane y = 0.
Entity {
    id: root

    property color color: "white"
    property Layer layer: null
    property Material material: PhongMaterial { ambient: root.color }
    property size resolution: Qt.size(10, 10)
    property real width: 1.0

    components: [transform]

    Transform {
        id: transform

        translation: Qt.vector3d(0, 0, 0)
    }

    NodeInstantiator {
        model: root.resolution.width + 1

        Line {
            readonly property real z: -root.width / 2 + index * root.width / root.resolution.width

            color: root.color
            layer: root.layer
            p1: Qt.vector3d(-root.width / 2, 0, z)
            p2: Qt.vector3d(root.width / 2, 0, z)
        }
    }

    NodeInstantiator {
        model: root.resolution.width + 1

        Line {
            readonly property real x: -root.width / 2 + index * root.width / root.resolution.height

            color: root.color
            layer: root.layer
            p1: Qt.vector3d(x, 0, -root.width / 2)
            p2: Qt.vector3d(x, 0, root.width / 2)
        }
    }
}
