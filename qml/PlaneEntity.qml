import Qt3D.Core 2.13
import Qt3D.Render 2.13
import Qt3D.Extras 2.13

// A plane's outline, filled. The fan from its first point suits convex outlines.
Entity {
    id: root

    property Layer layer: null
    // The outline in its order, each point as [x, y, z] in metres.
    property var points: []
    property string name: ""
    property color color: "orange"
    property real thickness: 2
    property Transform transform: Transform {}

    onPointsChanged: {
        const vertices = new Float32Array(3 * points.length)
        for (let i = 0; i < points.length; ++i)
            vertices.set(points[i], 3 * i)
        buf.data = vertices
        buf.count = points.length
    }

    components: [transform, layer]

    Buffer {
        id: buf

        property int count: 0

        type: Buffer.VertexBuffer
    }

    VertexGeometry {
        id: outline

        buffer: buf
        count: buf.count
    }

    Entity {
        id: border

        GeometryRenderer {
            id: borderRenderer

            primitiveType: GeometryRenderer.LineLoop
            geometry: outline
        }

        LineMaterial {
            id: borderMaterial

            color: root.color
            thickness: root.thickness
        }

        components: [borderRenderer, borderMaterial, root.layer]
    }

    Entity {
        id: content

        GeometryRenderer {
            id: contentRenderer

            primitiveType: GeometryRenderer.TriangleFan
            geometry: outline
        }

        PhongAlphaMaterial {
            id: contentMaterial

            ambient: root.color
            diffuse: root.color
            specular: root.color
            alpha: 0.5
        }

        components: [contentRenderer, contentMaterial, root.layer]
    }
}
