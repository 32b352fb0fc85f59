import Qt3D.Core 2.13
import Qt3D.Render 2.13
import Qt3D.Extras 2.13
import Qt3D.Input 2.13
import PointCloudColor 1.0
import PointCloudColorGeometry 1.0

// The coloured points of the ToF camera, seen from behind the device.
Entity {
    id: sceneRoot

    property vector3d position: Qt.vector3d(0, 0, 0)
    property quaternion orientation: Qt.quaternion(0, 0, 0, 1)
    property vector3d viewVector: Qt.vector3d(0, 0, 1)
    property vector3d viewCenter: Qt.vector3d(0, 0, 1)
    property matrix4x4 matrix: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
    property bool freeView: false
    property PointCloudColor pointCloud

    // One metre behind the device, along its own axis.
    function behindDevice() {
        return tools.mapVector(matrix, Qt.vector3d(0, 0, -1))
    }

    onFreeViewChanged: {
        mainCamera.upVector = Qt.vector3d(0, -1, 0)
        if (freeView) {
            mainCamera.viewCenter = mainCamera.viewCenter
            mainCamera.position = mainCamera.position
        } else {
            mainCamera.viewCenter = Qt.binding(function() { return sceneRoot.position })
            mainCamera.position = Qt.binding(behindDevice)
        }
    }

    components: [renderSettings, inputSettings]

    RenderSettings {
        id: renderSettings

        activeFrameGraph: Viewport {
            id: viewport

            normalizedRect: Qt.rect(0, 0, 1, 1)

            RenderSurfaceSelector {
                CameraSelector {
                    id: cameraSelector

                    camera: mainCamera

                    FrustumCulling {
                        ClearBuffers {
                            buffers: ClearBuffers.ColorDepthBuffer
                            clearColor: "#2d2d2d"

                            NoDraw {}
                        }

                        LayerFilter {
                            layers: [solidLayer]
                        }

                        PointLayerFilter {
                            layers: [pointLayer]
                        }

                        PointLayerFilter {
                            layers: [surfelLayer]
                        }
                    }
                }
            }
        }
    }

    InputSettings {
        id: inputSettings
    }

    Layer {
        id: solidLayer
    }

    Layer {
        id: pointLayer
    }

    Layer {
        id: surfelLayer
    }

    SceneCamera {
        id: mainCamera

        objectName: "mainCamera"
        position: sceneRoot.behindDevice()
        viewCenter: sceneRoot.position
        upVector: Qt.vector3d(0, -1, 0)
    }

    OrbitCameraController {
        camera: sceneRoot.freeView ? mainCamera : null
        linearSpeed: 0.5
        lookSpeed: 90
    }

    Entity {
        id: pointcloud

        objectName: "pointcloud"
        components: [pointRenderer, pointMaterial, pointTransform, pointLayer]

        GeometryRenderer {
            id: pointRenderer

            primitiveType: GeometryRenderer.Points
            geometry: PointCloudColorGeometry {
                pointCloud: sceneRoot.pointCloud
            }
        }

        PointMaterial {
            id: pointMaterial

            shader: "pointcloudcolor"
            parameters: [
                Parameter { name: "pointSize"; value: 0.01 }
            ]
        }

        Transform {
            id: pointTransform

            scale: 1
            translation: Qt.vector3d(0, 0, 0)
        }
    }

    GroundPlane {
        width: 2
        color: "white"
        layer: solidLayer
    }

    CoordinateEntity {
        layer: solidLayer
    }

    CameraEntity {
        id: slamCamera

        objectName: "slamCamera"
        color: "orange"
        layer: solidLayer
        transform: Transform { matrix: sceneRoot.matrix }
    }
}
