// Plays recorded rounds of the whole program, from its start-up on, on the recording OpenGL,
// and compares what happened with what is expected.
//
// Usage: rounds [--write] ROUND.txt...    --write: what happens is what is expected from now on
//
// A round is a script, a command a line, "# " starts a comment. Beside ROUND.txt lies
// ROUND.expected: each command after a ">", followed by what it changed and showed.
//
// It is played in a folder with a copy of rounds/data: small data files, no two alike.
// Before the start every line is a shell command, to spoil them; then comes
//   start           run main up to its loop
// Afterwards:
//   press KEY [N] | release KEY [N]       key events; KEY is a character or its name
//   tap KEY [N]     N times: press, release, one update
//   hold KEY [N]    N times: press, one update; no release
//   button left|middle|right down|up | motion X Y | reshape W H
//   update [N] | frame [N]      the idle and the display callback
//   turn [N]        N times both, as GLUT does
//   set GLOBAL VALUE            puts the game somewhere without playing there
//   show [all|screen]           draws a frame and tells all of it, or what it shows otherwise than
//                               the last one told, or of that only what is on the screen
//   draw SCENE      calls a drawing operation by itself and tells what it draws
//   objects | footprints [FIRST]

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>

#include "game_objects.h"
#include "globals.h"
#include "record.h"
#include "recording_gl.h"
#include "scenes.h"

// The program's main, renamed for the tests.
int talveryMain(int argc, char **argv);

