import Qt3D.Core 2.13
import Qt3D.Render 2.13

// The lens that all views of a scene share.
Camera {
    projectionType: CameraLens.PerspectiveProjection
    fieldOfView: 45
    nearPlane: 0.01
    farPlane: 1000.0
}
