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
//   watch GLOBAL...  from now on, reports these alone where they change, not of all
//   start           runs main up to its loop
//   start town      the same in a large window and on into the town, and reports nothing of it
// Afterwards:
//   press KEY [N] | release KEY [N]       key events; KEY is a character or its name
//   tap KEY [N]     N times: press, release, one update
//   hold KEY [N]    N times: press, one update; no release
//   button left|middle|right down|up | motion X Y | reshape W H
//   update [N] | frame [N]      the idle and the display callback
//   step [N]        N times both, as GLUT does
//   set GLOBAL VALUE...         puts the game somewhere without playing there
//   show            draws a frame and reports by name what is there now, or in other numbers, and
//                   what is gone since the last one that was reported
//   screen          draws a frame and reports in full what the screen shows over the world
//                   otherwise than in the last one that was reported
//   picture         draws a frame and reports all of it that the last picture showed otherwise
//   view            draws a frame and reports how the world is seen
//   draw SCENE      calls a drawing operation by itself and reports all parts that it draws
//   objects | footprints FIRST [LAST]       each, or all together
//
// A round reports in full what it is about and leaves the rest to the others: so that what is wrong
// in one place fails few of them.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "commands.h"
#include "compare.h"
#include "recording_gl.h"

// The program's main, renamed for the tests.
int talveryMain(int argc, char **argv);

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

constexpr const char *END = "(nothing more)";  // after the last line

bool writing = false;
fs::path scriptFile;
fs::path expectedFile;
fs::path folder;         // where it is played
Lines script;            // without comments, so that some lines are empty
std::size_t played = 0;  // of these lines, with the one that is playing
Lines expected;
std::size_t compared = 0;  // of these lines

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

// Names the line that is playing: "town.txt:12: press w".
[[noreturn]] void fail(const std::string &why) {
    std::cerr << scriptFile.string() << ':' << played << ": " << script[played - 1] << '\n'
              << why << '\n';
    fs::remove_all(folder);
    std::_Exit(EXIT_FAILURE);
}

// Goes through what was reported since the last call.
void compareReport() {
    for (; !writing && compared < commands::reported.size(); ++compared) {
        const std::string &actual = commands::reported[compared];
        if (!compare::same(expected[compared], actual)) {
            fail(expectedFile.string() + ':' + std::to_string(compared + 1) + ':' +
                 compare::difference(expected[compared], actual) +
                 "\nLook at this step of the game. If the change is wanted, build write_rounds and "
                 "review the difference.");
        }
    }
}

// Plays the next line.
void play() {
    const std::string &line = script.at(played++);
    try {
        if (!line.empty()) {
            commands::play(line);
        }
    } catch (const std::exception &wrong) { fail(wrong.what()); }
    compareReport();
}

// When the program ends: by a key of the script, or after its last command.
void finish() {
    if (played < script.size()) {
        fail("The program ended here, before the script.");
    }
    commands::reported.emplace_back(END);
    compareReport();
    if (writing) {
        std::ofstream file(expectedFile);
        std::copy(commands::reported.begin(), commands::reported.end() - 1,
                  std::ostream_iterator<std::string>(file, "\n"));
    }
    fs::remove_all(folder);
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
    expected = readLines(expectedFile);
    expected.emplace_back(END);
    std::string name = fs::temp_directory_path() / "talvery_round_XXXXXX";
    folder = mkdtemp(name.data());
    fs::copy(scriptFile.parent_path() / "data", folder);
    fs::current_path(folder);
    commands::capturePrinted();
    std::atexit(finish);
    while (script.at(played).rfind("start", 0) != 0) {
        play();
    }
    recording::gl.script = [] {
        while (played < script.size()) {
            play();
        }
        commands::reported.emplace_back("the script ended");
    };
    return talveryMain(argc, argv);
}
