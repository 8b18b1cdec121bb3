#pragma once

#include "file.h"

// The pose of one articulated character. Angles are degrees, never wrapped or
// clamped; positions are in the character's model units, in which the nose points
// along -x, y is up and the left side is +z. All zero is the rest pose.
struct Params {
    float pos_x;
    float pos_y;
    float pos_z;
    float body_tilt;  // whole model about its own z axis, after heading
    float heading;    // whole model about y
    float hind_hip_left;
    float hind_hip_right;
    float hind_knee_left;
    float hind_knee_right;
    float hind_paw_left;
    float hind_paw_right;
    float front_shoulder_left;
    float front_shoulder_right;
    float front_knee_left;
    float front_knee_right;
    float front_paw_left;
    float front_paw_right;
    float neck;
    float upper_jaw;
    float lower_jaw;
    float tongue;
    float ear_left;  // about x: at 0 both ears splay outwards by 28, at 28 they hang straight
    float ear_right;
    float chest;  // front body with front legs, neck and head
    float tail_pitch;
    float tail_wag;  // about x: sideways
    float hips;      // rear body with hind legs and tail
};

// How many values a pose holds.
constexpr int POSE_VALUES = 27;
static_assert(sizeof(Params) == POSE_VALUES * sizeof(float), "a pose is 27 floats and no more");

// One line of a keyframe file: a pose and the frame at which it is reached.
struct KeyFrame {
    Params pose;
    unsigned frame;
};

// Plays one keyframe file as a stream of poses, linear in the frame counter.
//
// The file is text: a header "#total_keys = N", then keys of 27 floats and a
// frame number each, separated by white space. Frame numbers count from 0 and
// rise; a key that does not rise is passed over. Unreadable values leave what was
// there before. A file holds at least two keys, and an animation only ever holds two:
// it reads one more at each key change, from a stream that stays open.
//
// An animation whose file cannot be opened prints "Error Opening File" on standard
// output at each attempt; its `step` then writes nothing and returns true.
class Interpolate {
public:
    // Opens the file. `filename` is kept, not copied: it must outlive the animation.
    Interpolate(const char *filename, bool loop);

    // Restarts the animation from the first key.
    void reset();

    // Advances by one step. Either writes the pose of the current frame, or, past
    // the later key, moves on to the next key and leaves `out` alone. True when
    // this step reached the end: a looping animation has then restarted, another
    // one stays where it is until `reset`.
    bool step(Params &out);

    // Moves to the next key at once, restarting after the last; returns 1.
    int advance();

    // Reads the next key of the file into `key`, unless the count of keys is
    // used up (then false).
    bool read(KeyFrame &key);

    bool loop;
    unsigned frame = 0;      // poses produced since the file was opened
    int total_keys = 0;      // as the header counts them; compared as unsigned
    unsigned key_index = 0;  // key changes since the file was opened
    const char *filename;
    File file;
    KeyFrame current = {};  // the key that the pose comes from
    KeyFrame next = {};     // the key that the pose goes to

private:
    void open();
    void readKey(KeyFrame &key);
    void changeKey();
    bool keysLeft() const;
};
