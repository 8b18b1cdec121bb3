#include <webgl/webgl1.h>
#include <webgl/webgl2.h>

#include <glm/gtc/type_ptr.hpp>

#include "context.h"

namespace web {

constinit Uniforms uniforms = {};

namespace {

// Light as OpenGL 1.x reckons it at each vertex, with the material that follows the colour. The
// material's specular colour is black and can't be set here, so a light's adds nothing. The
// normal goes through the inverse transpose, which but for its length are the cofactors.
constexpr const char *VERTEX_SHADER = R"(#version 300 es
layout(location = 0) in vec4 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec4 colour;
layout(location = 3) in vec2 texCoord;
uniform mat4 projection, model;
uniform bool lighting;
uniform vec4 lightPosition[2];
uniform vec3 lightAmbient[2], lightDiffuse[2];
out vec4 shade;
out vec2 texPlace;
const vec3 SCENE_AMBIENT = vec3(0.2);

vec3 light(vec3 place) {
    mat3 m = mat3(model);
    mat3 cofactors = mat3(cross(m[1], m[2]), cross(m[2], m[0]), cross(m[0], m[1]));
    vec3 n = normalize(cofactors * normal * sign(dot(m[0], cofactors[0])));
    vec3 sum = SCENE_AMBIENT;
    for (int i = 0; i < 2; ++i) {
        vec3 towards = normalize(lightPosition[i].xyz - place * lightPosition[i].w);
        sum += lightAmbient[i] + max(dot(n, towards), 0.0) * lightDiffuse[i];
    }
    return sum;
}

void main() {
    vec4 place = model * position;
    gl_Position = projection * place;
    shade = clamp(lighting ? vec4(light(place.xyz / place.w) * colour.rgb, colour.a) : colour,
                  0.0, 1.0);
    texPlace = texCoord;
}
)";

constexpr const char *FRAGMENT_SHADER = R"(#version 300 es
precision highp float;
in vec4 shade;
in vec2 texPlace;
uniform bool texturing, glyphs;
uniform sampler2D image;
out vec4 pixel;

void main() {
    vec4 texel = texturing ? texture(image, texPlace) : vec4(1);
    if (glyphs) {
        if (texel.r < 0.5) {
            discard;
        }
        texel = vec4(1);
    }
    pixel = shade * texel;
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
    GLint linked = 0;
    emscripten_glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == 0) {
        fail("WebGL", "does not take the shaders");
    }
    emscripten_glUseProgram(program);
    const auto find = [program](const char *name) {
        return emscripten_glGetUniformLocation(program, name);
    };
    uniforms = {find("projection"),    find("model"),        find("lighting"),
                find("lightPosition"), find("lightAmbient"), find("lightDiffuse"),
                find("texturing"),     find("glyphs")};
    const glm::mat4 identity(1);
    emscripten_glUniformMatrix4fv(uniforms.projection, 1, GL_FALSE, glm::value_ptr(identity));
    emscripten_glUniformMatrix4fv(uniforms.model, 1, GL_FALSE, glm::value_ptr(identity));
}

}  // namespace web
