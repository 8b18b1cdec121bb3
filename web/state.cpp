#include <webgl/webgl1.h>

#include <algorithm>
#include <glm/gtc/type_ptr.hpp>
#include <iterator>

#include "context.h"

namespace web {

constinit glm::ivec4 viewport = {};
constinit glm::vec4 lightPosition[LIGHTS] = {};
constinit glm::vec3 lightAmbient[LIGHTS] = {}, lightDiffuse[LIGHTS] = {};
constinit State state;

namespace {

constexpr GLenum NAMES[CAPABILITIES] = {GL_TEXTURE_2D, GL_LIGHTING,     GL_BLEND,
                                        GL_DEPTH_TEST, GL_STENCIL_TEST, GL_COLOR_MATERIAL,
                                        GL_NORMALIZE,  GL_LIGHT0,       GL_LIGHT1};

constexpr GLuint MAX_TEXTURES = 32;

struct Texture {
    GLuint object = 0;  // WebGL's
    // From GL_TEXTURE_MAG_FILTER on: filters of enlarging and shrinking, wrapping across and up.
    GLint parameters[4] = {GL_LINEAR, GL_NEAREST_MIPMAP_LINEAR, GL_REPEAT, GL_REPEAT};
};
constinit Texture textures[MAX_TEXTURES] = {};
constinit GLuint textureCount = 1;  // the names count from 1

constinit State applied = {.projection = glm::mat4(0)};  // as WebGL starts

void enable(GLenum name, bool on, const char *call = __builtin_FUNCTION()) {
    requireOutside(call);
    const auto *found = std::find(NAMES, std::end(NAMES), name);
    require(found != std::end(NAMES), call);
    state.on[found - NAMES] = on;
}

// 0 and the names that no picture was read for are one texture without an object.
Texture &textureOf(const State &s) {
    return textures[s.texture < MAX_TEXTURES ? s.texture : 0];
}

// For a change of the texture. What is drawn next binds its own anew.
void beginChange() {
    drawWaiting();
    emscripten_glBindTexture(GL_TEXTURE_2D, textureOf(state).object);
    applied.texture = ~0U;
}

}  // namespace

State currentState() {
    const auto &on = state.on;
    require(!on[LIGHTING] || (on[COLOUR_MATERIAL] && on[NORMALIZING] && on[LIGHT_0] && on[LIGHT_1]),
            "GL_LIGHTING");
    State whole = state;
    whole.projection = projection();
    return whole;
}

void apply(const State &next) {
    if (next == applied) {
        return;
    }
    if (next.projection != applied.projection) {
        emscripten_glUniformMatrix4fv(uniforms.projection, 1, GL_FALSE,
                                      glm::value_ptr(next.projection));
    }
    for (const Capability capability : {BLENDING, DEPTH_TEST, STENCIL_TEST}) {
        if (next.on[capability] != applied.on[capability]) {
            (next.on[capability] ? emscripten_glEnable : emscripten_glDisable)(NAMES[capability]);
        }
    }
    const GLuint object = next.on[TEXTURING] ? textureOf(next).object : 0;
    emscripten_glBindTexture(GL_TEXTURE_2D, object);
    emscripten_glUniform1i(uniforms.texturing, object != 0 ? 1 : 0);
    emscripten_glUniform1i(uniforms.lighting, next.on[LIGHTING] ? 1 : 0);
    emscripten_glBlendFunc(next.blendFactors[0], next.blendFactors[1]);
    emscripten_glStencilFunc(next.stencilFunction, next.stencilReference, next.stencilMask);
    emscripten_glStencilOp(next.stencilOperations[0], next.stencilOperations[1],
                           next.stencilOperations[2]);
    applied = next;
}

}  // namespace web

using namespace web;

// clang-format off
void glEnable(GLenum name) { enable(name, true); }
void glDisable(GLenum name) { enable(name, false); }
void glBlendFunc(GLenum source, GLenum picture) {
    requireOutside();
    state.blendFactors = {source, picture};
}
void glStencilFunc(GLenum function, int reference, GLuint mask) {
    requireOutside();
    state.stencilFunction = function;
    state.stencilReference = reference;
    state.stencilMask = mask;
}
void glStencilOp(GLenum fails, GLenum depthFails, GLenum passes) {
    requireOutside();
    state.stencilOperations = {fails, depthFails, passes};
}
void glShadeModel(GLenum mode) { require(mode == GL_SMOOTH); }
void glLightfv(GLenum light, GLenum name, const float *values) {
    const GLenum i = light - GL_LIGHT0;
    requireOutside();
    require(i < LIGHTS && (name != GL_POSITION || values[3] == 1));
    drawWaiting();
    switch (name) {
    case GL_AMBIENT: lightAmbient[i] = glm::make_vec3(values); break;
    case GL_DIFFUSE: lightDiffuse[i] = glm::make_vec3(values); break;
    case GL_SPECULAR: break;  // see the shader
    case GL_POSITION: lightPosition[i] = modelview() * glm::make_vec4(values); break;
    default: require(false);
    }
    emscripten_glUniform4fv(uniforms.lightPosition, LIGHTS, glm::value_ptr(*lightPosition));
    emscripten_glUniform3fv(uniforms.lightAmbient, LIGHTS, glm::value_ptr(*lightAmbient));
    emscripten_glUniform3fv(uniforms.lightDiffuse, LIGHTS, glm::value_ptr(*lightDiffuse));
}

void glViewport(int x, int y, int width, int height) {
    drawWaiting();
    viewport = {x, y, width, height};
    emscripten_glViewport(x, y, width, height);
}
void glClearColor(float red, float green, float blue, float alpha) {
    emscripten_glClearColor(red, green, blue, alpha);
}
void glClearStencil(int value) { emscripten_glClearStencil(value); }
void glClear(GLbitfield buffers) {
    requireOutside();
    drawWaiting();
    emscripten_glClear(buffers);
}

void glGenTextures(int count, GLuint *names) {
    require(count == 1 && textureCount < MAX_TEXTURES);
    *names = textureCount++;
    emscripten_glGenTextures(1, &textures[*names].object);
}
void glTexParameteri(GLenum target, GLenum name, int value) {
    const GLenum i = name - GL_TEXTURE_MAG_FILTER;
    requireOutside();
    require(target == GL_TEXTURE_2D && i < std::size(Texture().parameters));
    Texture &texture = textureOf(state);
    if (texture.object != 0 && texture.parameters[i] != value) {
        beginChange();
        texture.parameters[i] = value;
        emscripten_glTexParameteri(target, name, value);
    }
}
void glTexParameterf(GLenum target, GLenum name, float value) {
    glTexParameteri(target, name, static_cast<int>(value));
}
void glTexEnvf(GLenum target, GLenum name, float value) {
    require(target == GL_TEXTURE_ENV && name == GL_TEXTURE_ENV_MODE && value == GL_MODULATE);
}
void glTexImage2D(GLenum target, int level, int components, int width, int height, int border,
                  GLenum format, GLenum type, const void *pixels) {
    requireOutside();
    require(target == GL_TEXTURE_2D && textureOf(state).object != 0 && level == 0 &&
            components == 3 && border == 0 && format == GL_RGB && type == GL_UNSIGNED_BYTE);
    beginChange();
    emscripten_glTexImage2D(target, level, GL_RGB8, width, height, border, format, type, pixels);
}
// clang-format on
