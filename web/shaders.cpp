#include <webgl/webgl1.h>

#include "context.h"

namespace web {

constinit Uniforms uniforms = {};

namespace {

// Lights each vertex as OpenGL 1.x does, with a material that follows the colour. Its specular
// colour is black, as OpenGL has it from the start: that of a light adds nothing.
constexpr const char *VERTEX_SHADER = R"(#version 300 es
layout(location = 0) in vec4 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec4 colour;
layout(location = 3) in vec2 texCoord;
uniform mat4 projection, model;
uniform mat3 normals;  // what they are multiplied by
uniform bool lighting;
uniform vec4 lightPosition[2];
uniform vec3 lightAmbient[2], lightDiffuse[2];
out vec4 shade;
out vec2 texel;

void main() {
    vec4 place = model * position;
    gl_Position = projection * place;
    gl_PointSize = 1.0;
    vec3 light = vec3(1);
    if (lighting) {
        vec3 n = normalize(normals * normal);
        light = vec3(0.2);
        for (int i = 0; i < 2; ++i) {
            vec3 towards = normalize(lightPosition[i].xyz - place.xyz / place.w);
            light += lightAmbient[i] + max(dot(n, towards), 0.0) * lightDiffuse[i];
        }
    }
    shade = clamp(vec4(light, 1) * colour, 0.0, 1.0);
    texel = texCoord;
}
)";

constexpr const char *FRAGMENT_SHADER = R"(#version 300 es
precision highp float;
in vec4 shade;
in vec2 texel;
uniform bool texturing;
uniform sampler2D image;
out vec4 pixel;

void main() {
    pixel = texturing ? shade * texture(image, texel) : shade;
}
)";

void compile(GLuint program, GLenum type, const char *source) {
    const GLuint shader = emscripten_glCreateShader(type);
    emscripten_glShaderSource(shader, 1, &source, nullptr);
    emscripten_glCompileShader(shader);
    emscripten_glAttachShader(program, shader);
}

}  // namespace

void initShaders() {
    const GLuint program = emscripten_glCreateProgram();
    compile(program, GL_VERTEX_SHADER, VERTEX_SHADER);
    compile(program, GL_FRAGMENT_SHADER, FRAGMENT_SHADER);
    emscripten_glLinkProgram(program);
    emscripten_glUseProgram(program);
    const auto find = [=](auto name) { return emscripten_glGetUniformLocation(program, name); };
    uniforms = {find("projection"),   find("model"),       find("normals"),
                find("texturing"),    find("lighting"),    find("lightPosition"),
                find("lightAmbient"), find("lightDiffuse")};
    require(uniforms.projection >= 0, "The shaders");
}

}  // namespace web
