#define FP highp

varying FP vec3 position;
varying FP vec3 normal;
varying FP vec3 color;

void main()
{
    gl_FragColor = vec4(color, 1.0);
}
