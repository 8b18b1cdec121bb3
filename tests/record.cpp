#include "record.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "assets.h"
#include "globals.h"
#include "recording_gl.h"
#include "scene_collision.h"

namespace record {
namespace {

using recording::Drawing;
using recording::State;
using recording::Vertex;

// Things that alternate in one scene: three houses and a fire.
constexpr std::size_t LONGEST_ALTERNATION = 4;

// What a corner counts in a sum, 1 to CYCLE by its number; each next part of its value counts
// more, so that no two parts can change places.
constexpr int STRIDE = 7;
constexpr int CYCLE = 11;
constexpr double NEXT_PART = 1.3;

// The overlay coordinates of the middle of the screen, and from there to its right and upper edge.
constexpr glm::vec3 MIDDLE = {0.4F, 0.7F, 0};
constexpr glm::vec3 TO_EDGES = {0.8F, -0.7F, 1};

// Means and weighted sums of values with up to four parts.
class Sums {
public:
    template <typename Vector>
    void add(const Vector &values) {
        double weight = 1 + count * STRIDE % CYCLE;
        mean.resize(values.length());
        for (int i = 0; i < values.length(); ++i, weight *= NEXT_PART) {
            mean[static_cast<std::size_t>(i)] += values[i];
            weighted += weight * values[i];
        }
        ++count;
    }
    // Nothing where nothing was added.
    std::string print(const char *name) const {
        std::string line = count > 0 ? std::string("  ") + name : "";
        for (const double part : mean) {
            line += ' ' + text(part / count);
        }
        return line + (count > 1 ? " ~ " + text(weighted) : "");
    }

private:
    int count = 0;
    std::vector<double> mean;
    double weighted = 0;
};

struct Item {
    std::string name;
    std::string state;
    int times = 0;
    Sums place = {}, colour = {}, normal = {}, texCoord = {};

