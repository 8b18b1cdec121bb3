#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <regex>
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

constexpr int POINTER[] = {3, 4};  // of a key event; no key asks where it is

std::ifstream printed;  // the program's standard output
bool started = false;
std::map<std::string, Lines> lastReported;  // by "show", "screen" and "picture"
std::string lastLeft;

void require(bool holds, const std::string &otherwise) {
    if (!holds) {
        throw std::invalid_argument(otherwise);
    }
}

// Where the word is looked up in the table; `what` says what it should have been.
template <typename Table>
typename Table::mapped_type known(const Table &table, const std::string &word, const char *what) {
    require(table.contains(word), word + " is no " + what);
    return table.at(word);
}

double number(const std::string &word) {
    const std::optional<double> value = compare::readNumber(word);
    require(value.has_value(), word + " is no number");
    return *value;
}

int whole(const std::string &word) {
    return static_cast<int>(number(word));
}

void report(const Lines &lines) {
    reported.insert(reported.end(), lines.begin(), lines.end());
}

void reportFaults() {
    for (const std::string &fault : recording::faults()) {
        report({"  FAULT " + fault});
    }
}

// The first field of a line of a record, without how many there are.
std::string nameOf(const std::string &line) {
    return std::regex_replace(compare::fieldsOf(line).at(0), std::regex(" x\\d+$"), "");
}

// Reports what these lines show otherwise than the last ones, and the names of what is gone.
void reportNews(const Lines &lines, Lines &last) {
    std::set<std::string> names;
    std::transform(lines.begin(), lines.end(), std::inserter(names, names.end()), nameOf);
    std::string gone;
    for (const std::string &line : last) {
        if (const std::string name = nameOf(line); !names.contains(name)) {
            gone += (gone.empty() ? "  gone: " : ", ") + name;
        }
    }
    std::remove_copy_if(lines.begin(), lines.end(), std::back_inserter(reported),
                        [&last](const std::string &line) {
                            return std::find(last.begin(), last.end(), line) != last.end();
                        });
    if (!gone.empty()) {
        reported.push_back(gone);
    }
    last = lines;
}

unsigned char keyOf(const std::string &name) {
    static const std::map<std::string, unsigned char> NAMES = {
        {"Enter", 13}, {"Escape", 27}, {"space", ' '}};
    return name.size() == 1 ? static_cast<unsigned char>(name[0]) : known(NAMES, name, "key");
}

void press(const Words &words) {
    recording::gl.window.keyboard(keyOf(words[1]), POINTER[0], POINTER[1]);
}

void release(const Words &words) {
    recording::gl.window.keyboardUp(keyOf(words[1]), POINTER[0], POINTER[1]);
}

void button(const Words &words) {
    static const std::map<std::string, int> BUTTONS = {
        {"left", GLUT_LEFT_BUTTON}, {"middle", GLUT_MIDDLE_BUTTON}, {"right", GLUT_RIGHT_BUTTON}};
    static const std::map<std::string, int> STATES = {{"down", GLUT_DOWN}, {"up", GLUT_UP}};
    recording::gl.window.mouse(known(BUTTONS, words[1], "button"),
                               known(STATES, words[2], "state of a button"), POINTER[0],
                               POINTER[1]);
}

void update() {
    recording::gl.window.idle();
}

void frame() {
    recording::clear();
    recording::gl.window.display();
}

void step() {
    update();
    frame();
}

// Draws a frame and reports what the command of this name hasn't reported yet.
void reportFrame(const std::string &command) {
    frame();
    Lines lines = record::drawings(command == "show" ? record::NAMES : record::RUNS);
    if (command == "screen") {
        std::erase_if(lines, [](const auto &line) { return line.find(" screen") > line.size(); });
    } else if (command == "picture") {
        lines.push_back(record::leftBehind());
    }
    reportNews(lines, lastReported[command]);
    reportFaults();
}

void start(const Words &words) {
    started = true;
    reportFaults();
    if (words.size() == 1) {
        return;
    }
    require(words[1] == "town", words[1] + " is no place to start");
    const std::size_t lines = reported.size();
    for (const char *command :
         {"reshape 1280 1024", "press p", "step 2", "show", "screen", "picture"}) {
        play(command);
    }
    reported.resize(lines);
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
    report(record::drawings(record::PARTS));
    if (const std::string left = record::leftBehind(); left != lastLeft) {
        report({lastLeft = left});
    }
    reportFaults();
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
    const auto first = static_cast<unsigned>(whole(words.at(1)));
    report(words.size() == 2 ? record::footprints(first)
                             : record::footprints(first, static_cast<unsigned>(whole(words[2]))));
}

struct Command {
    std::function<void(const Words &)> action;
    std::size_t words = 0;  // with its name; one more says how often. 0: it takes any number
};

// clang-format off
const std::map<std::string, Command> COMMANDS = {
    {"remove",     {removeFiles}},
    {"cut",        {cutFile, 3}},
    {"write",      {writeFile}},
    {"watch",      {watch}},
    {"start",      {start}},
    {"press",      {press, 2}},
    {"release",    {release, 2}},
    {"tap",        {[](const Words &w) { press(w); release(w); update(); }, 2}},
    {"hold",       {[](const Words &w) { press(w); update(); }, 2}},
    {"update",     {[](const Words &) { update(); }, 1}},
    {"frame",      {[](const Words &) { frame(); }, 1}},
    {"step",       {[](const Words &) { step(); }, 1}},
    {"button",     {button, 3}},
    {"motion",     {[](const Words &w) {
        recording::gl.window.passiveMotion(whole(w[1]), whole(w[2])); }, 3}},
    {"reshape",    {[](const Words &w) {
        recording::gl.window.reshape(whole(w[1]), whole(w[2])); }, 3}},
    {"set",        {set}},
    {"show",       {[](const Words &w) { reportFrame(w[0]); }, 1}},
    {"screen",     {[](const Words &w) { reportFrame(w[0]); }, 1}},
    {"picture",    {[](const Words &w) { reportFrame(w[0]); }, 1}},
    {"view",       {[](const Words &) { frame(); report(record::views()); }, 1}},
    {"draw",       {drawScene, 2}},
    {"objects",    {[](const Words &) { report(record::objects()); }, 1}},
    {"footprints", {footprints}},
};
// clang-format on

// What has changed and was printed since the last call.
void reportChanges() {
    if (const std::string changes = started ? globals::changes() : ""; !changes.empty()) {
        report({"  " + changes});
    }
    std::fflush(stdout);
    printed.clear();
    printed.seekg(0, std::ios::cur);  // else some libraries stay at what was the end
    for (std::string line; std::getline(printed, line);) {
        report({"  printed: " + line});
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
    const bool counted = command.words > 0 && words.size() == command.words + 1;
    require(command.words == 0 || counted || words.size() == command.words, "number of words");
    report({"> " + line});
    for (int times = counted ? whole(words.back()) : 1; times > 0; --times) {
        command.action(words);
    }
    reportChanges();
}

}  // namespace commands
