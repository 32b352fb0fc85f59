import QtQuick 2.13
import QtQuick.Scene3D 2.13
import QtTest 1.13
import Qt.labs.settings 1.1
import Qt3D.Core 2.13
import Qt3D.Render 2.13
import Tof3dData 1.0
import SlamDevice 1.0
import "qrc:/" as Viewer

Item {
    id: window

    property bool isHeaderHovered: false

    width: 800
    height: 600

    QtObject {
        id: uuidSelector
        property int count: 1
        property int currentIndex: 0
    }

    Component {
        id: viewComponent

        Viewer.Tof3DView {
            width: 800
            height: 600
            minimized: false
        }
    }

    Component {
        id: sceneComponent

        Viewer.Tof3DScene {
            matrix: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
        }
    }

    Component {
        id: deviceComponent

        Item {
            readonly property SlamDevice device: SlamDevice {}
        }
    }

    Component {
        id: settingsComponent

        Item {
            property alias freeView: store.freeView
            property alias slamSource: store.slamSource

            Settings {
                id: store

                property bool freeView: false
                property bool slamSource: true

                category: "Tof3DView"
            }
        }
    }

    // A camera whose depth stream has a rate, and whose colours are missing.
    Component {
        id: colourlessComponent

        Item {
            readonly property QtObject slam: null
            readonly property QtObject edge: null
            readonly property QtObject tof: QtObject {
                property double dataFrameRate: 29.6
            }
            readonly property QtObject tof3d: QtObject {
                property bool rgbAvailable: false
                property bool colorize: true
                property int source: 0
                property var pointCloud: null
            }
        }
    }

    StrictCase {
        id: testCase

        name: "Tof3DView"

        property var device: null
        property var view: null
        property var scene: null

        function open() {
            device = createTemporaryObject(deviceComponent, window).device
            view = createTemporaryObject(viewComponent, window, { camera: device })
            scene = find(view, "scene3d").entity
            waitForRendering(view)
        }

        function openEmpty() {
            view = createTemporaryObject(viewComponent, window)
            scene = find(view, "scene3d").entity
        }

        function test_withoutACameraAllFallsBack() {
            openEmpty()
            compare(scene.position, Qt.vector3d(0, 0, 0))
            compare(scene.orientation, Qt.quaternion(0, 0, 0, 1))
            compare(scene.viewVector, Qt.vector3d(0, 0, 1))
            compare(scene.viewCenter, Qt.vector3d(0, 0, 1))
            compare(scene.matrix, Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1))
            compare(scene.pointCloud, null)
            compare(find(view, "fpsLabel").text, "")
            compare(find(view, "colorizeCheckBox").enabled, false)
            compare(find(view, "colorizeCheckBox").checked, false)
        }

        function test_theSceneByItself() {
            scene = sceneComponent.createObject(null)
            compare(scene.position, Qt.vector3d(0, 0, 0))
            compare(scene.orientation, Qt.quaternion(0, 0, 0, 1))
            compare(scene.viewVector, Qt.vector3d(0, 0, 1))
            compare(scene.viewCenter, Qt.vector3d(0, 0, 1))
            compare(scene.freeView, false)
            compare(scene.pointCloud, null)
            scene.destroy()
        }

        function test_theScenesFrame() {
            open()
            const scene3d = find(view, "scene3d")
            compare(scene3d.aspects, ["input", "logic"])
            compare(scene3d.cameraAspectRatioMode, Scene3D.AutomaticAspectRatio)
            compare(scene3d.focus, true)
            view.width = 0
            compare(scene3d.visible, false)
        }

        function test_aTurnedDeviceTurnsTheScene() {
            open()
            device.deliverTurned("slam", 1, 2, 3, [0, 0, 1, 0, 1, 0, -1, 0, 0])
            compare(scene.orientation, device.slam.orientation.quaternion)
            fuzzyCompare(scene.orientation.y, Math.sqrt(0.5), 1e-5)
            compare(scene.viewVector, device.slam.orientation.viewVector)
            fuzzyCompare(scene.viewVector.x, 1, 1e-5)
            compare(scene.viewCenter, scene.position.plus(scene.viewVector))
        }

        function test_wordsAndPlaces() {
            open()
            waitForRendering(view)
            const page = find(view, "sourcePage"), caption = find(view, "fpsLabel")
            const free = find(view, "freeViewCheckBox"), colours = find(view, "colorizeCheckBox")
            compare([free.text, colours.text], ["Free view", "Use RGB"])
            compare(page.header.padding, 5)
            compare(page.header.children[0].text, "Edge")
            verify(page.header.children[1] === find(view, "slamSourceSwitch"))
            compare(page.header.children[2].text, "Mixed")
            verify(Qt.colorEqual(page.background.color, "black"))
            compare(page.background.opacity, 0.5)
            compare([page.x, page.y], [5, caption.y + caption.height + 5])
            const boxes = free.parent
            compare([boxes.x + boxes.width, boxes.y], [795, 5])
            view.minimized = true
            compare([page.visible, boxes.visible], [false, false])
        }

        // Nobody is there any more to be told that the box is unchecked.
        function test_aCameraThatGoesIsToldNothing() {
            open()
            compare(find(view, "colorizeCheckBox").checked, true)
            view.camera = null
            compare(find(view, "colorizeCheckBox").checked, false)
        }

        function test_theSwitchWithoutACameraOnlyLogs() {
            openEmpty()
            find(view, "slamSourceSwitch").toggle()
            expectWarning(/Tof3DView\.qml:\d+: TypeError/)
            compare(find(view, "slamSourceSwitch").checked, false)
            find(view, "slamSourceSwitch").toggle()
        }

        function test_theSwitchPicksTheSource() {
            open()
            device.deliver("slam", 1, 2, 3)
            device.deliver("edge", 4, 5, 6)
            compare(scene.position, Qt.vector3d(1, 2, 3))
            compare(scene.matrix, device.slam.matrix)
            find(view, "slamSourceSwitch").toggle()
            compare(device.tof3d.source, Tof3dData.Source.EDGE)
            compare(scene.position, Qt.vector3d(4, 5, 6))
            find(view, "slamSourceSwitch").toggle()
            compare(device.tof3d.source, Tof3dData.Source.SLAM)
            compare(scene.position, Qt.vector3d(1, 2, 3))
        }

        function test_coloursAreOfferedWhereThereAreSome() {
            open()
            const box = find(view, "colorizeCheckBox")
            compare(box.enabled, true)
            compare(box.checked, true)
            compare(device.tof3d.colorize, true)
            mouseClick(box)
            compare(device.tof3d.colorize, false)
        }

        function test_withoutColoursNoneAreOffered() {
            const camera = make(colourlessComponent)
            view = createTemporaryObject(viewComponent, window, { camera: camera })
            const box = find(view, "colorizeCheckBox")
            compare(box.enabled, false)
            compare(box.checked, false)
            mouseClick(box)
            compare(box.checked, false)
            camera.tof3d.rgbAvailable = true
            compare(box.enabled, true)
            compare(box.checked, true)
            camera.tof3d.rgbAvailable = false
            compare(camera.tof3d.colorize, false)
        }

        function test_theRateIsThatOfTheDepthStream() {
            const camera = make(colourlessComponent)
            view = createTemporaryObject(viewComponent, window, { camera: camera })
            compare(find(view, "fpsLabel").text, "@30fps")
            camera.tof.dataFrameRate = 14.4
            compare(find(view, "fpsLabel").text, "@14fps")
        }

        function test_theSwitchesSurviveARestart() {
            open()
            find(view, "freeViewCheckBox").checked = true
            find(view, "slamSourceSwitch").checked = false
            view.destroy()
            wait(0)
            const stored = make(settingsComponent)
            compare([stored.freeView, stored.slamSource], [true, false])
            open()
            compare(find(view, "freeViewCheckBox").checked, true)
            compare(find(view, "slamSourceSwitch").checked, false)
            compare(scene.freeView, true)
            find(view, "freeViewCheckBox").checked = false
            find(view, "slamSourceSwitch").checked = true
        }

        function test_theSceneShowsTheCloud() {
            open()
            compare(scene.pointCloud, device.tof3d.pointCloud)
            compare(scene.pointCloud.size, 0)
        }

        function test_freeViewBreaksAndRestoresTheBindings() {
            open()
            device.deliver("slam", 1, 2, 3)
            const camera = device.node(scene, "mainCamera")
            find(view, "freeViewCheckBox").checked = true
            device.deliver("slam", 5, 5, 5)
            compare(camera.position, Qt.vector3d(1, 2, 2))
            compare(camera.viewCenter, Qt.vector3d(1, 2, 3))
            compare(camera.upVector, Qt.vector3d(0, -1, 0))
            camera.upVector = Qt.vector3d(1, 0, 0)
            find(view, "freeViewCheckBox").checked = false
            compare(camera.position, Qt.vector3d(5, 5, 4))
            compare(camera.upVector, Qt.vector3d(0, -1, 0))
            camera.upVector = Qt.vector3d(1, 0, 0)
            find(view, "freeViewCheckBox").checked = true
            compare(camera.upVector, Qt.vector3d(0, -1, 0))
            find(view, "freeViewCheckBox").checked = false
            device.deliver("slam", 6, 6, 6)
            compare(camera.position, Qt.vector3d(6, 6, 5))
            compare(camera.viewCenter, Qt.vector3d(6, 6, 6))
        }

        function test_onlyLayersAreDrawn() {
            open()
            compare(device.nodesOf(scene, "Qt3DRender::QViewport").length, 1)
            compare(device.nodesOf(scene, "Qt3DRender::QRenderStateSet").length, 2)
            const axes = device.nodesOf(scene, "CoordinateEntity")
            compare(axes.length, 1)
            device.nodesOf(axes[0], "Line").forEach(function(line) { compare(line.layer, null) })
        }

        function test_theFrameGraph() {
            open()
            const one = function(type) {
                const found = device.nodesOf(scene, "Qt3DRender::" + type)
                compare(found.length, 1, type)
                return found[0]
            }
            const viewport = one("QViewport"), surface = one("QRenderSurfaceSelector"), selector = one("QCameraSelector")
            const cull = one("QFrustumCulling"), clear = one("QClearBuffers")
            compare(viewport.normalizedRect, Qt.rect(0, 0, 1, 1))
            verify(surface.parent === viewport)
            verify(selector.parent === surface)
            verify(cull.parent === selector)
            verify(clear.parent === cull)
            verify(one("QNoDraw").parent === clear)
            verify(selector.camera === device.node(scene, "mainCamera"))
            compare(clear.buffers, ClearBuffers.ColorDepthBuffer)
            verify(Qt.colorEqual(clear.clearColor, "#2d2d2d"))
            const layers = device.nodesOf(scene, "Qt3DRender::QLayer")
            const filters = device.nodesOf(cull, "Qt3DRender::QLayerFilter")
            compare(layers.length, 3)
            compare(filters.length, 3)
            filters.forEach(function(filter, i) {
                compare(filter.layers.length, 1)
                verify(filter.layers[0] === layers[i])
            })
            device.nodesOf(cull, "Qt3DRender::QRenderStateSet").forEach(function(set, i) {
                verify(set.parent === filters[i + 1])
                compare(set.renderStates.length, 2)
                compare(set.renderStates[0].sizeMode, PointSize.Programmable)
                compare(set.renderStates[1].depthFunction, DepthTest.Less)
            })
        }

        function test_theCamera() {
            open()
            const camera = device.node(scene, "mainCamera")
            compare(camera.projectionType, CameraLens.PerspectiveProjection)
            compare(camera.fieldOfView, 45)
            fuzzyCompare(camera.nearPlane, 0.01, 1e-6)
            compare(camera.farPlane, 1000)
            compare(camera.upVector, Qt.vector3d(0, -1, 0))
            const settings = [device.nodesOf(scene, "Qt3DRender::QRenderSettings")[0],
                              device.nodesOf(scene, "Qt3DInput::QInputSettings")[0]]
            compare(scene.components.length, 2)
            settings.forEach(function(part, i) { verify(scene.components[i] === part) })
            const controller = device.nodesOf(scene, "Qt3DExtras::QOrbitCameraController")[0]
            compare(controller.camera, null)
            fuzzyCompare(controller.linearSpeed, 0.5, 1e-6)
            fuzzyCompare(controller.lookSpeed, 90, 1e-6)
            find(view, "freeViewCheckBox").checked = true
            verify(controller.camera === camera)
            find(view, "freeViewCheckBox").checked = false
            compare(controller.camera, null)
        }

        function test_theEntitiesInTheirOrder() {
            open()
            const layers = device.nodesOf(scene, "Qt3DRender::QLayer")
            const kinds = ["GroundPlane", "CoordinateEntity", "CameraEntity"]
            const entities = [device.node(scene, "pointcloud")].concat(
                kinds.map(function(kind) { return device.nodesOf(scene, kind)[0] }))
            const places = entities.map(function(entity) {
                verify(entity.parent === scene)
                for (let i = 0; i < scene.childNodes.length; ++i) {
                    if (scene.childNodes[i] === entity)
                        return i
                }
                return -1
            })
            for (let i = 1; i < places.length; ++i)
                verify(places[i - 1] >= 0 && places[i - 1] < places[i], String(places))
            const lines = device.nodesOf(entities[1], "Line")
            compare(lines.length, 22)
            lines.forEach(function(line) {
                verify(line.layer === layers[0])
                verify(Qt.colorEqual(line.color, "white"))
                verify(Math.abs(line.p1.x) <= 1 && Math.abs(line.p1.z) <= 1)
            })
            compare(entities[1].width, 2)
            verify(entities[2].layer === layers[0])
            const frustum = entities[3]
            compare(frustum.objectName, "slamCamera")
            verify(Qt.colorEqual(frustum.color, "orange"))
            verify(frustum.layer === layers[0])
            device.deliver("slam", 1, 2, 3)
            compare(frustum.transform.matrix, scene.matrix)
            compare(frustum.transform.translation, Qt.vector3d(1, 2, 3))
        }

        function test_thePointsHaveTheirOwnColours() {
            open()
            const cloud = device.node(scene, "pointcloud")
            const parameters = device.nodesOf(cloud, "Qt3DRender::QParameter")
            compare(parameters.length, 1)
            compare(parameters[0].name, "pointSize")
            fuzzyCompare(parameters[0].value, 0.01, 1e-6)
            const states = device.nodesOf(cloud, "Qt3DRender::QPointSize")
            verify(states.length > 0)
            states.forEach(function(state) { fuzzyCompare(state.value, 0.01, 1e-6) })
            const programs = device.nodesOf(cloud, "Qt3DRender::QShaderProgram")
            compare(programs.map(function(program) { return String(program.vertexShaderCode) }),
                    ["", "_es", "_es"].map(function(suffix) {
                        return device.textOf(":/shaders/pointcloudcolor" + suffix + ".vert")
                    }))
            compare(programs.map(function(program) { return String(program.fragmentShaderCode) }),
                    ["", "_es", "_es"].map(function(suffix) {
                        return device.textOf(":/shaders/pointcloudcolor" + suffix + ".frag")
                    }))
            const renderer = device.nodesOf(cloud, "Qt3DRender::QGeometryRenderer")[0]
            compare(renderer.primitiveType, GeometryRenderer.Points)
            verify(renderer.geometry.pointCloud === device.tof3d.pointCloud)
            compare(device.nodesOf(cloud, "Qt3DRender::QAttribute").map(function(attribute) { return attribute.name }),
                    ["vertexPosition", "vertexColor"])
            const transform = device.nodesOf(cloud, "Qt3DCore::QTransform")[0]
            compare(transform.matrix, Qt.matrix4x4())
            const components = []
            for (let i = 0; i < cloud.components.length; ++i)
                components.push(cloud.components[i])
            const parts = [renderer, device.nodesOf(cloud, "Qt3DRender::QMaterial")[0], transform,
                           device.nodesOf(scene, "Qt3DRender::QLayer")[1]]
            parts.forEach(function(part) { verify(part && components.indexOf(part) >= 0, String(part)) })
        }

        function test_aSmallViewShowsTheSceneAlone() {
            open()
            view.minimized = true
            compare(find(view, "sourcePage").visible, false)
            compare(find(view, "scene3d").visible, true)
        }
    }
}