namespace {

using Lines = std::vector<std::string>;

// A number may be off by as much as another compiler's or processor's arithmetic: the sums add
// up thousands of rounded floats.
constexpr double TOLERANCE = 0.002;
constexpr double RELATIVE_TOLERANCE = 2e-7;

// --- Playing -----------------------------------------------------------------------

std::ofstream out;
std::ifstream printed;  // the program's standard output

void tell(const Lines &lines) {
    for (const std::string &line : lines) {
        out << line << '\n';
    }
}

// Forgets what was drawn, and tells what was done wrong meanwhile.
void clear() {
    for (const std::string &fault : recording::faults()) {
        out << "  FAULT " << fault << '\n';
    }
    recording::clear();
}

// What has changed, was printed and was done wrong since the last call.
void tellChanges() {
    if (const std::string changes = globals::changes(); !changes.empty()) {
        out << "  " << changes << '\n';
    }
    std::fflush(stdout);
    printed.clear();
    for (std::string line; std::getline(printed, line);) {
        out << "  printed: " << line << '\n';
    }
    clear();
    out.flush();
}

unsigned char keyOf(const std::string &name) {
    const std::map<std::string, unsigned char> names = {
        {"Enter", 13}, {"Escape", 27}, {"space", ' '}};
    const auto found = names.find(name);
    return found == names.end() ? static_cast<unsigned char>(name[0]) : found->second;
}

// A callback asks for one redisplay, and draws nothing itself.
template <typename... Arguments>
void call(void (*callback)(Arguments...), std::common_type_t<Arguments>... arguments) {
    clear();
    callback(arguments...);
    if (recording::redisplays() != 1 || !recording::drawings().empty()) {
        out << "  FAULT asked for " << recording::redisplays() << " redisplays, drew "
            << recording::drawings().size() << " things\n";
    }
}

void frame() {
    clear();
    recording::window().display();
    if (recording::drawings().back().kind != recording::SWAP || recording::redisplays() != 0) {
        out << "  FAULT a frame ends with the swap\n";
    }
}

void update() {
    call(recording::window().idle);
}

// Tells of a frame what the last one told did not show, and what that showed and this does not.
Lines news(const Lines &frame, const Lines &last) {
    Lines lines;
    std::copy_if(frame.begin(), frame.end(), std::back_inserter(lines), [&last](const auto &line) {
        return std::count(last.begin(), last.end(), line) == 0;
    });
    const auto name = [](const std::string &line) { return line.substr(0, line.find("  ", 2)); };
    for (const std::string &line : last) {
        if (std::none_of(frame.begin(), frame.end(),
                         [&](const auto &other) { return name(other) == name(line); })) {
            lines.push_back("  gone:" + name(line));
        }
    }
    return lines;
}

void show(const std::string &what) {
    static Lines last;
    frame();
    Lines lines = record::drawings(false);
    lines.push_back(record::leftBehind());
    Lines told = what == "all" ? lines : news(lines, last);
    if (what == "screen") {
        std::erase_if(told, [](const auto &line) { return line.find(" screen") > line.size(); });
    }
    tell(told);
    last = lines;
}

using Words = std::vector<std::string>;

Words wordsOf(const std::string &line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

// The i-th word as a number, 1 where there is none.
int number(const Words &words, std::size_t i) {
    return i < words.size() ? std::stoi(words[i]) : 1;
}

void press(const Words &words) {
    call(recording::window().keyboard, keyOf(words.at(1)), 3, 4);
}

void release(const Words &words) {
    call(recording::window().keyboardUp, keyOf(words.at(1)), 3, 4);
}

void button(const Words &words) {
    const int which = words.at(1) == "left"     ? GLUT_LEFT_BUTTON
                      : words.at(1) == "middle" ? GLUT_MIDDLE_BUTTON
                                                : GLUT_RIGHT_BUTTON;
    call(recording::window().mouse, which, words.at(2) == "down" ? GLUT_DOWN : GLUT_UP, 3, 4);
}

void drawScene(const Words &words) {
    camera.setup();
    scenes::draw(words.at(1));
    tell(record::drawings(true));
    out << record::leftBehind() << '\n';
}

constexpr std::size_t ONCE = 9;  // no command has so many words

// What a command does, and which of its words says how often.
// clang-format off
const std::map<std::string, std::pair<std::function<void(const Words &)>, std::size_t>> COMMANDS = {
    {"press",      {press, 2}},
    {"release",    {release, 2}},
    {"tap",        {[](const Words &w) { press(w); release(w); update(); }, 2}},
    {"hold",       {[](const Words &w) { press(w); update(); }, 2}},
    {"update",     {[](const Words &) { update(); }, 1}},
    {"frame",      {[](const Words &) { frame(); }, 1}},
    {"turn",       {[](const Words &) { update(); frame(); }, 1}},
    {"button",     {button, ONCE}},
    {"motion",     {[](const Words &w) {
        call(recording::window().passiveMotion, number(w, 1), number(w, 2)); }, ONCE}},
    {"reshape",    {[](const Words &w) {
        recording::window().reshape(number(w, 1), number(w, 2)); }, ONCE}},
    {"set",        {[](const Words &w) { globals::set(w.at(1), std::stod(w.at(2))); }, ONCE}},
    {"show",       {[](const Words &w) { show(w.size() > 1 ? w[1] : ""); }, ONCE}},
    {"draw",       {drawScene, ONCE}},
    {"objects",    {[](const Words &) { tell(record::objects()); }, ONCE}},
    {"footprints", {[](const Words &w) { tell(record::footprints(number(w, 1))); }, ONCE}},
};
// clang-format on

// The next line of the script that is not empty; told. False at its end.
bool next(std::istream &script, std::string &line) {
    while (std::getline(script, line)) {
        line.erase(std::min(line.find("# "), line.size()));
        line.erase(line.find_last_not_of(' ') + 1);
        if (!line.empty()) {
            out << "> " << line << std::endl;
            return true;
        }
    }
    return false;
}

void play(const std::string &line) {
    const Words words = wordsOf(line);
    const auto &[action, times] = COMMANDS.at(words.at(0));
    for (int i = 0; i < number(words, times); ++i) {
        action(words);
    }
    tellChanges();
}

// Plays a script in `folder`; the record grows in the file "record" there. Does not return.
[[noreturn]] void playRound(std::istream &script, const std::string &folder) {
    std::filesystem::current_path(folder);
    out.open("record");
    if (std::freopen("printed", "w", stdout) == nullptr) {
        std::exit(2);
    }
    printed.open("printed");
    std::string line;
    while (next(script, line) && line != "start") {
        if (std::system(line.c_str()) != 0) {
            std::exit(3);
        }
    }
    recording::onMainLoop([&] {
        const recording::Window &w = recording::window();
        out << "  \"" << w.title << "\" " << w.size[0] << " by " << w.size[1] << ", mode "
            << w.displayMode << (w.fullScreen ? ", full screen" : "") << '\n';
        tellChanges();
        while (next(script, line)) {
            play(line);
        }
    });
    char program[] = "talvery";
    char *arguments[] = {program, nullptr};
    std::exit(talveryMain(1, arguments) == 0 ? 99 : 1);
}

// --- Comparing ---------------------------------------------------------------------

bool sameWord(const std::string &a, const std::string &b) {
    char *endA = nullptr;
    char *endB = nullptr;
    const double x = std::strtod(a.c_str(), &endA);
    const double y = std::strtod(b.c_str(), &endB);
    const bool numbers = !a.empty() && !b.empty() && *endA == '\0' && *endB == '\0';
    return a == b || (numbers && std::fabs(x - y) <= TOLERANCE + RELATIVE_TOLERANCE * std::fabs(x));
}

bool sameLine(const std::string &a, const std::string &b) {
    const Words wordsA = wordsOf(a);
    const Words wordsB = wordsOf(b);
    return std::equal(wordsA.begin(), wordsA.end(), wordsB.begin(), wordsB.end(), sameWord);
}

Lines readLines(const std::string &path) {
    std::ifstream file(path);
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

// Tells where the record first leaves what is expected, and after which step; true where it
// doesn't.
bool compare(const std::string &name, Lines expected, Lines actual) {
    const std::size_t lines = std::max(expected.size(), actual.size());
    expected.resize(lines, "(nothing more)");
    actual.resize(lines, "(nothing more)");
    const auto [wanted, got] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), sameLine);
    if (wanted == expected.end()) {
        return true;
    }
    const auto step = std::find_if(std::reverse_iterator(wanted), expected.rend(),
                                   [](const std::string &line) { return line[0] == '>'; });
    std::cout << name << ", line " << wanted - expected.begin() + 1 << ", after \""
              << (step == expected.rend() ? "" : step->substr(2)) << "\"\n  expected " << *wanted
              << "\n  actual   " << *got
              << "\nLook at this step of the game. If the change is wanted, build write_rounds and "
                 "review the difference.\n";
    return false;
}

bool runRound(const std::string &script, bool write) {
    const std::filesystem::path path = std::filesystem::absolute(script);
    const std::filesystem::path expected =
        std::filesystem::path(path).replace_extension(".expected");
    std::ifstream file(script);
    std::string folder = std::filesystem::temp_directory_path() / "talvery_round_XXXXXX";
    if (!file || mkdtemp(folder.data()) == nullptr) {
        std::cout << "can't play " << script << '\n';
        return false;
    }
    std::filesystem::copy(path.parent_path() / "data", folder);
    std::cout.flush();
    const pid_t player = fork();
    if (player == 0) {
        playRound(file, folder);
    }
    int result = 0;
    waitpid(player, &result, 0);
    const std::string record = folder + "/record";
    std::ofstream(record, std::ios::app)
        << (WIFEXITED(result) ? "ended with status " + std::to_string(WEXITSTATUS(result))
                              : "ended by signal " + std::to_string(WTERMSIG(result)))
        << '\n';
    const Lines actual = readLines(record);
    const bool same = compare(expected.stem(), readLines(expected), actual);
    auto unplayed = -std::count_if(actual.begin(), actual.end(),
                                   [](const std::string &line) { return line[0] == '>'; });
    std::ifstream whole(script);
    for (std::string line; next(whole, line);) {
        ++unplayed;
    }
    if (unplayed != 0) {
        std::cout << expected.stem() << ": " << unplayed << " commands were not reached\n";
    }
    if (write && !same) {
        std::filesystem::copy_file(record, expected,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    std::filesystem::remove_all(folder);
    return (same || write) && unplayed == 0;
}

}  // namespace

int main(int argc, char **argv) {
    Lines scripts(argv + 1, argv + argc);
    const bool write = !scripts.empty() && scripts[0] == "--write";
    if (write) {
        scripts.erase(scripts.begin());
    }
    const auto same = std::count_if(scripts.begin(), scripts.end(), [write](const auto &script) {
        return runRound(script, write);
    });
    return same == static_cast<std::ptrdiff_t>(scripts.size()) && same > 0 ? 0 : 1;
}
