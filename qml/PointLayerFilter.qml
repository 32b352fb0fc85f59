import Qt3D.Core 2.13
import Qt3D.Render 2.13

// Draws its layers with points whose size the shader decides.
LayerFilter {
    RenderStateSet {
        renderStates: [
            PointSize { sizeMode: PointSize.Programmable },
            DepthTest { depthFunction: DepthTest.Less }
        ]
    }
}
