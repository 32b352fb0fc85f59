import Qt3D.Core 2.13
import Qt3D.Render 2.13
import "vertices.js" as Vertices

// A line through many points. Who changes `path` in place calls `pathChanged()` to have it drawn.
Entity {
    id: root

    property Layer layer: null
    property color color: "black"
    property real thickness: 2.0
    property var path: []
    property Transform transform: Transform {}
    property Material material: LineMaterial {
        color: root.color
        thickness: root.thickness
    }

    readonly property var vertexCache: Vertices.createCache()

    // Takes the oldest point away. The vertices follow by a move; a bare shift() has them all converted again.
    function shift() {
        path.shift()
        vertexCache.drop()
    }

    function createBuffer(path) {
        return vertexCache.verticesOf(path)
    }

    components: [geometry, transform, material, layer]

    GeometryRenderer {
        id: geometry

        instanceCount: 1
        primitiveType: GeometryRenderer.LineStrip
        geometry: VertexGeometry {
            count: root.path.length
            buffer: Buffer {
                type: Buffer.VertexBuffer
                data: root.createBuffer(root.path)
            }
        }
    }
}
