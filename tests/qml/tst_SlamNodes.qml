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
    Component { id: layerComponent; Layer {} }

    StrictCase {
        id: testCase

        name: "SlamNodes"

        property var scene: null

        function create(component, properties) {
            const entity = component.createObject(null, properties || {})
            verify(entity)
            return entity
        }

        function nodes(root, type) { return device.nodesOf(root, "Qt3DRender::" + type) }
        function list(property) {
            const items = []
            for (let i = 0; i < property.length; ++i)
                items.push(property[i])
            return items
        }

        // The states of a set as words, in their order.
        function states(set) {
            return list(set.renderStates).map(function(state) {
                if (state.sizeMode !== undefined)
                    return state.sizeMode === PointSize.Programmable ? "programmable points" : "fixed points"
                return state.depthFunction === DepthTest.Less ? "less" : "another depth test"
            })
        }

        function parameters(root) {
            const values = {}
            nodes(root, "QParameter").forEach(function(parameter) { values[parameter.name] = parameter.value })
            return values
        }

        function compareColor(actual, expected) {
            compare(typeof actual, "object", "a colour, not a text")
            verify(Qt.colorEqual(actual, expected), actual + " is not " + expected)
        }

        // The three techniques with the files, and the state of their passes.
        function compareShaders(root, files, state, value) {
            const programs = nodes(root, "QShaderProgram")
            compare(programs.length, 3)
            const suffixes = ["", "_es", "_es"]
            programs.forEach(function(program, i) {
                const vertex = device.textOf(":/shaders/" + files + suffixes[i] + ".vert")
                const fragment = device.textOf(":/shaders/" + files + suffixes[i] + ".frag")
                verify(vertex.length > 0 && fragment.length > 0)
                compare(String(program.vertexShaderCode), vertex)
                compare(String(program.fragmentShaderCode), fragment)
            })
            const passes = nodes(root, "QRenderPass")
            compare(passes.length, 3)
            passes.forEach(function(pass) {
                const passStates = list(pass.renderStates)
                compare(passStates.length, 1)
                verify(passStates[0].toString().indexOf("Qt3DRender::" + state) === 0, String(passStates[0]))
                fuzzyCompare(passStates[0].value, value, 1e-6)
            })
        }

        function compareParts(entity, parts) {
            const components = list(entity.components)
            parts.forEach(function(part, i) { verify(part && components.indexOf(part) >= 0, "part " + i) })
        }

        function compareLayout(attribute, count) {
            compare(attribute.name, "vertexPosition")
            compare(attribute.attributeType, Attribute.VertexAttribute)
            compare(attribute.vertexBaseType, Attribute.Float)
            compare([attribute.vertexSize, attribute.byteStride, attribute.byteOffset, attribute.count], [3, 12, 0, count])
        }

        function cleanupScene() {
            scene.destroy()
            scene = null
        }

        function test_eachViewportDrawsTheLayersInTheirOrder() {
            scene = create(sceneComponent)
            const layers = nodes(scene, "QLayer"), culls = nodes(scene, "QFrustumCulling")
            compare(layers.length, 3)
            compare(culls.length, 3)
            const selectors = [scene.viewCam, scene.viewCam2, scene.viewCam3]
            culls.forEach(function(cull, i) {
                verify(cull.parent === selectors[i])
                const filters = nodes(cull, "QLayerFilter")
                compare(filters.length, 3)
                filters.forEach(function(filter, k) {
                    verify(filter.parent === cull)
                    compare(filter.layers.length, 1)
                    verify(filter.layers[0] === layers[k], "layer " + k + " of view " + i)
                })
                // No more state for the solid layer; the last branch has no filter.
                const sets = nodes(cull, "QRenderStateSet")
                compare(sets.map(states), [["programmable points", "less"], ["programmable points", "less"],
                                           ["programmable points"]])
                verify(sets[0].parent === filters[1])
                verify(sets[1].parent === filters[2])
                verify(sets[2].parent === cull)
            })
            cleanupScene()
        }

        function test_onlyTheWholeViewClears() {
            scene = create(sceneComponent)
            const clears = nodes(scene, "QClearBuffers")
            compare(clears.length, 1)
            compare(clears[0].buffers, ClearBuffers.ColorDepthBuffer)
            verify(Qt.colorEqual(clears[0].clearColor, "#2d2d2d"))
            verify(clears[0].parent === nodes(scene, "QFrustumCulling")[0])
            verify(nodes(scene, "QNoDraw")[0].parent === clears[0])
            cleanupScene()
        }

        function test_theViewportsHangUnderOneAnother() {
            scene = create(sceneComponent)
            const viewports = nodes(scene, "QViewport")
            compare(viewports.length, 4)
            verify(viewports[0].parent === nodes(scene, "QRenderSurfaceSelector")[0])
            ;[1, 2, 3].forEach(function(i) { verify(viewports[i].parent === viewports[0]) })
            verify(scene.viewCam.parent === viewports[1])
            verify(scene.viewCam2.parent === viewports[2])
            verify(scene.viewCam3.parent === viewports[3])
            ;[2, 3].forEach(function(i) {
                fuzzyCompare(viewports[i].normalizedRect.y, 0, 1e-6)
                fuzzyCompare(viewports[i].normalizedRect.width, 0.2, 1e-6)
                fuzzyCompare(viewports[i].normalizedRect.height, 0.2, 1e-6)
            })
            cleanupScene()
        }

        function test_theOrbitControllerTakesTheCameraInFreeView() {
            scene = create(sceneComponent)
            const controller = device.nodesOf(scene, "Qt3DExtras::QOrbitCameraController")[0]
            verify(controller)
            compare(controller.camera, null)
            fuzzyCompare(controller.linearSpeed, 0.5, 1e-6)
            fuzzyCompare(controller.lookSpeed, 90, 1e-6)
            scene.freeView = true
            verify(controller.camera === device.node(scene, "camera"))
            scene.freeView = false
            compare(controller.camera, null)
            cleanupScene()
        }

        function test_theEntitiesInTheirOrder() {
            scene = create(sceneComponent)
            const names = ["slamCamera", "slamPath", "planeEntities", "edgeCamera", "edgePath", "pointcloud",
                           "keyframeEntities"]
            const entities = [device.nodesOf(scene, "GroundPlane")[0], device.nodesOf(scene, "CoordinateEntity")[0]]
                .concat(names.map(function(name) { return device.node(scene, name) }))
            const places = entities.map(function(entity) {
                for (let i = 0; i < scene.childNodes.length; ++i) {
                    if (scene.childNodes[i] === entity)
                        return i
                }
                return -1
            })
            for (let i = 1; i < places.length; ++i)
                verify(places[i - 1] >= 0 && places[i - 1] < places[i], String(places))
            ;["planeEntities", "keyframeEntities"].forEach(function(name) {
                compare(device.node(scene, name).asynchronous, false)
            })
            cleanupScene()
        }

        function test_theMapIsMadeOfPoints() {
            scene = create(sceneComponent)
            scene.pointCloud = device.map.pointCloud
            const map = device.node(scene, "pointcloud")
            compareShaders(map, "pointcloud", "QPointSize", 0.01)
            const values = parameters(map)
            compare(Object.keys(values).sort(), ["color", "pointSize"])
            fuzzyCompare(values.pointSize, 0.01, 1e-6)
            compareColor(values.color, "orange")
            const renderer = nodes(map, "QGeometryRenderer")[0]
            compare(renderer.primitiveType, GeometryRenderer.Points)
            verify(renderer.geometry.pointCloud === device.map.pointCloud)
            const transform = device.nodesOf(map, "Qt3DCore::QTransform")[0]
            compareParts(map, [renderer, nodes(map, "QMaterial")[0], transform, nodes(scene, "QLayer")[1]])
            compare(transform.scale, 1)
            compare(transform.translation, Qt.vector3d(0, 0, 0))
            cleanupScene()
        }

        function test_theGroundLiesOnTheSolidLayer() {
            scene = create(sceneComponent)
            const solid = nodes(scene, "QLayer")[0]
            const ground = device.nodesOf(scene, "GroundPlane")[0]
            compare(ground.width, 2)
            verify(Qt.colorEqual(ground.color, "white"))
            const lines = device.nodesOf(ground, "Line")
            compare(lines.length, 22)
            lines.forEach(function(line) {
                verify(line.layer === solid)
                verify(list(line.components).indexOf(solid) >= 0)
            })
            compare(device.nodesOf(scene, "CoordinateEntity")[0].layer, null)
            cleanupScene()
        }

        function test_entitiesAreMadeOfTheirParts_data() {
            const straight = [Qt.vector3d(0, 0, 0), Qt.vector3d(1, 0, 0), Qt.vector3d(2, 0, 0)]
            return [
                { tag: "Line", component: lineComponent, properties: {}, primitive: GeometryRenderer.Lines, count: 2 },
                { tag: "Path", component: pathComponent, properties: { path: straight },
                  primitive: GeometryRenderer.LineStrip, count: 3 },
                { tag: "CameraEntity", component: frustumComponent, properties: {},
                  primitive: GeometryRenderer.LineStrip, count: 11 }
            ]
        }

        function test_entitiesAreMadeOfTheirParts(row) {
            const layer = create(layerComponent)
            const entity = create(row.component, row.properties)
            entity.layer = layer
            const renderer = nodes(entity, "QGeometryRenderer")[0]
            compareParts(entity, [renderer, entity.transform, entity.material, layer])
            compare(renderer.primitiveType, row.primitive)
            compare(renderer.instanceCount, 1)
            compare(entity.transform.matrix, Qt.matrix4x4())
            const attributes = nodes(entity, "QAttribute")
            compareLayout(attributes[0], row.count)
            // A path is drawn by indices, of which a straight one needs two.
            compare(attributes.length, row.tag === "Path" ? 2 : 1)
            if (row.tag === "Path") {
                compare(attributes[1].attributeType, Attribute.IndexAttribute)
                compare(attributes[1].vertexBaseType, Attribute.UnsignedInt)
                compare([attributes[1].vertexSize, attributes[1].count], [1, 2])
            }
            entity.destroy()
            layer.destroy()
        }

        function test_theRootHoldsItsSettings() {
            scene = create(sceneComponent)
            compareParts(scene, [nodes(scene, "QRenderSettings")[0],
                                 device.nodesOf(scene, "Qt3DInput::QInputSettings")[0]])
            cleanupScene()
        }

        function test_lineMaterials_data() {
            return [
                { tag: "Line", component: lineComponent },
                { tag: "Path", component: pathComponent },
                { tag: "CameraEntity", component: frustumComponent },
                { tag: "PlaneEntity", component: planeComponent }
            ]
        }

        function test_lineMaterials(row) {
            const entity = create(row.component, { thickness: 4.5, color: "#123456" })
            const material = row.tag === "PlaneEntity" ? device.nodesOf(entity, "LineMaterial")[0] : entity.material
            compareShaders(material, "line", "QLineWidth", 4.5)
            compare(Object.keys(parameters(material)), ["color"])
            compareColor(parameters(material).color, "#123456")
            entity.color = "#654321"
            entity.thickness = 2.5
            compareColor(parameters(material).color, "#654321")
            compareShaders(material, "line", "QLineWidth", 2.5)
            entity.destroy()
        }

        function test_aPlaneIsFilledHalfTransparently() {
            const layer = create(layerComponent)
            const plane = create(planeComponent, { color: "#123456", layer: layer })
            const fills = device.nodesOf(plane, "Qt3DExtras::QPhongAlphaMaterial")
            compare(fills.length, 1)
            ;["ambient", "diffuse", "specular"].forEach(function(part) {
                const color = fills[0][part]
                verify(Qt.colorEqual(Qt.rgba(color.r, color.g, color.b, 1), "#123456"), part + " is " + color)
            })
            compare(fills[0].alpha, 0.5)
            const parts = device.nodesOf(plane, "Qt3DCore::QEntity")
            compare(parts.length, 2)
            const renderers = nodes(plane, "QGeometryRenderer")
            compareParts(parts[0], [renderers[0], device.nodesOf(plane, "LineMaterial")[0], layer])
            compareParts(parts[1], [renderers[1], fills[0], layer])
            compareParts(plane, [plane.transform, layer])
            plane.points = [[0, 0, 1], [1, 0, 1], [1, 1, 1]]
            compareLayout(nodes(plane, "QAttribute")[0], 3)
            plane.points = [[0, 0, 1]]
            compareLayout(nodes(plane, "QAttribute")[0], 1)
            plane.destroy()
            layer.destroy()
        }

        function test_defaults() {
            const frustum = create(frustumComponent), line = create(lineComponent), path = create(pathComponent)
            const plane = create(planeComponent), ground = create(groundComponent), axes = create(axesComponent)
            const colors = [[frustum, "red"], [line, "black"], [path, "black"], [plane, "orange"], [ground, "white"]]
            colors.forEach(function(pair) { verify(Qt.colorEqual(pair[0].color, pair[1]), pair[1]) })
            ;[frustum, line, path, plane, ground, axes].forEach(function(entity) { compare(entity.layer, null) })
            compare([frustum.thickness, line.thickness, path.thickness, plane.thickness], [1, 1, 2, 2])
            compare(frustum.scale, 1)
            compare(line.position, Qt.vector3d(0, 0, 0))
            compare(line.p1, Qt.vector3d(0, 0, 0))
            compare(line.p2, Qt.vector3d(0, 0, 1))
            compare(path.path.length, 0)
            compare(plane.name, "")
            compare(plane.points.length, 0)
            compare(ground.width, 1)
            compare(ground.resolution, Qt.size(10, 10))
            device.nodesOf(axes, "Line").forEach(function(axis) { compare(axis.p1, Qt.vector3d(0, 0, 0)) })
            ;[frustum, line, path, plane, ground, axes].forEach(function(entity) { entity.destroy() })
        }

        // Parallels to x are spaced by the columns, those to z by the rows; both are as many as the columns and one.
        function test_theGroundsLines() {
            const layer = create(layerComponent)
            const ground = create(groundComponent, { width: 2, resolution: Qt.size(4, 2), color: "#123456", layer: layer })
            const lines = device.nodesOf(ground, "Line")
            compare(lines.length, 10)
            const ends = function(chosen) {
                return chosen.map(function(line) {
                    return [line.p1.x, line.p1.y, line.p1.z, line.p2.x, line.p2.y, line.p2.z]
                })
            }
            compare(ends(lines.filter(function(line) { return line.p1.z === line.p2.z })),
                    [[-1, 0, -1, 1, 0, -1], [-1, 0, -0.5, 1, 0, -0.5], [-1, 0, 0, 1, 0, 0], [-1, 0, 0.5, 1, 0, 0.5],
                     [-1, 0, 1, 1, 0, 1]])
            compare(ends(lines.filter(function(line) { return line.p1.x === line.p2.x })),
                    [[-1, 0, -1, -1, 0, 1], [0, 0, -1, 0, 0, 1], [1, 0, -1, 1, 0, 1], [2, 0, -1, 2, 0, 1],
                     [3, 0, -1, 3, 0, 1]])
            lines.forEach(function(line) {
                verify(Qt.colorEqual(line.color, "#123456"))
                verify(line.layer === layer)
            })
            verify(Qt.colorEqual(ground.material.ambient, "#123456"))
            const transform = device.nodesOf(ground, "Qt3DCore::QTransform").filter(
                function(transform) { return transform.parent === ground })[0]
            compareParts(ground, [transform])
            compare(transform.matrix, Qt.matrix4x4())
            ground.destroy()
            layer.destroy()
        }

        function test_shaderTexts_data() {
            return [
                { tag: "line", input: "in", varying: "", color: "uniform" },
                { tag: "pointcloud", input: "uniform", varying: "position", color: "uniform" },
                { tag: "pointcloudcolor", input: "in", varying: "position", color: "in" }
            ]
        }

        function test_shaderTexts(row) {
            const declares = function(text, declaration) {
                return text.split("\n").indexOf(declaration + ";") >= 0
            }
            const words = { "desktop": ["", "in", "out", ""], "es": ["_es", "attribute", "varying", "FP "] }
            Object.keys(words).forEach(function(kind) {
                const suffix = words[kind][0], input = words[kind][1], output = words[kind][2], fp = words[kind][3]
                const vertex = device.textOf(":/shaders/" + row.tag + suffix + ".vert")
                const fragment = device.textOf(":/shaders/" + row.tag + suffix + ".frag")
                const start = kind === "es" ? "#define FP highp" : "#version 130"
                ;[vertex, fragment].forEach(function(text) {
                    compare(text.split("\n")[0], start)
                    compare(text.indexOf("#version") >= 0, kind !== "es")
                })
                verify(declares(vertex, input + " " + fp + "vec3 vertexPosition"))
                verify(declares(vertex, input + " " + fp + "vec3 vertexNormal"))
                verify(declares(vertex, (row.input === "in" ? input : "uniform") + " " + fp + "vec3 vertexColor"))
                ;["position", "normal", "color"].forEach(function(name) {
                    verify(declares(vertex, output + " " + fp + "vec3 " + name), name)
                })
                ;["mat4 modelView", "mat3 modelViewNormal", "mat4 mvp", "mat4 projectionMatrix", "mat4 viewportMatrix",
                  "float pointSize"].forEach(
                    function(uniform) { verify(declares(vertex, "uniform " + fp + uniform), uniform) })
                ;["normal = normalize(modelViewNormal * vertexNormal)",
                  "position = vec3(modelView * vec4(vertexPosition, 1.0))",
                  "color = vertexColor",
                  "gl_Position = mvp * vec4(vertexPosition, 1.0)",
                  "gl_PointSize = viewportMatrix[1][1] * projectionMatrix[1][1] * pointSize / gl_Position.w"].forEach(
                    function(statement) { verify(declares(vertex, "    " + statement), statement) })
                const passed = kind === "es" ? "varying" : "in"
                verify(declares(fragment, (row.color === "in" ? passed : "uniform") + " " + fp + "vec3 color"))
                ;["position", "normal"].forEach(function(name) {
                    compare(declares(fragment, passed + " " + fp + "vec3 " + name), row.varying === "position")
                })
                compare(declares(fragment, "out vec4 fragColor"), kind !== "es")
                verify(declares(fragment, "    " + (kind === "es" ? "gl_FragColor" : "fragColor")
                                          + " = vec4(color, 1.0)"))
            })
        }
    }
}