    std::string print() const {
        return "  " + name + (times > 1 ? " x" + std::to_string(times) : "") + place.print("at") +
               colour.print("colour") + normal.print("normal") + texCoord.print("st") + state;
    }
};

using Names = std::map<unsigned, std::string>;

std::string nameIn(const Names &names, unsigned object) {
    const auto found = names.find(object);
    return found == names.end() ? std::to_string(object) : found->second;
}

// clang-format off
std::string textureName(unsigned name) {
    Names names = {
        {texture[GROUND_TEXTURE], "ground"}, {texture[FIRE_TEXTURE], "fire"},
        {texture[BLUE_FIRE_TEXTURE], "blue"}, {skybox[SKY], "sky"}, {skybox[FLOOR], "floor"},
        {skybox[NORTH], "north"}, {skybox[SOUTH], "south"}, {skybox[WEST], "west"},
        {skybox[EAST], "east"}};
    for (unsigned slot = 0; slot < texture_back; ++slot) {
        names.try_emplace(texture[slot], "model" + std::to_string(slot));
    }
    return nameIn(names, name);
}

std::string listName(unsigned list) {
    return nameIn({{house1, "house1"}, {house2, "house2"}, {house3, "house3"}, {intro, "cube"},
                   {tree, "tree"}, {castle, "castle"}, {forest, "forest"}, {NPC, "townsperson"}},
                  list);
}
// clang-format on

// With a perspective, w depends on z.
bool onScreen(const State &s) {
    return s.projection[2][3] == 0;
}

std::string stateText(const State &s) {
    using namespace recording;
    std::string line;
    const auto on = [&s](GLenum capability) { return s.on.contains(capability); };
    const auto add = [&line](bool so, const std::string &words) { line += so ? ", " + words : ""; };
    const auto found = gl.textures.find(s.texture);
    const Texture bound = found == gl.textures.end() ? Texture() : found->second;
    add(on(GL_TEXTURE_2D),
        std::string(s.environment) + ' ' + bound.values[WRAP_S] + ' ' + bound.values[WRAP_T]);
    add(on(GL_LIGHTING), std::string("lit ") + s.shading);
    add(on(GL_LIGHTING) && !on(GL_COLOR_MATERIAL), "without colour");
    add(on(GL_LIGHTING) && !on(GL_NORMALIZE), "without normalize");
    add(on(GL_LIGHTING) && !(on(GL_LIGHT0) && on(GL_LIGHT1)), "by one light");
    add(on(GL_BLEND), std::string("blend ") + s.blending[0] + ' ' + s.blending[1]);
    add(on(GL_DEPTH_TEST), "depth");
    add(on(GL_STENCIL_TEST),
        std::string("stencil ") + s.stencilFunction + ' ' + std::to_string(s.stencilReference) +
            ' ' + (s.stencilMask == ~0U ? "all " : "some ") + s.stencilOperations[0] + ' ' +
            s.stencilOperations[1] + ' ' + s.stencilOperations[2]);
    return "  [" + line.substr(std::min<std::size_t>(2, line.size())) + "]";
}

// Parts of poodles are what is drawn without a list, a texture or wires.
std::string thing(const Drawing &d, Detail detail) {
    const std::string where = onScreen(d.state) ? " screen" : "";
    if (d.kind == recording::TEXT) {
        return '"' + d.name + '"' + where;
    }
    if (d.state.on.contains(GL_TEXTURE_2D)) {
        return textureName(d.state.texture) + ' ' +
               (d.list != 0 ? listName(d.list) : d.name + where);
    }
    if (d.list != 0) {
        return listName(d.list);
    }
    return detail == PARTS || onScreen(d.state) || d.name[0] == 'w' ? d.name + where : "parts";
}

void add(Item &item, const Drawing &d) {
    ++item.times;
    for (const Vertex &v : d.vertices) {
        glm::vec3 p = v.position;
        if (onScreen(d.state)) {
            p = MIDDLE + TO_EDGES * recording::transform(d.state.projection, p);
        }
        item.place.add(p);
        item.colour.add(v.colour);
        if (d.state.on.contains(GL_LIGHTING) && d.kind != recording::SHAPE) {
            item.normal.add(v.normal);
        }
        if (d.state.on.contains(GL_TEXTURE_2D)) {
            item.texCoord.add(v.texCoord);
        }
    }
}

// The item that the drawing repeats, or a new one.
Item &itemFor(const Drawing &d, Detail detail, std::vector<Item> &items) {
    const std::string name = thing(d, detail);
    const std::string state = detail == NAMES ? "" : stateText(d.state);
    const bool single = onScreen(d.state) || d.kind == recording::TEXT ||
                        (detail == PARTS && d.kind == recording::SHAPE);
    const std::size_t among = detail == NAMES   ? items.size()
                              : single          ? 0
                              : detail == PARTS ? 1
                                                : LONGEST_ALTERNATION;
    for (std::size_t back = 1; back <= std::min(among, items.size()); ++back) {
        Item &item = items[items.size() - back];
        if (item.name == name && item.state == state) {
            return item;
        }
    }
    return items.emplace_back(Item{.name = name, .state = state});
}

template <typename Vector>
std::string join(const Vector &values) {
    std::string line;
    for (int i = 0; i < values.length(); ++i) {
        line += ' ' + text(static_cast<double>(values[i]));
    }
    return line;
}

}  // namespace

Lines drawings(Detail detail) {
    std::vector<Item> items;
    for (const Drawing &d : recording::gl.drawings) {
        if (d.kind == recording::SWAP) {
            items.push_back({.name = d.name, .state = {}});
        } else if (d.kind == recording::CLEAR) {
            items.push_back({.name = d.name + "  to" + join(d.state.clearColour) + ' ' +
                                     std::to_string(d.state.clearStencil),
                             .state = {}});
        } else if (detail == NAMES) {
            ++itemFor(d, detail, items).times;
        } else {
            add(itemFor(d, detail, items), d);
        }
    }
    Lines lines;
    std::transform(items.begin(), items.end(), std::back_inserter(lines),
                   [](const Item &item) { return item.print(); });
    return lines;
}

Lines views() {
    Lines lines;
    for (const Drawing &d : recording::gl.drawings) {
        if (d.kind == recording::CLEAR || d.kind == recording::SWAP || onScreen(d.state)) {
            continue;
        }
        const glm::dmat4 rows = glm::transpose(d.state.projection);
        const std::string line = "  view  x" + join(rows[0]) + "  y" + join(rows[1]) + "  z" +
                                 join(rows[2]) + "  w" + join(rows[3]) + "  in" +
                                 join(d.state.viewport);
        if (lines.empty() || lines.back() != line) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::string leftBehind() {
    const State &s = recording::gl.state;
    return "  left  colour" + join(s.colour) + "  normal" + join(s.normal) + "  texture " +
           textureName(s.texture) + "  blend " + s.blending[0] + ' ' + s.blending[1] +
           (s.matrixMode == GL_MODELVIEW ? "" : "  another matrix") +
           (s.modelview == glm::dmat4(1) ? "" : "  a placement") + stateText(s);
}

Lines objects() {
    using namespace recording;
    const Window &w = recording::gl.window;
    Lines lines = {"  window \"" + w.title + "\"  size " + std::to_string(w.size[0]) + ' ' +
                   std::to_string(w.size[1]) + "  mode " + std::to_string(w.displayMode) +
                   (w.fullScreen ? "  full screen" : "")};
    for (const Light &light : recording::gl.state.lights) {
        lines.push_back("  light  ambient" + join(light[AMBIENT]) + "  diffuse" +
                        join(light[DIFFUSE]) + "  specular" + join(light[SPECULAR]) + "  at" +
                        join(light[POSITION]));
    }
    for (const auto &[name, t] : recording::gl.textures) {
        Sums pixels;
        for (std::size_t i = 0; i + 2 < t.pixels.size(); i += 3) {
            pixels.add(glm::ivec3(t.pixels[i], t.pixels[i + 1], t.pixels[i + 2]));
        }
        lines.push_back("  texture " + textureName(name) + "  size " + std::to_string(t.width) +
                        ' ' + std::to_string(t.height) + "  wrap " + t.values[WRAP_S] + ' ' +
                        t.values[WRAP_T] + "  filter " + t.values[LARGER] + ", " +
                        t.values[SMALLER] + (t.mipmaps ? "" : "  no mipmaps") +
                        pixels.print("pixels"));
    }
    return lines;
}

Lines footprints(unsigned first) {
    Lines lines;
    for (unsigned i = first; i < collision_back; ++i) {
        const Collision_Object &f = collision_scene[i];
        lines.push_back("  footprint " + std::to_string(i) + "  kind " + std::to_string(f.kind) +
                        "  code " + std::to_string(f.code) + "  minX " + text(f.minX) + "  maxX " +
                        text(f.maxX) + "  minZ " + text(f.minZ) + "  maxZ " + text(f.maxZ));
    }
    return lines;
}

Lines footprints(unsigned first, unsigned last) {
    Sums edges;
    Sums kinds;
    for (unsigned i = first; i <= last; ++i) {
        const Collision_Object &f = collision_scene[i];
        edges.add(glm::vec4(f.minX, f.maxX, f.minZ, f.maxZ));
        kinds.add(glm::ivec2(f.kind, f.code));
    }
    return {"  footprints " + std::to_string(first) + " .. " + std::to_string(last) +
            edges.print("edges") + kinds.print("kind")};
}

}  // namespace record
