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

glm::mat4 &top(const char *name) {
    requireOutside(name);
    return stack->matrices[stack->top];
}

}  // namespace

const glm::mat4 &modelview() {
    return modelviewStack.matrices[modelviewStack.top];
}

const glm::mat4 &projection() {
    return projectionStack.matrices[projectionStack.top];
}

}  // namespace web

using namespace web;

void glMatrixMode(GLenum mode) {
    requireOutside("glMatrixMode");
    if (mode != GL_MODELVIEW && mode != GL_PROJECTION) {
        fail("glMatrixMode", "only of the modelview and the projection matrix");
    }
    stack = mode == GL_MODELVIEW ? &modelviewStack : &projectionStack;
}

void glPushMatrix() {
    const glm::mat4 &pushed = top("glPushMatrix");
    if (stack->top + 1 == STACK_DEPTH) {
        fail("glPushMatrix", "the stack is full");
    }
    stack->matrices[++stack->top] = pushed;
}

void glPopMatrix() {
    requireOutside("glPopMatrix");
    if (stack->top == 0) {
        fail("glPopMatrix", "the stack is empty");
    }
    --stack->top;
}

void glLoadIdentity() {
    top("glLoadIdentity") = glm::mat4(1);
}

void glMultMatrixf(const GLfloat *elements) {
    top("glMultMatrixf") *= glm::make_mat4(elements);
}

void glTranslatef(GLfloat x, GLfloat y, GLfloat z) {
    glm::mat4 &m = top("glTranslatef");
    m = glm::translate(m, {x, y, z});
}

void glScalef(GLfloat x, GLfloat y, GLfloat z) {
    glm::mat4 &m = top("glScalef");
    m = glm::scale(m, {x, y, z});
}

void glRotatef(GLfloat degrees, GLfloat x, GLfloat y, GLfloat z) {
    glm::mat4 &m = top("glRotatef");
    m = glm::rotate(m, glm::radians(degrees), {x, y, z});
}
