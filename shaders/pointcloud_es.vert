#define FP highp

attribute FP vec3 vertexPosition;
attribute FP vec3 vertexNormal;
uniform FP vec3 vertexColor;

varying FP vec3 position;
varying FP vec3 normal;
varying FP vec3 color;

uniform FP mat4 modelView;
uniform FP mat3 modelViewNormal;
uniform FP mat4 mvp;
uniform FP mat4 projectionMatrix;
uniform FP mat4 viewportMatrix;

uniform FP float pointSize;

void main()
{
    normal = normalize(modelViewNormal * vertexNormal);
    position = vec3(modelView * vec4(vertexPosition, 1.0));
    color = vertexColor;
    gl_Position = mvp * vec4(vertexPosition, 1.0);
    gl_PointSize = viewportMatrix[1][1] * projectionMatrix[1][1] * pointSize / gl_Position.w;
}
