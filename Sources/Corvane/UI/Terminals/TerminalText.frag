#version 440

layout(location = 0) in vec2 atlasPlace;
layout(location = 1) in vec4 color;
layout(location = 0) out vec4 result;

layout(binding = 1) uniform sampler2D atlas;

void main()
{
    result = texture(atlas, atlasPlace) * color;
}
