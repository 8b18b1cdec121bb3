#pragma once

// Size of the window in pixels; written by the reshape callback, read for the
// aspect ratio of the view.
extern int width;
extern int height;
constexpr int START_WIDTH = 1280;
constexpr int START_HEIGHT = 1024;

// What Camera::zoom understands: a step in, a step out, and the commands.
constexpr float ZOOM_IN = 0.9F;
constexpr float ZOOM_OUT = 1.1F;
constexpr float ZOOM_NEAREST = 0.0F;
constexpr float ZOOM_MIDDLE = 0.5F;
constexpr float ZOOM_FARTHEST = 1.5F;

// One viewpoint of the scene as a look-at transform, world units. The perspective
// (35 degrees of vertical field, planes at 0.1 and 600) and the view both go onto
// the projection matrix, so the modelview matrix holds model placement only.
class Camera {
public:
    // Copies the arrays of 3 floats that are not null.
    void update(const float *newEye, const float *newCenter, const float *newUp);

    // Shifts eye and centre by `delta` (3 floats). The first argument is not read.
    void move(const float *position, const float *delta);

    // ZOOM_IN moves the eye one step towards the centre while their squared distance is
    // above 0.277, ZOOM_OUT one step away while it is below 500. The commands take 40 steps
    // in or out, ZOOM_MIDDLE 40 in and then 20 out. Compared exactly; any other factor
    // changes nothing.
    void zoom(float factor);

    // Turns the eye about the centre, radians: `yaw` about the vertical line, then
    // `pitch` about the world's x axis, which never takes the eye below y = 0.1.
    void rotate(float yaw, float pitch);

    // Loads perspective and view into the projection matrix and selects the
    // modelview matrix, which is not touched.
    void setup() const;

    // Puts perspective and view in place of the current matrix, whichever that is, and leaves
    // the matrix mode as it was.
    void setupShadow() const;

    float eye[3] = {0, 1.8F, 4.8F};
    float center[3] = {0, 1.5F, 0};
    float up[3] = {0, 1, 0};

private:
    void zoomSteps(float factor, int steps);
};

// The one perspective of the game, for a window of w x h pixels; a height of 0
// counts as 1. Multiplied onto the current matrix.
void applyPerspective(int w, int h);
