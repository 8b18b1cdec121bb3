#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "context.h"

namespace web {
namespace {

constexpr int STACK_DEPTH = 32;

struct Stack {
    glm::mat4 matrices[STACK_DEPTH] = {glm::mat4(1)};
    int top = 0;
};
constinit Stack modelviewStack;
constinit Stack projectionStack;
constinit Stack *stack = &modelviewStack;

glm::mat4 &top(const char *call = __builtin_FUNCTION()) {
    requireOutside(call);
    return stack->matrices[stack->top];
}

}  // namespace

// clang-format off
const glm::mat4 &modelview() { return modelviewStack.matrices[modelviewStack.top]; }
const glm::mat4 &projection() { return projectionStack.matrices[projectionStack.top]; }

}  // namespace web

using namespace web;

void glMatrixMode(GLenum mode) {
    requireOutside();
    require(mode == GL_MODELVIEW || mode == GL_PROJECTION);
    stack = mode == GL_MODELVIEW ? &modelviewStack : &projectionStack;
}
void glPushMatrix() {
    require(stack->top + 1 < STACK_DEPTH);
    stack->matrices[stack->top + 1] = top();
    ++stack->top;
}
void glPopMatrix() {
    requireOutside();
    require(stack->top > 0);
    --stack->top;
}
void glLoadIdentity() { top() = glm::mat4(1); }
void glMultMatrixf(const float *elements) { top() *= glm::make_mat4(elements); }
void glTranslatef(float x, float y, float z) { top() = glm::translate(top(), {x, y, z}); }
void glScalef(float x, float y, float z) { top() = glm::scale(top(), {x, y, z}); }
void glRotatef(float degrees, float x, float y, float z) {
    top() = glm::rotate(top(), glm::radians(degrees), {x, y, z});
}
// clang-format on
