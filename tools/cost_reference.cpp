// What tools/cost measures the game by: a window like the game's, over which every frame draws
// two textured quads, and nothing else. It stands for filling pixels: each takes the nearest texel
// of one texture, without a filter, and replaces what was there, without a test or blending.

#include <GL/glut.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "camera.h"

namespace {

constexpr int TEXTURE_SIZE = 1024;

void loadTexture() {
    std::vector<unsigned char> pixels(std::size_t{3} * TEXTURE_SIZE * TEXTURE_SIZE);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<unsigned char>(i * 7 + i / TEXTURE_SIZE);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glTexImage2D(GL_TEXTURE_2D, 0, 3, TEXTURE_SIZE, TEXTURE_SIZE, 0, GL_RGB, GL_UNSIGNED_BYTE,
                 pixels.data());
    glEnable(GL_TEXTURE_2D);
}

void display() {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glBegin(GL_QUADS);
    for (int quad = 0; quad < 2; ++quad) {
        for (const auto &[x, y] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
            glTexCoord2i(x, y);
            glVertex2i(2 * x - 1, 2 * y - 1);
        }
    }
    glEnd();
    glutSwapBuffers();
}

}  // namespace

int main(int argc, char **argv) {
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL);
    glutInitWindowSize(START_WIDTH, START_HEIGHT);
    glutCreateWindow("Talvery: reference");
    glutDisplayFunc(display);
    glutIdleFunc(glutPostRedisplay);
    glutFullScreen();
    loadTexture();
    glutMainLoop();
    return 0;
}
