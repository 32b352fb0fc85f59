import Qt3D.Core 2.13
import Qt3D.Render 2.13

// Lines of one colour and width.
ShaderMaterial {
    id: root

    property color color: "black"
    property real thickness: 1.0

    shader: "line"
    renderState: LineWidth { value: root.thickness }
    parameters: [
        Parameter { name: "color"; value: root.color }
    ]
}
