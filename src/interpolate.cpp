#include "interpolate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>

namespace {

// Keeps the divisor of the blend above 0 where two keys share a frame.
constexpr float SPAN_GUARD = 0.0001F;

using Values = std::array<float, POSE_VALUES>;

// A number that the file writes below 0 wraps round as it is read: through int, it is below 0
// again.
float signedFrame(const KeyFrame &key) {
    return static_cast<float>(static_cast<int>(key.frame));
}

}  // namespace

Interpolate::Interpolate(const char *filename_, bool loop_) : loop(loop_), filename(filename_) {
    open();
}

void Interpolate::open() {
    file.reset();
    file.reset(fopen(filename, "r"));
    key_index = 0;
    frame = 0;
    if (!file) {
        puts("Error Opening File");
        return;
    }
    (void)fscanf(file.get(), "#total_keys = %d\n", &total_keys);
    read(current);
    read(next);
}

void Interpolate::reset() {
    open();
}

bool Interpolate::keysLeft() const {
    return key_index < static_cast<unsigned>(total_keys);
}

void Interpolate::readKey(KeyFrame &key) {
    auto values = std::bit_cast<Values>(key.pose);
    const bool all = std::all_of(values.begin(), values.end(), [this](float &value) {
        return fscanf(file.get(), "%f", &value) == 1;
    });
    key.pose = std::bit_cast<Params>(values);
    if (all) {
        (void)fscanf(file.get(), "%u\n", &key.frame);
    }
}

bool Interpolate::read(KeyFrame &key) {
    if (!file || !keysLeft()) {
        return false;
    }
    readKey(key);
    return true;
}

void Interpolate::changeKey() {
    current = next;
    read(next);
    ++key_index;
}

bool Interpolate::step(Params &out) {
    if (!file) {
        return true;
    }
    const auto f = static_cast<float>(frame);
    const float a = signedFrame(current);
    const float b = signedFrame(next);
    const float t = (f - a) / ((b - a) + SPAN_GUARD);
    // Not f < b: the guard keeps t below 1 at the later key's own frame, which so still gets its
    // pose, unless the keys are 2048 frames apart and the guard drowns in the rounding.
    if (b > a + (b - a) * t) {
        auto pose = std::bit_cast<Values>(current.pose);
        const auto goal = std::bit_cast<Values>(next.pose);
        for (std::size_t i = 0; i < pose.size(); ++i) {
            pose[i] = pose[i] + (goal[i] - pose[i]) * t;
        }
        out = std::bit_cast<Params>(pose);
        ++frame;
        return false;
    }
    changeKey();
    if (keysLeft()) {
        return false;
    }
    if (loop) {
        open();
    }
    return true;
}

int Interpolate::advance() {
    changeKey();
    if (!keysLeft()) {
        open();
    }
    frame = key_index;
    return 1;
}
