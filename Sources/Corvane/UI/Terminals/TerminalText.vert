#version 440

layout(location = 0) in vec2 position;
layout(location = 1) in vec2 source;
layout(location = 2) in vec4 tint;
layout(location = 0) out vec2 atlasPlace;
layout(location = 1) out vec4 color;

layout(std140, binding = 0) uniform Values {
    mat4 matrix;
    vec2 atlasSize;
    float opacity;
};

void main()
{
    atlasPlace = source / atlasSize;
    color = tint * opacity;
    gl_Position = matrix * vec4(position, 0.0, 1.0);
}
