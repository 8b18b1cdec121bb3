#include "globals.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iomanip>
#include <sstream>
#include <vector>

#include "assets.h"
#include "game_objects.h"
#include "game_state.h"
#include "scene_collision.h"
#include "texture.h"

namespace globals {
namespace {

struct Global {
    std::string name;
    std::function<double()> value;
    std::function<void(double)> assign;
    double seen = 0;
    bool watched = true;
};

template <typename Value>
Global global(const std::string &name, Value &place) {
    return {name, [&place] { return static_cast<double>(place); },
            [&place](double value) { place = static_cast<Value>(value); }};
}

// clang-format off
std::vector<Global> listAll() {
#define NAMED(place) global(#place, place)
    std::vector<Global> all = {
        NAMED(status), NAMED(Menu), NAMED(option), NAMED(selectOption), NAMED(Rotating),
        NAMED(rotHor), NAMED(hor), NAMED(Zval), NAMED(Zstep), NAMED(TalkMenu), NAMED(IsTalkBool),
        NAMED(TalkTimer), NAMED(Fight_status), NAMED(Battle_Turn), NAMED(BATTLE_MESSAGE),
        NAMED(BattleMessageTimer), NAMED(PlayerTimer), NAMED(health), NAMED(ENEMY_Health),
        NAMED(special), NAMED(ENTERPRESS), NAMED(ENTERPRESS_ENEMY), NAMED(zoom), NAMED(action),
        NAMED(collision_back), NAMED(collision_action), NAMED(INITCOLLBOXES), NAMED(width),
        NAMED(height), NAMED(texture_back), NAMED(house_back), NAMED(collision_char.cx),
        NAMED(collision_char.cz), NAMED(objrot), NAMED(objrotold), NAMED(marked_params.pos_x),
        NAMED(enemy_params.pos_x),
    };
#undef NAMED
    const std::pair<std::string, float *> points[] = {
        {"position", position}, {"positionold", positionold}, {"vect", vect}, {"camrot", camrot},
        {"eye", camera.eye}, {"center", camera.center}, {"up", camera.up}};
    for (const auto &[name, coordinates] : points) {
        for (int axis = 0; axis < 3; ++axis) {
            all.push_back(global(name + '.' + "xyz"[axis], coordinates[axis]));
        }
    }
    return all;
}
// clang-format on

std::vector<Global> table = listAll();

}  // namespace

std::string changes() {
    std::string all;
    for (Global &global : table) {
        const double now = global.value();
        if (global.watched && now != global.seen) {
            all += (all.empty() ? "" : "  ") + global.name + ' ' + text(now);
        }
        global.seen = now;
    }
    return all;
}

bool watch(const std::set<std::string> &names) {
    std::set<std::string> unknown = names;
    for (Global &global : table) {
        const std::string array = global.name.substr(0, global.name.find('.'));
        global.watched = names.contains(global.name) || names.contains(array);
        unknown.erase(global.name);
        unknown.erase(array);
    }
    return unknown.empty();
}

bool set(const std::string &name, double value) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&name](const Global &global) { return global.name == name; });
    if (found == table.end()) {
        return false;
    }
    found->assign(value);
    found->seen = found->value();
    return true;
}

}  // namespace globals

std::string text(double number) {
    std::ostringstream words;
    words << std::setprecision(15) << std::round(number * 1e4) / 1e4 + 0.0;
    return words.str();
}
