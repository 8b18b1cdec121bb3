#include <webgl/webgl1.h>
#include <webgl/webgl2.h>

#include <algorithm>
#include <glm/gtc/type_ptr.hpp>

#include "context.h"

namespace web {

constinit Viewport viewport = {};

namespace {

constexpr int MAX_TEXTURES = 64;  // names, counted from 1
constexpr glm::vec3 SCENE_AMBIENT(0.2F);

struct Texture {
    bool image = false;
    GLint wrapS = GL_REPEAT;
    GLint wrapT = GL_REPEAT;
    GLint minFilter = GL_NEAREST_MIPMAP_LINEAR;
    GLint magFilter = GL_LINEAR;
};

// What glEnable switches, and the rest of the state as the game has set it.
constinit struct {
    bool texturing, lighting, blending, depthTest, stencilTest, colourMaterial, normalize;
    bool light[LIGHTS];
} on = {};
constinit Pipeline state = {};
constinit Light lights[LIGHTS] = {};
constinit bool lightsChanged = true;
constinit Texture textures[MAX_TEXTURES] = {};
constinit GLuint boundTexture = 0;

constinit Pipeline applied = {};  // by WebGL: it starts as OpenGL does

bool &capability(GLenum name) {
    switch (name) {
    case GL_TEXTURE_2D: return on.texturing;
    case GL_LIGHTING: return on.lighting;
    case GL_BLEND: return on.blending;
    case GL_DEPTH_TEST: return on.depthTest;
    case GL_STENCIL_TEST: return on.stencilTest;
    case GL_COLOR_MATERIAL: return on.colourMaterial;
    case GL_NORMALIZE: return on.normalize;
    case GL_LIGHT0: return on.light[0];
    case GL_LIGHT1: return on.light[1];
    default: fail("glEnable", "of something that the game doesn't use");
    }
}

void enable(const char *call, GLenum name, bool value) {
    requireOutside(call);
    bool &switched = capability(name);
    lightsChanged = lightsChanged || name == GL_LIGHT0 || name == GL_LIGHT1;
    switched = value;
}

void switchTo(GLenum name, bool value, bool before) {
    if (value != before) {
        (value ? emscripten_glEnable : emscripten_glDisable)(name);
    }
}

// A light that is off shines black.
Light shining(int i) {
    return on.light[i] ? lights[i] : Light();
}

void applyLights() {
    for (int i = 0; i < LIGHTS; ++i) {
        const Light light = shining(i);
        emscripten_glUniform4fv(uniforms.lightPosition + i, 1, glm::value_ptr(light.position));
        emscripten_glUniform3fv(uniforms.lightAmbient + i, 1, glm::value_ptr(light.ambient));
        emscripten_glUniform3fv(uniforms.lightDiffuse + i, 1, glm::value_ptr(light.diffuse));
    }
    lightsChanged = false;
}

void applyTexture(const Pipeline &next) {
    if (next.texture != applied.texture) {
        if (next.texture != 0) {
            emscripten_glBindTexture(GL_TEXTURE_2D, next.texture);
        }
        emscripten_glUniform1i(uniforms.texturing, next.texture != 0);
    }
    if (next.glyphs != applied.glyphs) {
        emscripten_glUniform1i(uniforms.glyphs, next.glyphs);
    }
}

void applyStencil(const Pipeline &next) {
    switchTo(GL_STENCIL_TEST, next.stencilTest, applied.stencilTest);
    emscripten_glStencilFunc(next.stencilFunction, next.stencilReference, next.stencilMask);
    emscripten_glStencilOp(next.stencilOperations[0], next.stencilOperations[1],
                           next.stencilOperations[2]);
}

// The object that is bound, or null: 0 and the names that no picture was read for have none.
Texture *bound(const char *call, GLenum target) {
    requireOutside(call);
    if (target != GL_TEXTURE_2D) {
        fail(call, "only of GL_TEXTURE_2D");
    }
    return boundTexture > 0 && boundTexture < MAX_TEXTURES ? &textures[boundTexture] : nullptr;
}

// Readies WebGL for a change of the object, after what was drawn with it.
void beginChange() {
    drawPending();
    Pipeline next = applied;
    next.texture = boundTexture;
    apply(next);
}

GLint &parameter(Texture &texture, GLenum name) {
    switch (name) {
    case GL_TEXTURE_WRAP_S: return texture.wrapS;
    case GL_TEXTURE_WRAP_T: return texture.wrapT;
    case GL_TEXTURE_MIN_FILTER: return texture.minFilter;
    case GL_TEXTURE_MAG_FILTER: return texture.magFilter;
    default: fail("glTexParameter", "of something that the game doesn't set");
    }
}

}  // namespace

void bindTexture(GLuint name) {
    boundTexture = name;
}

Pipeline pipeline() {
    if (on.lighting && !(on.colourMaterial && on.normalize)) {
        fail("GL_LIGHTING", "only with GL_COLOR_MATERIAL and GL_NORMALIZE");
    }
    Pipeline p;
    p.projection = projection();
    p.texture = on.texturing && boundTexture < MAX_TEXTURES && textures[boundTexture].image
                    ? boundTexture
                    : 0;
    p.lighting = on.lighting;
    p.depthTest = on.depthTest;
    p.blending = on.blending;
    if (on.blending) {
        std::copy_n(state.blendFactors, 2, p.blendFactors);
    }
    p.stencilTest = on.stencilTest;
    if (on.stencilTest) {
        p.stencilFunction = state.stencilFunction;
        p.stencilReference = state.stencilReference;
        p.stencilMask = state.stencilMask;
        std::copy_n(state.stencilOperations, 3, p.stencilOperations);
    }
    return p;
}

void apply(const Pipeline &next) {
    if (lightsChanged) {
        applyLights();
    }
    if (next == applied) {
        return;
    }
    if (next.projection != applied.projection) {
        emscripten_glUniformMatrix4fv(uniforms.projection, 1, GL_FALSE,
                                      glm::value_ptr(next.projection));
    }
    applyTexture(next);
    if (next.lighting != applied.lighting) {
        emscripten_glUniform1i(uniforms.lighting, next.lighting);
    }
    switchTo(GL_DEPTH_TEST, next.depthTest, applied.depthTest);
    switchTo(GL_BLEND, next.blending, applied.blending);
    emscripten_glBlendFunc(next.blendFactors[0], next.blendFactors[1]);
    applyStencil(next);
    applied = next;
}

glm::vec4 lit(const glm::vec3 &place, const glm::vec3 &normal, const glm::vec4 &colour) {
    glm::vec3 sum = SCENE_AMBIENT;
    for (int i = 0; i < LIGHTS; ++i) {
        const Light light = shining(i);
        const glm::vec3 towards =
            glm::normalize(glm::vec3(light.position) - place * light.position.w);
        sum += light.ambient + std::max(glm::dot(normal, towards), 0.0F) * light.diffuse;
    }
    return glm::clamp(glm::vec4(sum * glm::vec3(colour), colour.a), 0.0F, 1.0F);
}

}  // namespace web

