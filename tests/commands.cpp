#include "commands.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>

#include "compare.h"
#include "game_objects.h"
#include "globals.h"
#include "record.h"
#include "recording_gl.h"
#include "scenes.h"

namespace commands {
namespace {

using Lines = std::vector<std::string>;
using Words = std::vector<std::string>;

constexpr int POINTER[] = {3, 4};       // of a key event; no key asks where it is
constexpr int WINDOW[] = {1280, 1024};  // after "start town"

std::ifstream printed;  // the program's standard output
bool started = false;
std::map<std::string, Lines> lastTold;  // by "show", "screen" and "picture"
std::string lastLeft;

// Where the word is looked up in the table; `what` says what it should have been.
template <typename Table>
typename Table::mapped_type known(const Table &table, const std::string &word, const char *what) {
    const auto found = table.find(word);
    if (found == table.end()) {
        throw std::invalid_argument(word + " is no " + what);
    }
    return found->second;
}

void require(bool holds, const std::string &otherwise) {
    if (!holds) {
        throw std::invalid_argument(otherwise);
    }
}

double number(const std::string &word) {
    const std::optional<double> value = compare::readNumber(word);
    require(value.has_value(), word + " is no number");
    return *value;
}

int whole(const std::string &word) {
    return static_cast<int>(number(word));
}

void tell(const Lines &lines) {
    told.insert(told.end(), lines.begin(), lines.end());
}

void tellFaults() {
    for (const std::string &fault : recording::faults()) {
        tell({"  FAULT " + fault});
    }
}

// The first field of a line of a record, without how many there are.
std::string nameOf(const std::string &line) {
    const std::size_t quote = line.rfind('"');
    std::string name = line.substr(0, line.find("  ", quote < line.size() ? quote : 2));
    const std::size_t times = name.rfind(" x");
    return times < name.size() && isdigit(name[times + 2]) != 0 ? name.substr(0, times) : name;
}

// Tells what these lines show otherwise than the last ones, and the names of what is gone.
void tellNews(const Lines &lines, Lines &last) {
    std::set<std::string> names;
    std::transform(lines.begin(), lines.end(), std::inserter(names, names.end()), nameOf);
    std::string gone;
    for (const std::string &line : last) {
        if (const std::string name = nameOf(line); !names.contains(name)) {
            gone += (gone.empty() ? "  gone: " : ", ") + name.substr(2);
        }
    }
    std::remove_copy_if(lines.begin(), lines.end(), std::back_inserter(told),
                        [&last](const std::string &line) {
                            return std::find(last.begin(), last.end(), line) != last.end();
                        });
    if (!gone.empty()) {
        told.push_back(gone);
    }
    last = lines;
}

unsigned char keyOf(const std::string &name) {
    static const std::map<std::string, unsigned char> NAMES = {
        {"Enter", 13}, {"Escape", 27}, {"space", ' '}};
    return name.size() == 1 ? static_cast<unsigned char>(name[0]) : known(NAMES, name, "key");
}

void press(const Words &words) {
    recording::window().keyboard(keyOf(words[1]), POINTER[0], POINTER[1]);
}

void release(const Words &words) {
    recording::window().keyboardUp(keyOf(words[1]), POINTER[0], POINTER[1]);
}

void button(const Words &words) {
    static const std::map<std::string, int> BUTTONS = {
        {"left", GLUT_LEFT_BUTTON}, {"middle", GLUT_MIDDLE_BUTTON}, {"right", GLUT_RIGHT_BUTTON}};
    static const std::map<std::string, int> STATES = {{"down", GLUT_DOWN}, {"up", GLUT_UP}};
    recording::window().mouse(known(BUTTONS, words[1], "button"),
                              known(STATES, words[2], "state of a button"), POINTER[0], POINTER[1]);
}

void update() {
    recording::window().idle();
}

void frame() {
    recording::clear();
    recording::window().display();
}

void step() {
    update();
    frame();
}

// Draws a frame and tells what the command of this name hasn't told yet.
void tellFrame(const std::string &command) {
    frame();
    Lines lines = record::drawings(command == "show" ? record::NAMES : record::RUNS);
    if (command == "screen") {
        std::erase_if(lines, [](const auto &line) { return line.find(" screen") > line.size(); });
    } else if (command == "picture") {
        lines.push_back(record::leftBehind());
    }
    tellNews(lines, lastTold[command]);
    tellFaults();
}

void start(const Words &words) {
    started = true;
    tellFaults();
    if (words.size() == 1) {
        return;
    }
    require(words[1] == "town", words[1] + " is no place to start");
    recording::window().reshape(WINDOW[0], WINDOW[1]);
    press({"press", "p"});
    step();
    step();
    const std::size_t lines = told.size();
    for (const char *command : {"show", "screen", "picture"}) {
        tellFrame(command);
    }
    told.resize(lines);
    globals::changes();
}

void watch(const Words &words) {
    require(globals::watch({words.begin() + 1, words.end()}), "not all of these are globals");
}

void set(const Words &words) {
    require(words.size() % 2 == 1, "a value is missing");
    for (std::size_t i = 1; i < words.size(); i += 2) {
        require(globals::set(words[i], number(words[i + 1])), words[i] + " is no global");
    }
}

void drawScene(const Words &words) {
    recording::clear();
    camera.setup();
    known(SCENES, words[1], "scene")();
    tell(record::drawings(record::PARTS));
    if (const std::string left = record::leftBehind(); left != lastLeft) {
        tell({lastLeft = left});
    }
    tellFaults();
}

void removeFiles(const Words &words) {
    for (std::size_t i = 1; i < words.size(); ++i) {
        require(std::filesystem::remove(words[i]), words[i] + " is no file");
    }
}

void cutFile(const Words &words) {
    std::filesystem::resize_file(words[1], static_cast<std::uintmax_t>(whole(words[2])));
}

// A word "/" ends a line.
void writeFile(const Words &words) {
    std::ofstream file(words[1]);
    for (std::size_t i = 2; i < words.size(); ++i) {
        file << (words[i] == "/" ? "\n" : words[i] + ' ');
    }
}

void footprints(const Words &words) {
    const auto first = static_cast<unsigned>(whole(words[1]));
    tell(words.size() == 2 ? record::footprints(first)
                           : record::footprints(first, static_cast<unsigned>(whole(words[2]))));
}

constexpr std::size_t ANY = 1000;

struct Command {
    std::function<void(const Words &)> action;
    std::size_t words;      // that it needs, with its name
    std::size_t most;       // words that it takes
    bool repeated = false;  // the last one, if it is there, says how often
};

// clang-format off
const std::map<std::string, Command> COMMANDS = {
    {"remove",     {removeFiles, 2, ANY}},
    {"cut",        {cutFile, 3, 3}},
    {"write",      {writeFile, 3, ANY}},
    {"watch",      {watch, 1, ANY}},
    {"start",      {start, 1, 2}},
    {"press",      {press, 2, 3, true}},
    {"release",    {release, 2, 3, true}},
    {"tap",        {[](const Words &w) { press(w); release(w); update(); }, 2, 3, true}},
    {"hold",       {[](const Words &w) { press(w); update(); }, 2, 3, true}},
    {"update",     {[](const Words &) { update(); }, 1, 2, true}},
    {"frame",      {[](const Words &) { frame(); }, 1, 2, true}},
    {"step",       {[](const Words &) { step(); }, 1, 2, true}},
    {"button",     {button, 3, 3}},
    {"motion",     {[](const Words &w) {
        recording::window().passiveMotion(whole(w[1]), whole(w[2])); }, 3, 3}},
    {"reshape",    {[](const Words &w) {
        recording::window().reshape(whole(w[1]), whole(w[2])); }, 3, 3}},
    {"set",        {set, 3, ANY}},
    {"show",       {[](const Words &w) { tellFrame(w[0]); }, 1, 1}},
    {"screen",     {[](const Words &w) { tellFrame(w[0]); }, 1, 1}},
    {"picture",    {[](const Words &w) { tellFrame(w[0]); }, 1, 1}},
    {"view",       {[](const Words &) { frame(); tell(record::views()); }, 1, 1}},
    {"draw",       {drawScene, 2, 2}},
    {"objects",    {[](const Words &) { tell(record::objects()); }, 1, 1}},
    {"footprints", {footprints, 2, 3}},
};
// clang-format on

// What has changed and was printed since the last call.
void tellChanges() {
    if (const std::string changes = started ? globals::changes() : ""; !changes.empty()) {
        tell({"  " + changes});
    }
    std::fflush(stdout);
    printed.clear();
    printed.seekg(0, std::ios::cur);  // else some libraries stay at what was the end
    for (std::string line; std::getline(printed, line);) {
        tell({"  printed: " + line});
    }
}

}  // namespace

void capturePrinted() {
    require(std::freopen("printed", "w", stdout) != nullptr, "can't capture what is printed");
    printed.open("printed");
}

void play(const std::string &line) {
    const Words words = compare::wordsOf(line);
    const Command &command = known(COMMANDS, words[0], "command");
    require(words.size() >= command.words && words.size() <= command.most, "too few or many words");
    const bool counted = command.repeated && words.size() == command.most;
    tell({"> " + line});
    for (int times = counted ? whole(words.back()) : 1; times > 0; --times) {
        command.action(words);
    }
    tellChanges();
}

}  // namespace commands
