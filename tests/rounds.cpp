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

constexpr int MISSPELT = 2;  // exit status

struct Command {
    std::size_t line;  // of the script, from 1
    std::string text;
};

bool writing = false;
fs::path script;
fs::path folder;  // where it is played
std::vector<Command> commandsOfScript;
std::size_t played = 0;  // of them, with the one that is playing

fs::path expectedFile() {
    return fs::path(script).replace_extension(".expected");
}

Lines readLines(const fs::path &path) {
    std::ifstream file(path);
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void readScript() {
    const Lines lines = readLines(script);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string text = lines[i];
        text.erase(std::min(text.find("# "), text.size()));
        text.erase(text.find_last_not_of(' ') + 1);
        if (!text.empty()) {
            commandsOfScript.push_back({i + 1, text});
        }
    }
}

// The command of this number, from 1, as a message begins: "town.txt:12: press w".
std::string at(std::size_t number) {
    if (number == 0) {
        return script.string() + ": before its first command";
    }
    const Command &command = commandsOfScript[number - 1];
    return script.string() + ':' + std::to_string(command.line) + ": " + command.text;
}

constexpr int CRASHES[] = {SIGSEGV, SIGABRT, SIGFPE};
std::map<int, struct sigaction> defaults;  // what these signals did before

// Names the command at which the program crashed; then it crashes as it would have.
void crashed(int signal) {
    std::cerr << at(played) << "\nThe program crashed here.\n";
    sigaction(signal, &defaults.at(signal), nullptr);
}

// Plays the next command.
void play() {
    try {
        commands::play(commandsOfScript[played++].text);
    } catch (const std::exception &wrong) {
        std::cerr << at(played) << '\n' << wrong.what() << '\n';
        fs::remove_all(folder);
        std::_Exit(MISSPELT);
    }
}

// Tells where the record first leaves what is expected; true where it doesn't.
bool isExpected(Lines actual) {
    Lines expected = readLines(expectedFile());
    const std::size_t lines = std::max(expected.size(), actual.size());
    expected.resize(lines, "(nothing more)");
    actual.resize(lines, "(nothing more)");
    const auto [wanted, got] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), compare::same);
    if (wanted == expected.end()) {
        return true;
    }
    const auto command = static_cast<std::size_t>(
        std::count_if(actual.begin(), std::min(got + 1, actual.end()),
                      [](const std::string &line) { return line[0] == '>'; }));
    std::cerr << at(command) << '\n'
              << expectedFile().string() << ':' << wanted - expected.begin() + 1 << ": "
              << compare::difference(*wanted, *got)
              << "\nLook at this step of the game. If the change is wanted, build write_rounds and "
                 "review the difference.\n";
    return false;
}

// When the program ends: by a key of the script, or after its last command.
void finish() {
    bool good = true;
    if (played < commandsOfScript.size()) {
        std::cerr << at(played) << "\nThe program ended here; " << commandsOfScript.size() - played
                  << " commands were not reached.\n";
        good = false;
    } else if (writing) {
        std::ofstream file(expectedFile());
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
    if (argc != (writing ? 3 : 2)) {
        std::cerr << "Usage: rounds [--write] ROUND.txt\n";
        return MISSPELT;
    }
    script = fs::absolute(argv[argc - 1]);
    for (const fs::path &needed : {script, writing ? script : expectedFile()}) {
        if (!fs::is_regular_file(needed)) {
            std::cerr << needed.string() << ": there is no such file\n";
            return MISSPELT;
        }
    }
    readScript();
    std::string name = fs::temp_directory_path() / "talvery_round_XXXXXX";
    folder = mkdtemp(name.data());
    fs::copy(script.parent_path() / "data", folder);
    fs::current_path(folder);
    commands::capturePrinted();
    std::atexit(finish);
    for (const int signal : CRASHES) {
        struct sigaction action = {};
        action.sa_handler = crashed;
        sigaction(signal, &action, &defaults[signal]);
    }
    while (commandsOfScript.at(played).text.rfind("start", 0) != 0) {
        play();
    }
    recording::onMainLoop([] {
        while (played < commandsOfScript.size()) {
            play();
        }
        commands::told.emplace_back("the script ended");
    });
    char program[] = "talvery";
    char *arguments[] = {program, nullptr};
    return talveryMain(1, arguments);
}