using namespace web;

void glEnable(GLenum name) {
    enable("glEnable", name, true);
}

void glDisable(GLenum name) {
    enable("glDisable", name, false);
}

void glBlendFunc(GLenum source, GLenum picture) {
    requireOutside("glBlendFunc");
    state.blendFactors[0] = source;
    state.blendFactors[1] = picture;
}

void glStencilFunc(GLenum function, GLint reference, GLuint mask) {
    requireOutside("glStencilFunc");
    state.stencilFunction = function;
    state.stencilReference = reference;
    state.stencilMask = mask;
}

void glStencilOp(GLenum fails, GLenum depthFails, GLenum passes) {
    requireOutside("glStencilOp");
    state.stencilOperations[0] = fails;
    state.stencilOperations[1] = depthFails;
    state.stencilOperations[2] = passes;
}

void glShadeModel(GLenum mode) {
    requireOutside("glShadeModel");
    if (mode != GL_SMOOTH) {
        fail("glShadeModel", "only GL_SMOOTH");
    }
}

void glLightfv(GLenum light, GLenum name, const GLfloat *values) {
    requireOutside("glLightfv");
    const GLenum i = light - GL_LIGHT0;
    if (i >= LIGHTS) {
        fail("glLightfv", "only of two lights");
    }
    drawPending();
    lightsChanged = true;
    switch (name) {
    case GL_AMBIENT: lights[i].ambient = glm::make_vec3(values); break;
    case GL_DIFFUSE: lights[i].diffuse = glm::make_vec3(values); break;
    case GL_SPECULAR: break;  // of a material that gives none back
    case GL_POSITION: lights[i].position = modelview() * glm::make_vec4(values); break;
    default: fail("glLightfv", "of something that the game doesn't set");
    }
}

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    requireOutside("glViewport");
    drawPending();
    viewport = {x, y, width, height};
    emscripten_glViewport(x, y, width, height);
}

void glClearColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha) {
    requireOutside("glClearColor");
    emscripten_glClearColor(red, green, blue, alpha);
}

void glClearStencil(GLint value) {
    requireOutside("glClearStencil");
    emscripten_glClearStencil(value);
}

void glClear(GLbitfield buffers) {
    requireOutside("glClear");
    drawPending();
    emscripten_glClear(buffers);
}

void glGenTextures(GLsizei count, GLuint *names) {
    requireOutside("glGenTextures");
    emscripten_glGenTextures(count, names);
    if (names[count - 1] >= MAX_TEXTURES) {
        fail("glGenTextures", "too many textures");
    }
}

void glTexParameteri(GLenum target, GLenum name, GLint value) {
    Texture *texture = bound("glTexParameter", target);
    if (texture != nullptr && parameter(*texture, name) != value) {
        parameter(*texture, name) = value;
        beginChange();
        emscripten_glTexParameteri(target, name, value);
    }
}

void glTexParameterf(GLenum target, GLenum name, GLfloat value) {
    glTexParameteri(target, name, static_cast<GLint>(value));
}

void glTexEnvf(GLenum target, GLenum name, GLfloat value) {
    requireOutside("glTexEnvf");
    if (target != GL_TEXTURE_ENV || name != GL_TEXTURE_ENV_MODE || value != GL_MODULATE) {
        fail("glTexEnvf", "only GL_MODULATE");
    }
}

void glTexImage2D(GLenum target, GLint level, GLint components, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void *pixels) {
    if (components != 3 || border != 0 || format != GL_RGB || type != GL_UNSIGNED_BYTE) {
        fail("glTexImage2D", "only of red, green and blue bytes");
    }
    if (Texture *texture = bound("glTexImage2D", target); texture != nullptr) {
        texture->image = true;
        beginChange();
        emscripten_glTexImage2D(target, level, GL_RGB8, width, height, border, format, type,
                                pixels);
    }
}
