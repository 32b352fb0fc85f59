import Qt3D.Core 2.13
import Qt3D.Render 2.13

// The three axes, one metre each.
Entity {
    property Layer layer: null

    Line {
        color: "red"
        thickness: 2.0
        p1: Qt.vector3d(0, 0, 0)
        p2: Qt.vector3d(1, 0, 0)
    }

    Line {
        color: "green"
        thickness: 2.0
        p1: Qt.vector3d(0, 0, 0)
        p2: Qt.vector3d(0, 1, 0)
    }

    Line {
        color: "blue"
        thickness: 2.0
        p1: Qt.vector3d(0, 0, 0)
        p2: Qt.vector3d(0, 0, 1)
    }
}
