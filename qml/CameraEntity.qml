import Qt3D.Core 2.13
import Qt3D.Render 2.13

// A camera's frustum: the picture's rectangle in front of the origin, joined to it.
Entity {
    id: root

    property Layer layer: null
    property color color: "red"
    property real thickness: 1.0
    property vector3d position: Qt.vector3d(0, 0, 0)
    property quaternion orientation: Qt.quaternion(1, 0, 0, 0)
    property size size: Qt.size(640, 400)
    property real scale: 1.0
    property Transform transform: Transform {}
    property Material material: LineMaterial {
        color: root.color
        thickness: root.thickness
    }

    function createBuffer(scale) {
        const o = [0, 0, 0]
        const a = [0.12 * scale, 0.1 * scale, 0.1 * scale]
        const b = [-0.12 * scale, 0.1 * scale, 0.1 * scale]
        const c = [-0.12 * scale, -0.1 * scale, 0.1 * scale]
        const d = [0.12 * scale, -0.1 * scale, 0.1 * scale]
        return new Float32Array([].concat(a, b, c, d, a, o, b, o, c, o, d))
    }

    components: [geometry, transform, material, layer]

    GeometryRenderer {
        id: geometry

        instanceCount: 1
        primitiveType: GeometryRenderer.LineStrip
        geometry: VertexGeometry {
            count: 11
            buffer: Buffer {
                type: Buffer.VertexBuffer
                data: root.createBuffer(root.scale)
            }
        }
    }
}
