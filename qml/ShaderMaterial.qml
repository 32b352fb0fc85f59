import Qt3D.Core 2.13
import Qt3D.Render 2.13

// One pair of shaders under "qrc:/shaders/", for desktop OpenGL and for OpenGL ES, with one state for the pass.
Material {
    id: root

    // The files' name without "_es" and ending.
    property string shader: ""
    property RenderState renderState: null

    readonly property string desktopFiles: "qrc:/shaders/" + shader
    readonly property string embeddedFiles: desktopFiles + "_es"

    effect: Effect {
        techniques: [
            Technique {
                graphicsApiFilter {
                    api: GraphicsApiFilter.OpenGL
                    profile: GraphicsApiFilter.CoreProfile
                    majorVersion: 3
                    minorVersion: 1
                }
                renderPasses: RenderPass {
                    renderStates: [root.renderState]
                    shaderProgram: ShaderProgram {
                        vertexShaderCode: loadSource(root.desktopFiles + ".vert")
                        fragmentShaderCode: loadSource(root.desktopFiles + ".frag")
                    }
                }
            },
            Technique {
                graphicsApiFilter {
                    api: GraphicsApiFilter.OpenGLES
                    majorVersion: 2
                    minorVersion: 0
                }
                renderPasses: RenderPass {
                    renderStates: [root.renderState]
                    shaderProgram: ShaderProgram {
                        vertexShaderCode: loadSource(root.embeddedFiles + ".vert")
                        fragmentShaderCode: loadSource(root.embeddedFiles + ".frag")
                    }
                }
            },
            Technique {
                graphicsApiFilter {
                    api: GraphicsApiFilter.OpenGLES
                    profile: GraphicsApiFilter.NoProfile
                    majorVersion: 2
                    minorVersion: 0
                }
                renderPasses: RenderPass {
                    renderStates: [root.renderState]
                    shaderProgram: ShaderProgram {
                        vertexShaderCode: loadSource(root.embeddedFiles + ".vert")
                        fragmentShaderCode: loadSource(root.embeddedFiles + ".frag")
                    }
                }
            }
        ]
    }
}
