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

    // A millimetre is less than a pixel at a metre, where the scene's camera stands. Without this, a software
    // renderer spends a second on each picture of a long path.
    readonly property var cache: Vertices.createPathCache(0.001)

    // Takes the oldest point away. The vertices follow by a move; a bare shift() has them all converted again.
    function shift() {
        path.shift()
        cache.drop()
    }

    function createBuffer(path) {
        return cache.verticesOf(path)
    }

    function createIndices(path) {
        return cache.indicesOf(path)
    }

    components: [geometry, transform, material, layer]

    GeometryRenderer {
        id: geometry

        instanceCount: 1
        primitiveType: GeometryRenderer.LineStrip
        geometry: Geometry {
            attributes: [
                Attribute {
                    name: "vertexPosition"
                    attributeType: Attribute.VertexAttribute
                    vertexBaseType: Attribute.Float
                    vertexSize: 3
                    byteStride: 3 * 4
                    byteOffset: 0
                    count: root.path.length
                    buffer: Buffer {
                        objectName: "vertices"
                        type: Buffer.VertexBuffer
                        data: root.createBuffer(root.path)
                    }
                },
                Attribute {
                    attributeType: Attribute.IndexAttribute
                    vertexBaseType: Attribute.UnsignedInt
                    vertexSize: 1
                    count: root.createIndices(root.path).length
                    buffer: Buffer {
                        objectName: "indices"
                        type: Buffer.IndexBuffer
                        data: root.createIndices(root.path)
                    }
                }
            ]
        }
    }
}
