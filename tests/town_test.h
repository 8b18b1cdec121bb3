#pragma once

#include <cmath>

#include "assets.h"
#include "game_test.h"

// A town whose models are markers: the origin and the ends of the x and y axes.
class Town_Test : public Game_Test {
protected:
    using Point = recording::Point;

    Town_Test() {
        for (unsigned *list : {&house1, &house2, &house3, &intro, &tree, &castle, &forest, &NPC}) {
            *list = glGenLists(1);
            glNewList(*list, GL_COMPILE);
            glBegin(GL_TRIANGLES);
            glVertex3f(0, 0, 0);
            glVertex3f(1, 0, 0);
            glVertex3f(0, 1, 0);
            glEnd();
            glEndList();
        }
        for (unsigned slot = 0; slot < SKY_SLOTS; ++slot) {
            skybox[slot] = 10 + slot;
        }
        texture[FIRE_TEXTURE] = 20;
        texture[GROUND_TEXTURE] = 21;
        house_back = 0;
        fireworks1 = Fireworks(10, 0);
        fireworks2 = Fireworks(10, 0);
        poodle2.update({});
        camera.setup();
    }
    ~Town_Test() override {
        EXPECT_EQ(recording::state().modelview, recording::IDENTITY);
        EXPECT_TRUE(recording::stacksBalanced());
        EXPECT_TRUE(recording::faults().empty());
    }

    // A group of houses along x = 10, 20, 30.
    static void buildHouses(float fire) {
        for (; house_back < 3; ++house_back) {
            house_x[house_back] = 10.0F * static_cast<float>(house_back + 1);
            house_z[house_back] = static_cast<float>(house_back);
        }
        size_fire[2] = fire;
    }

    static Point minus(const Point &a, const Point &b) {
        return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
    }
};
