import Qt3D.Core 2.13
import Qt3D.Render 2.13

// Points that keep their size in the world. The parameter "pointSize" gives it in metres.
ShaderMaterial {
    shader: "pointcloud"
    renderState: PointSize { value: 0.01 }
}
