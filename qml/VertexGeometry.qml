import Qt3D.Core 2.13
import Qt3D.Render 2.13

// Positions as packed triples of floats, drawn as lines.
Geometry {
    id: root

    property alias buffer: position.buffer
    property alias count: position.count

    attributes: [
        Attribute {
            id: position

            name: "vertexPosition"
            attributeType: Attribute.VertexAttribute
            vertexBaseType: Attribute.Float
            vertexSize: 3
            byteStride: 3 * 4
            byteOffset: 0
        }
    ]
}
