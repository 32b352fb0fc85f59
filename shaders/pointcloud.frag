#version 130

in vec3 position;
in vec3 normal;

uniform vec3 color;

out vec4 fragColor;

void main()
{
    fragColor = vec4(color, 1.0);
}
