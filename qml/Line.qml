import Qt3D.Core 2.13
import Qt3D.Render 2.13

// One line between two points.
Entity {
    id: root

    property Layer layer: null
    property vector3d position: Qt.vector3d(0, 0, 0)
    property color color: "black"
    property real thickness: 1.0
    property vector3d p1: Qt.vector3d(0, 0, 0)
    property vector3d p2: Qt.vector3d(0, 0, 1)
    property Transform transform: Transform {
        translation: Qt.vector3d(0.5 * root.position.x, 0.5 * root.position.y, 0.5 * root.position.z)
    }
    property Material material: LineMaterial {
        color: root.color
        thickness: root.thickness
    }

    function createBuffer(p1, p2) {
        return new Float32Array([p1.x, p1.y, p1.z, p2.x, p2.y, p2.z])
    }

    components: [geometry, transform, material, layer]

    GeometryRenderer {
        id: geometry

        instanceCount: 1
        primitiveType: GeometryRenderer.Lines
        geometry: VertexGeometry {
            count: 2
            buffer: Buffer {
                type: Buffer.VertexBuffer
                data: root.createBuffer(root.p1, root.p2)
            }
        }
    }
}
