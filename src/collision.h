#pragma once

// Collision on the ground plane: every obstacle, person and the player is a
// footprint in x and z, and height is ignored.

// Kinds of footprint; any other value never collides and draws nothing.
enum Footprint_Kind { CIRCLE = 0, RECTANGLE = 1 };

// What touching a footprint means; checkCollision answers with one of them.
enum Collision_Code { NO_CONTACT = 0, SOLID = 1, ENEMY = 2, TOWNSPERSON = 3 };

// A circle uses only its centre and radius, a rectangle only its four bounds;
// the other fields keep whatever they held. World units.
struct Collision_Object {
    int kind;  // Footprint_Kind
    int code;  // Collision_Code
    float cx;
    float cz;
    float radius;
    float minX;
    float maxX;
    float minZ;
    float maxZ;
};

// b.code if the footprints overlap, else NO_CONTACT. Two circles must overlap,
// two rectangles collide when they only touch. A circle meets a rectangle with
// its bounding square. The first operand is the moving one: a rectangle against
// a circle, and any kind that is not in Footprint_Kind, is no contact.
int checkCollision(const Collision_Object &a, const Collision_Object &b);

// Draws the footprint as a wire volume in world coordinates: a sphere resting on
// the ground or a box 80 units tall. Keeps the current colour and texture and
// the modelview matrix; leaves GL_LIGHTING enabled.
void drawCollision(const Collision_Object &object);
