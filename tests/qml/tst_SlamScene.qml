import QtQuick 2.13
import QtTest 1.13
import Qt3D.Core 2.13
import Qt3D.Render 2.13
import SlamDevice 1.0
import "qrc:/" as Viewer

Item {
    width: 100
    height: 100

    SlamDevice {
        id: device
    }

    Component {
        id: sceneComponent

        Viewer.SlamScene {
            matrix: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
            ratio2: 0.25
            ratio3: 0.5
        }
    }

    Component { id: pathComponent; Viewer.Path {} }
    Component { id: lineComponent; Viewer.Line {} }
    Component { id: frustumComponent; Viewer.CameraEntity {} }
    Component { id: planeComponent; Viewer.PlaneEntity {} }
    Component { id: groundComponent; Viewer.GroundPlane {} }
    Component { id: axesComponent; Viewer.CoordinateEntity {} }

    StrictCase {
        id: testCase

        name: "SlamScene"

        function create(component, properties) {
            const entity = component.createObject(null, properties || {})
            verify(entity)
            return entity
        }

        function attributes(entity) { return device.nodesOf(entity, "Qt3DRender::QAttribute") }
        function renderers(entity) { return device.nodesOf(entity, "Qt3DRender::QGeometryRenderer") }
        function vertices(entity) { return device.floatsOf(device.nodesOf(entity, "Qt3DRender::QBuffer")[0]) }
        function pathVertices(path) { return device.floatsOf(device.node(path, "vertices")) }
        function pathIndices(path) { return device.numbersOf(device.node(path, "indices")) }

        function compareFloats(actual, expected) {
            compare(actual.length, expected.length)
            for (let i = 0; i < expected.length; ++i)
                fuzzyCompare(actual[i], expected[i], 1e-6, "at " + i)
        }

        function point(x, y, z) { return Qt.vector3d(x, y, z) }

        function test_sceneDefaults() {
            const scene = create(sceneComponent)
            compare(scene.width, 0)
            compare(scene.position, point(0, 0, 0))
            compare(scene.orientation, Qt.quaternion(0, 0, 0, 1))
            compare(scene.viewVector, point(0, 0, 1))
            compare(scene.viewCenter, point(0, 0, 1))
            compare(scene.cameraMatrixFromSlam, Qt.matrix4x4())
            compare(scene.cameraMatrixFromEdge, Qt.matrix4x4())
            compare(scene.displaySlamCamera, false)
            compare(scene.displayEdgeCamera, false)
            compare(scene.displayMap, true)
            compare(scene.freeView, false)
            compare(scene.planes, undefined)
            compare(scene.poses, undefined)
            compare(scene.slamPath.length, 0)
            compare(scene.edgePath.length, 0)
            scene.destroy()
        }

        function test_camerasStandWhereTheyShould() {
            const scene = create(sceneComponent)
            const cameras = [scene.viewCam.camera, scene.viewCam2.camera, scene.viewCam3.camera]
            compare(cameras.map(function(camera) { return camera.objectName }), ["camera", "camera2", "camera3"])
            compare(cameras.map(function(camera) { return camera.position }),
                    [point(0, 0, -1), point(0, -3, -5), point(0, 4, 0)])
            compare(cameras.map(function(camera) { return camera.viewCenter }),
                    [point(0, 0, 0), point(0, 0, 0), point(0, 0, 0)])
            compare(cameras.map(function(camera) { return camera.upVector }),
                    [point(0, -1, 0), point(0, 0, 0), point(0, 0, 0)])
            cameras.forEach(function(camera) {
                compare(camera.projectionType, CameraLens.PerspectiveProjection)
                compare(camera.fieldOfView, 45)
                fuzzyCompare(camera.nearPlane, 0.01, 1e-6)
                compare(camera.farPlane, 1000)
            })
            scene.destroy()
        }

        function test_threeViewportsOneOverTheOther() {
            const scene = create(sceneComponent)
            const rects = device.nodesOf(scene, "Qt3DRender::QViewport").map(
                function(viewport) { return viewport.normalizedRect })
            compare(rects.length, 4)
            compare(rects[0], Qt.rect(0, 0, 1, 1))
            compare(rects[1], Qt.rect(0, 0, 1, 1))
            fuzzyCompare(rects[2].x, 0.25, 1e-6)
            fuzzyCompare(rects[3].x, 0.5, 1e-6)
            fuzzyCompare(rects[3].width, 0.2, 1e-6)
            compare(device.nodesOf(scene, "Qt3DRender::QClearBuffers").length, 1)
            compare(device.nodesOf(scene, "Qt3DRender::QNoDraw").length, 1)
            compare(device.nodesOf(scene, "Qt3DRender::QFrustumCulling").length, 3)
            scene.destroy()
        }

        function test_entitiesShowTheirSource() {
            const scene = create(sceneComponent, { displayEdgeCamera: true })
            const part = function(name) { return device.node(scene, name) }
            compare(part("slamCamera").enabled, false)
            compare(part("slamPath").enabled, false)
            compare(part("edgeCamera").enabled, true)
            compare(part("edgePath").enabled, true)
            verify(Qt.colorEqual(part("slamCamera").color, "yellow"))
            verify(Qt.colorEqual(part("slamPath").color, "yellow"))
            verify(Qt.colorEqual(part("edgeCamera").color, "red"))
            verify(Qt.colorEqual(part("edgePath").color, Qt.lighter("red")))
            compare(part("slamPath").thickness, 2)
            scene.width = 640
            compare(part("slamPath").thickness, 2)
            scene.width = 641
            compare(part("slamPath").thickness, 3)
            compare(part("edgePath").thickness, 3)
            const moved = Qt.matrix4x4(1, 0, 0, 3, 0, 1, 0, 4, 0, 0, 1, 5, 0, 0, 0, 1)
            scene.cameraMatrixFromEdge = moved
            compare(part("edgeCamera").transform.matrix, moved)
            compare(part("slamCamera").transform.matrix, Qt.matrix4x4())
            const movedOtherwise = Qt.matrix4x4(1, 0, 0, 6, 0, 1, 0, 7, 0, 0, 1, 8, 0, 0, 0, 1)
            scene.cameraMatrixFromSlam = movedOtherwise
            compare(part("slamCamera").transform.matrix, movedOtherwise)
            compare(part("edgeCamera").transform.matrix, moved)
            scene.displaySlamCamera = true
            scene.displayEdgeCamera = false
            compare(["slamCamera", "slamPath", "edgeCamera", "edgePath"].map(function(name) { return part(name).enabled }),
                    [true, true, false, false])
            scene.destroy()
        }

        function test_planesBecomeEntities() {
            const scene = create(sceneComponent)
            const many = []
            for (let i = 0; i < 200; ++i)
                many.push([Math.cos(i / 200 * 2 * Math.PI), Math.sin(i / 200 * 2 * Math.PI), 1])
            device.deliverPlanes("tof", [{ id: "0", points: [] }, { id: "1", points: [[1, 2, 3]] },
                                         { id: "x", points: [[1, 2, 3], [4, 5, 6]] }, { id: "3", points: many }])
            scene.planes = device.planes.tofPlanes
            const entities = device.nodesOf(scene, "PlaneEntity")
            compare(entities.length, 4)
            compare(entities.map(function(plane) { return plane.name }), ["0", "1", "x", "3"])
            compare(entities.map(function(plane) { return plane.points.length }), [0, 1, 2, 200])
            verify(Qt.colorEqual(entities[1].color, "#3cb44b"))
            verify(Qt.colorEqual(entities[2].color, "#e6194b"))
            scene.planes = null
            tryVerify(function() { return device.nodesOf(scene, "PlaneEntity").length === 0 })
            scene.destroy()
        }

        function test_planesThatChangeKeepTheirEntities() {
            const scene = create(sceneComponent)
            device.deliverPlanes("tof", [{ id: "0", points: [] }, { id: "1", points: [[1, 2, 3]] }])
            scene.planes = device.planes.tofPlanes
            const before = device.nodesOf(scene, "PlaneEntity")
            device.deliverPlanes("tof", [{ id: "1", points: [[1, 2, 3], [4, 5, 6]] }, { id: "2", points: [] },
                                         { id: "3", points: [] }])
            scene.planes = device.planes.tofPlanes
            const after = device.nodesOf(scene, "PlaneEntity")
            compare(after.map(function(plane) { return plane.name }), ["1", "2", "3"])
            compare(after.map(function(plane) { return plane.points.length }), [2, 0, 0])
            verify(after[0] === before[0] && after[1] === before[1])
            compareFloats(vertices(after[0]), [1, 2, 3, 4, 5, 6])
            compare(attributes(after[0])[0].count, 2)
            compareFloats(vertices(after[1]), [])
            compare(attributes(after[1])[0].count, 0)
            ;["#3cb44b", "#ffe119", "#0082c8"].forEach(function(color, i) { verify(Qt.colorEqual(after[i].color, color)) })
            device.deliverPlanes("tof", [{ id: "3", points: [[7, 8, 9]] }])
            scene.planes = device.planes.tofPlanes
            tryVerify(function() { return device.nodesOf(scene, "PlaneEntity").length === 1 })
            verify(device.nodesOf(scene, "PlaneEntity")[0] === before[0])
            compare(before[0].name, "3")
            verify(Qt.colorEqual(before[0].color, "#0082c8"))
            compareFloats(vertices(before[0]), [7, 8, 9])
            scene.planes = null
            tryVerify(function() { return device.nodesOf(scene, "PlaneEntity").length === 0 })
            scene.planes = device.planes.tofPlanes
            compare(device.nodesOf(scene, "PlaneEntity").map(function(plane) { return plane.name }), ["3"])
            scene.destroy()
        }

        function test_whatAPlaneLacksIsNotThatOfTheOneBefore() {
            const scene = create(sceneComponent, { planes: [{ name: "1", color: "red", points: [[1, 2, 3]] }] })
            const plane = device.nodesOf(scene, "PlaneEntity")[0]
            compare(plane.name, "1")
            scene.planes = [{}]
            verify(device.nodesOf(scene, "PlaneEntity")[0] === plane)
            compare(plane.name, "")
            verify(Qt.colorEqual(plane.color, "orange"))
            compare(attributes(plane)[0].count, 0)
            compareFloats(vertices(plane), [])
            scene.planes = {} // no list
            tryVerify(function() { return device.nodesOf(scene, "PlaneEntity").length === 0 })
            scene.destroy()
        }

        function test_keyframesBecomeSmallCameras() {
            const scene = create(sceneComponent, { poses: [{ translation: [1, 2, 3], rotation: [0.1, 0.5, 0.7, 0.5] }] })
            const keyframes = device.nodesOf(scene, "CameraEntity").filter(function(camera) { return camera.scale < 1 })
            compare(keyframes.length, 1)
            fuzzyCompare(keyframes[0].scale, 0.1, 1e-6)
            verify(Qt.colorEqual(keyframes[0].color, "orange"))
            compare(keyframes[0].transform.translation, point(1, 2, 3))
            compare(keyframes[0].transform.rotation, Qt.quaternion(0.5, 0.1, 0.5, 0.7))
            scene.destroy()
        }

        function test_frustumStrip() {
            const camera = create(frustumComponent, { scale: 2 })
            const a = [0.24, 0.2, 0.2], b = [-0.24, 0.2, 0.2], c = [-0.24, -0.2, 0.2], d = [0.24, -0.2, 0.2], o = [0, 0, 0]
            compareFloats(vertices(camera), [].concat(a, b, c, d, a, o, b, o, c, o, d))
            compare(attributes(camera)[0].count, 11)
            compare(attributes(camera)[0].name, "vertexPosition")
            compare(attributes(camera)[0].byteStride, 12)
            compare(renderers(camera)[0].primitiveType, GeometryRenderer.LineStrip)
            compare(camera.thickness, 1)
            compare(camera.size, Qt.size(640, 400))
            camera.destroy()
        }

        function test_lineBetweenTwoPoints() {
            const line = create(lineComponent)
            compareFloats(vertices(line), [0, 0, 0, 0, 0, 1])
            compare(renderers(line)[0].primitiveType, GeometryRenderer.Lines)
            line.p1 = point(1, 2, 3)
            line.p2 = point(4, 5, 6)
            compareFloats(vertices(line), [1, 2, 3, 4, 5, 6])
            line.position = point(2, 4, 6)
            compare(line.transform.translation, point(1, 2, 3))
            line.destroy()
        }

        function test_groundIsAGrid() {
            const ground = create(groundComponent, { width: 2 })
            const lines = device.nodesOf(ground, "Line")
            compare(lines.length, 22)
            const along = lines.filter(function(line) { return line.p1.x !== line.p2.x })
            const across = lines.filter(function(line) { return line.p1.z !== line.p2.z })
            compare(along.length, 11)
            compare(across.length, 11)
            compare(along.map(function(line) { return line.p1.z.toFixed(1) }).sort(),
                    across.map(function(line) { return line.p1.x.toFixed(1) }).sort())
            lines.forEach(function(line) {
                compare(line.p1.y, 0)
                verify(Qt.colorEqual(line.color, "white"))
            })
            // Another resolution makes other lines.
            ground.resolution = Qt.size(4, 2)
            tryVerify(function() { return device.nodesOf(ground, "Line").length === 10 })
            ground.destroy()
        }

        function test_axes() {
            const axes = create(axesComponent)
            const lines = device.nodesOf(axes, "Line")
            compare(lines.map(function(line) { return line.p2 }), [point(1, 0, 0), point(0, 1, 0), point(0, 0, 1)])
            ;["red", "green", "blue"].forEach(function(color, i) {
                verify(Qt.colorEqual(lines[i].color, color))
                compare(lines[i].thickness, 2)
                compare(lines[i].layer, null)
            })
            axes.destroy()
        }

        function test_planeOutline_data() {
            return [
                { tag: "none", points: [] },
                { tag: "one", points: [[1, 2, 3]] },
                { tag: "two", points: [[1, 2, 3], [4, 5, 6]] },
                { tag: "triangle", points: [[0, 0, 1], [1, 0, 1], [1, 1, 1]] }
            ]
        }

        function test_planeOutline(row) {
            const plane = create(planeComponent)
            plane.points = row.points
            compareFloats(vertices(plane), [].concat.apply([], row.points))
            compare(attributes(plane)[0].count, row.points.length)
            compare(renderers(plane).map(function(renderer) { return renderer.primitiveType }),
                    [GeometryRenderer.LineLoop, GeometryRenderer.TriangleFan])
            compare(renderers(plane)[0].geometry, renderers(plane)[1].geometry)
            compare(plane.thickness, 2)
            plane.destroy()
        }

        function test_pathFollowsChangesInPlace() {
            const path = create(pathComponent)
            const array = path.path
            compare(path.thickness, 2)
            compareFloats(pathVertices(path), [])
            array.push(point(1, 2, 3), point(4, 5, 6))
            compareFloats(pathVertices(path), [])
            path.pathChanged()
            compareFloats(pathVertices(path), [1, 2, 3, 4, 5, 6])
            compare(attributes(path)[0].count, 2)
            array.push(point(7, 8, 9))
            path.pathChanged()
            compareFloats(pathVertices(path), [1, 2, 3, 4, 5, 6, 7, 8, 9])
            array.length = 0
            path.pathChanged()
            compareFloats(pathVertices(path), [])
            compare(attributes(path)[0].count, 0)
            compare(pathIndices(path), [])
            array.push(point(1, 1, 1))
            path.pathChanged()
            compareFloats(pathVertices(path), [1, 1, 1])
            path.path = [point(2, 2, 2), point(3, 3, 3)]
            compareFloats(pathVertices(path), [2, 2, 2, 3, 3, 3])
            path.destroy()
        }

        // However points come and go, the vertices are those of the array.
        function test_pathKeepsItsVerticesInStep() {
            const path = create(pathComponent)
            let next = 1
            let seed = 7
            const random = function(bound) {
                seed = (seed * 1103515245 + 12345) % 2147483648
                return Math.floor(seed / 65536) % bound
            }
            for (let round = 0; round < 200; ++round) {
                for (let added = random(20); added > 0; --added, ++next)
                    path.path.push(point(next, random(50), -next))
                const shift = random(3) === 0 ? () => path.path.shift() : () => path.shift()
                for (let removed = random(24); removed > 0 && path.path.length > 0; --removed)
                    shift()
                if (random(25) === 0)
                    path.path.length = 0
                path.pathChanged()
                const expected = []
                path.path.forEach(function(p) { expected.push(p.x, p.y, p.z) })
                compare(pathVertices(path), expected)
                const indices = pathIndices(path)
                compare(indices.length > 0, path.path.length > 0)
                if (indices.length > 0) {
                    compare(indices[0], 0)
                    compare(indices[indices.length - 1], path.path.length - 1)
                    for (let i = 1; i < indices.length; ++i)
                        verify(indices[i] > indices[i - 1])
                }
            }
            path.destroy()
        }

        function test_aPointOfAShortPathCanBeChanged() {
            const path = create(pathComponent)
            for (let i = 0; i < 5; ++i)
                path.path.push(point(i, 0, 0))
            path.pathChanged()
            for (const changed of [[2, 9, 0], [7, 9, 0], [7, 9, 5]]) {
                path.path[2] = point(changed[0], changed[1], changed[2])
                path.pathChanged()
                compare(pathVertices(path).slice(6, 9), changed)
                verify(pathIndices(path).indexOf(2) > 0)
            }
            path.destroy()
        }

        function test_anotherLongPathIsDrawnWhole() {
            const path = create(pathComponent)
            const line = function(y) {
                const points = []
                for (let i = 0; i < 1000; ++i)
                    points.push(point(i, i > 0 && i < 999 ? y : 0, 0))
                return points
            }
            path.path = line(1)
            compare(pathVertices(path).slice(1500, 1503), [500, 1, 0])
            path.path = line(2) // with the same ends
            compare(pathVertices(path).slice(1500, 1503), [500, 2, 0])
            path.destroy()
        }

        function test_aCornerOfAPathIsKept() {
            const path = create(pathComponent)
            for (let i = 0; i <= 100; ++i)
                path.path.push(point(0.01 * i, 0, 0))
            for (let j = 1; j <= 100; ++j)
                path.path.push(point(1, 0.01 * j, 0))
            path.pathChanged()
            compare(pathIndices(path), [0, 100, 200])
            path.destroy()
        }

        function test_aStraightPathIsDrawnFromItsEnds() {
            const path = create(pathComponent)
            for (let i = 0; i < 1000; ++i)
                path.path.push(point(0.001 * i, 0, 0))
            path.pathChanged()
            compare(pathVertices(path).length, 3000)
            compare(pathIndices(path), [0, 999])
            // Turning back is part of the shape.
            for (let j = 1; j < 500; ++j)
                path.path.push(point(0.999 - 0.001 * j, 0, 0))
            path.pathChanged()
            const indices = pathIndices(path)
            verify(indices.length <= 4)
            verify(indices.some(function(index) { return Math.abs(index - 999) <= 2 }))
            path.destroy()
        }

        // Each point that is left out lies within two millimetres of the line that is drawn.
        function test_whatIsDrawnIsThePath() {
            const path = create(pathComponent)
            for (let i = 0; i < 3000; ++i) {
                const t = 0.002 * i
                path.path.push(point(Math.sin(3 * t), 0.3 * Math.cos(5 * t), t * Math.cos(t)))
            }
            path.pathChanged()
            for (let dropped = 0; dropped < 700; ++dropped)
                path.shift()
            path.pathChanged()
            const points = path.path, indices = pathIndices(path)
            verify(indices.length < points.length / 3)
            for (let k = 1; k < indices.length; ++k) {
                const a = points[indices[k - 1]], ab = points[indices[k]].minus(a)
                for (let j = indices[k - 1] + 1; j < indices[k]; ++j) {
                    const ap = points[j].minus(a)
                    const along = ap.dotProduct(ab) / ab.length()
                    verify(Math.sqrt(Math.max(0, ap.dotProduct(ap) - along * along)) < 0.002)
                }
            }
            path.destroy()
        }

        function test_theShadersOfEachTechnique() {
            const line = create(lineComponent)
            const programs = device.nodesOf(line, "Qt3DRender::QShaderProgram")
            compare(programs.length, 3)
            const text = function(code) { return String(code) }
            verify(text(programs[0].vertexShaderCode).indexOf("#version 130") === 0)
            verify(text(programs[0].fragmentShaderCode).indexOf("#version 130") === 0)
            for (let i = 1; i < 3; ++i) {
                verify(text(programs[i].vertexShaderCode).indexOf("#define FP highp") === 0)
                verify(text(programs[i].fragmentShaderCode).indexOf("#define FP highp") === 0)
            }
            const filters = device.nodesOf(line, "Qt3DRender::QTechnique").map(
                function(technique) { return technique.graphicsApiFilter })
            compare(filters.map(function(filter) { return filter.api }),
                    [GraphicsApiFilter.OpenGL, GraphicsApiFilter.OpenGLES, GraphicsApiFilter.OpenGLES])
            compare(filters.map(function(filter) { return filter.profile }),
                    [GraphicsApiFilter.CoreProfile, GraphicsApiFilter.NoProfile, GraphicsApiFilter.NoProfile])
            compare(filters.map(function(filter) { return filter.majorVersion + "." + filter.minorVersion }),
                    ["3.1", "2.0", "2.0"])
            line.destroy()
        }
    }
}
