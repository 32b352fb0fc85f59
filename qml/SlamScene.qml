import QtQml.Models 2.13
import Qt3D.Core 2.13
import Qt3D.Render 2.13
import Qt3D.Extras 2.13
import Qt3D.Input 2.13
import PointCloud 1.0
import PointCloudGeometry 1.0

// What SLAM knows, in space: the device and its path by either source, the map's points and the planes.
Entity {
    id: sceneRoot

    property int width: 0
    property vector3d position: Qt.vector3d(0, 0, 0)
    property quaternion orientation: Qt.quaternion(0, 0, 0, 1)
    property vector3d viewVector: Qt.vector3d(0, 0, 1)
    property vector3d viewCenter: Qt.vector3d(0, 0, 1)
    property matrix4x4 matrix: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
    property matrix4x4 cameraMatrixFromSlam: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
    property matrix4x4 cameraMatrixFromEdge: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
    property bool displaySlamCamera: false
    property bool displayEdgeCamera: false
    property alias slamPath: slamPath.path
    property var edgePath: edgePath.path
    property bool displayMap: true
    property bool freeView: false
    // Objects with "name", "color" and "points".
    property var planes
    // Objects with "translation" as [x, y, z] and "rotation" as [x, y, z, w].
    property var poses
    property PointCloud pointCloud
    property real ratio2
    property real ratio3
    property alias viewCam: cameraSelector
    property alias viewCam2: cameraSelector2
    property alias viewCam3: cameraSelector3

    readonly property real pathThickness: width > 640 ? 3.0 : 2.0

    // The paths are arrays that are changed in place, which nobody is notified of.
    function drawSlamPath() {
        slamPath.pathChanged()
    }

    function drawEdgePath() {
        edgePath.pathChanged()
    }

    function shiftSlamPath() {
        slamPath.shift()
    }

    function shiftEdgePath() {
        edgePath.shift()
    }

    // One metre behind the device, along its own axis.
    function behindDevice() {
        return tools.mapVector(matrix, Qt.vector3d(0, 0, -1))
    }

    onPlanesChanged: {
        const count = planes && planes.length || 0
        while (planePlaces.count < count)
            planePlaces.append({ place: planePlaces.count })
        if (planePlaces.count > count)
            planePlaces.remove(count, planePlaces.count - count)
    }

    onFreeViewChanged: {
        camera.upVector = Qt.vector3d(0, -1, 0)
        if (freeView) {
            camera.viewCenter = camera.viewCenter
            camera.position = camera.position
        } else {
            camera.viewCenter = Qt.binding(function() { return sceneRoot.position })
            camera.position = Qt.binding(behindDevice)
        }
    }

    components: [renderSettings, inputSettings]

    RenderSettings {
        id: renderSettings

        activeFrameGraph: RenderSurfaceSelector {
            Viewport {
                normalizedRect: Qt.rect(0, 0, 1, 1)

                Viewport {
                    id: viewport

                    normalizedRect: Qt.rect(0, 0, 1, 1)

                    CameraSelector {
                        id: cameraSelector

                        camera: camera

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

                            RenderStateSet {
                                renderStates: [
                                    PointSize { sizeMode: PointSize.Programmable }
                                ]
                            }
                        }
                    }
                }

                Viewport {
                    id: viewport2

                    normalizedRect: Qt.rect(sceneRoot.ratio2, 0, 0.2, 0.2)

                    CameraSelector {
                        id: cameraSelector2

                        camera: camera2

                        FrustumCulling {
                            LayerFilter {
                                layers: [solidLayer]
                            }

                            PointLayerFilter {
                                layers: [pointLayer]
                            }

                            PointLayerFilter {
                                layers: [surfelLayer]
                            }

                            RenderStateSet {
                                renderStates: [
                                    PointSize { sizeMode: PointSize.Programmable }
                                ]
                            }
                        }
                    }
                }

                Viewport {
                    id: viewport3

                    normalizedRect: Qt.rect(sceneRoot.ratio3, 0, 0.2, 0.2)

                    CameraSelector {
                        id: cameraSelector3

                        camera: camera3

                        FrustumCulling {
                            LayerFilter {
                                layers: [solidLayer]
                            }

                            PointLayerFilter {
                                layers: [pointLayer]
                            }

                            PointLayerFilter {
                                layers: [surfelLayer]
                            }

                            RenderStateSet {
                                renderStates: [
                                    PointSize { sizeMode: PointSize.Programmable }
                                ]
                            }
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
        id: camera

        objectName: "camera"
        position: sceneRoot.behindDevice()
        viewCenter: sceneRoot.position
        upVector: Qt.vector3d(0, -1, 0)
    }

    SceneCamera {
        id: camera2

        objectName: "camera2"
        position: Qt.vector3d(0, -3, -5)
        viewCenter: Qt.vector3d(0, 0, 0)
        upVector: Qt.vector3d(0, 0, 0)
    }

    SceneCamera {
        id: camera3

        objectName: "camera3"
        position: Qt.vector3d(0, 4, 0)
        viewCenter: Qt.vector3d(0, 0, 0)
        upVector: Qt.vector3d(0, 0, 0)
    }

    OrbitCameraController {
        camera: sceneRoot.freeView ? camera : null
        linearSpeed: 0.5
        lookSpeed: 90
    }

    GroundPlane {
        width: 2
        color: "white"
        layer: solidLayer
    }

    CoordinateEntity {}

    CameraEntity {
        id: slamCamera

        objectName: "slamCamera"
        enabled: sceneRoot.displaySlamCamera
        color: "yellow"
        transform: Transform { matrix: sceneRoot.cameraMatrixFromSlam }
    }

    Path {
        id: slamPath

        objectName: "slamPath"
        enabled: sceneRoot.displaySlamCamera
        color: slamCamera.color
        thickness: sceneRoot.pathThickness
    }

    NodeInstantiator {
        objectName: "planeEntities"
        // Planes that change keep their entities: new ones show a picture or two late.
        model: ListModel {
            id: planePlaces
        }
        asynchronous: false

        PlaneEntity {
            readonly property var plane: sceneRoot.planes && sceneRoot.planes[index] || ({})

            // What a plane lacks falls back to its default, not to the former plane's.
            name: plane.name || ""
            color: plane.color || "orange"
            points: plane.points || []
        }
    }

    CameraEntity {
        id: edgeCamera

        objectName: "edgeCamera"
        enabled: sceneRoot.displayEdgeCamera
        color: "red"
        transform: Transform { matrix: sceneRoot.cameraMatrixFromEdge }
    }

    Path {
        id: edgePath

        objectName: "edgePath"
        enabled: sceneRoot.displayEdgeCamera
        color: Qt.lighter(edgeCamera.color)
        thickness: sceneRoot.pathThickness
    }

    Entity {
        id: pointcloud

        objectName: "pointcloud"
        enabled: sceneRoot.displayMap
        components: [pointRenderer, pointMaterial, pointTransform, pointLayer]

        GeometryRenderer {
            id: pointRenderer

            primitiveType: GeometryRenderer.Points
            geometry: PointCloudGeometry {
                pointCloud: sceneRoot.pointCloud
            }
        }

        PointMaterial {
            id: pointMaterial

            parameters: [
                Parameter { name: "pointSize"; value: 0.01 },
                Parameter { name: "color"; value: "orange" }
            ]
        }

        Transform {
            id: pointTransform

            scale: 1
            translation: Qt.vector3d(0, 0, 0)
        }
    }

    NodeInstantiator {
        objectName: "keyframeEntities"
        model: sceneRoot.poses
        asynchronous: false

        CameraEntity {
            color: "orange"
            scale: 0.1
            transform: Transform {
                readonly property var t: modelData.translation
                readonly property var q: modelData.rotation

                translation: Qt.vector3d(t[0], t[1], t[2])
                rotation: Qt.quaternion(q[3], q[0], q[1], q[2])
            }
        }
    }
}
