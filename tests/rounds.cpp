// Plays a recorded round of the whole program, from its start-up on, on the recording OpenGL,
// and compares what happened with what is expected.
//
// Usage: rounds [--write] ROUND.txt    --write: what happens is what is expected from now on
//
// A round is a script, a command a line, "# " starts a comment. Beside ROUND.txt lies
// ROUND.expected: each command after a ">", followed by what it changed and showed.
//
// It is played in a folder with a copy of rounds/data: small data files, no two alike. They can be
// spoilt before the start:
//   remove FILE... | cut FILE BYTES | write FILE WORD...    a word / ends a line
// Then, or at any time:
//   watch GLOBAL...  from now on, tells of these alone where they change, not of all
//   start           runs main up to its loop
//   start town      the same in a large window and on into the town, and tells nothing of it
// Afterwards:
//   press KEY [N] | release KEY [N]       key events; KEY is a character or its name
//   tap KEY [N]     N times: press, release, one update
//   hold KEY [N]    N times: press, one update; no release
//   button left|middle|right down|up | motion X Y | reshape W H
//   update [N] | frame [N]      the idle and the display callback
//   step [N]        N times both, as GLUT does
//   set GLOBAL VALUE...         puts the game somewhere without playing there
//   show            draws a frame and tells by name what is there now, or in other numbers, and
//                   what is gone since the last one that was told
//   screen          draws a frame and tells in full what the screen shows over the world otherwise
//                   than the last one that was told
//   picture         draws a frame and tells all of it that the last picture showed otherwise
//   view            draws a frame and tells how the world is seen
//   draw SCENE      calls a drawing operation by itself and tells all parts that it draws
//   objects | footprints FIRST [LAST]       each, or all together
//
// A round tells in full what it is about and leaves the rest to the others: so that what is wrong
// in one place fails few of them.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <stdexcept>

#include "commands.h"
#include "compare.h"
#include "recording_gl.h"

// The program's main, renamed for the tests.
int talveryMain(int argc, char **argv);

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

bool writing = false;
fs::path scriptFile;
fs::path expectedFile;
fs::path folder;         // where it is played
Lines script;            // without comments, so that some lines are empty
std::size_t played = 0;  // of these lines, with the one that is playing

Lines readLines(const fs::path &path) {
    std::ifstream file(path);
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void readScript() {
    script = readLines(scriptFile);
    for (std::string &line : script) {
        line.erase(std::min(line.find("# "), line.size()));
        line.erase(line.find_last_not_of(' ') + 1);
    }
}

// As a message begins: "town.txt:12: press w".
std::string playing() {
    return scriptFile.string() + ':' + std::to_string(played) + ": " + script[played - 1] + '\n';
}

constexpr int CRASHES[] = {SIGSEGV, SIGABRT, SIGFPE};
std::map<int, struct sigaction> defaults;  // what these signals did before

// Names the command at which the program crashed; then it crashes as it would have.
void crashed(int signal) {
    std::cerr << playing() << "The program crashed here.\n";
    sigaction(signal, &defaults.at(signal), nullptr);
}

// Plays the next line.
void play() {
    const std::string line = script.at(played++);
    try {
        if (!line.empty()) {
            commands::play(line);
        }
    } catch (const std::exception &wrong) {
        std::cerr << playing() << wrong.what() << '\n';
        fs::remove_all(folder);
        std::_Exit(EXIT_FAILURE);
    }
}

// Tells where the record first leaves what is expected; true where it doesn't.
bool isExpected(Lines actual) {
    Lines expected = readLines(expectedFile);
    const std::size_t lines = std::max(expected.size(), actual.size());
    expected.resize(lines, "(nothing more)");
    actual.resize(lines, "(nothing more)");
    const auto [wanted, got] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), compare::same);
    if (wanted == expected.end()) {
        return true;
    }
    auto commands = std::count_if(actual.begin(), got + 1,
                                  [](const std::string &line) { return line[0] == '>'; });
    for (played = 0; commands > 0; ++played) {
        commands -= script[played].empty() ? 0 : 1;
    }
    std::cerr << playing() << expectedFile.string() << ':' << wanted - expected.begin() + 1 << ": "
              << compare::difference(*wanted, *got)
              << "\nLook at this step of the game. If the change is wanted, build write_rounds and "
                 "review the difference.\n";
    return false;
}

// When the program ends: by a key of the script, or after its last command.
void finish() {
    bool good = true;
    if (std::any_of(script.begin() + played, script.end(),
                    [](const std::string &line) { return !line.empty(); })) {
        std::cerr << playing() << "The program ended here, before the script.\n";
        good = false;
    } else if (writing) {
        std::ofstream file(expectedFile);
        for (const std::string &line : commands::told) {
            file << line << '\n';
        }
    } else {
        good = isExpected(commands::told);
    }
    fs::remove_all(folder);
    if (!good) {
        std::_Exit(EXIT_FAILURE);
    }
}

}  // namespace

int main(int argc, char **argv) {
    writing = argc == 3 && std::string(argv[1]) == "--write";
    scriptFile = fs::absolute(argv[argc - 1]);
    if (argc != (writing ? 3 : 2) || !fs::is_regular_file(scriptFile)) {
        std::cerr << "Usage: rounds [--write] ROUND.txt\n";
        return EXIT_FAILURE;
    }
    expectedFile = fs::path(scriptFile).replace_extension(".expected");
    readScript();
    std::string name = fs::temp_directory_path() / "talvery_round_XXXXXX";
    folder = mkdtemp(name.data());
    fs::copy(scriptFile.parent_path() / "data", folder);
    fs::current_path(folder);
    commands::capturePrinted();
    std::atexit(finish);
    for (const int signal : CRASHES) {
        struct sigaction action = {};
        action.sa_handler = crashed;
        sigaction(signal, &action, &defaults[signal]);
    }
    while (script.at(played).rfind("start", 0) != 0) {
        play();
    }
    recording::onMainLoop([] {
        while (played < script.size()) {
            play();
        }
        commands::told.emplace_back("the script ended");
    });
    char program[] = "talvery";
    char *arguments[] = {program, nullptr};
    return talveryMain(1, arguments);
}
