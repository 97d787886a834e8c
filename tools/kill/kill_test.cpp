// kill_test KILLS WORK_FOLDER DATA... [--window NMR1D]: starts sessions that edit and save by a script, kills
// each (SIGKILL) at a random moment, and looks at what the next one finds. Without --window the program is
// edit_session beside this one; with it every other round runs the window.
//
// What must hold: a state that was told "accepted" is there after the kill, or the one that was on its way
// when the kill came ("pending"); a saved file holds what was saved last, or what was being saved.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <poll.h>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr char kScriptVariable[] = "NMR1D_EDIT_SCRIPT";
constexpr auto kLongestStart = std::chrono::seconds(60);

/// What the next start of one form of the program has to find.
struct Expected {
    std::set<std::string> states; ///< any of them; empty: nothing was accepted yet
    bool may_be_fresh = true;     ///< the state stands in a file, so that there is nothing to recover
    std::map<std::string, std::set<std::string>> files;
};

struct Form {
    const char* name = "";
    std::vector<std::string> command; ///< the script follows, or stands in the environment
    bool script_in_environment = false;
    fs::path home;
    Expected expected;
    int kills = 0, recovered = 0, fresh = 0;
    long accepted = 0, saves = 0;
};

struct Faults {
    int count = 0;
    void Add(const std::string& text)
    {
        ++count;
        fmt::print("kill_test: LOSS: {}\n", text);
    }
};

// --- One run

struct Child {
    pid_t process = -1;
    int output = -1;
    std::string text;
};

Child StartChild(const Form& form, const std::string& script)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) std::exit(2);
    Child child;
    child.process = ::fork();
    if (child.process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        const fs::path home = form.home;
        ::setenv("XDG_DATA_HOME", home.c_str(), 1);
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        std::vector<std::string> words = form.command;
        if (form.script_in_environment)
            ::setenv(kScriptVariable, script.c_str(), 1);
        else
            words.push_back(script);
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    child.output = ends[0];
    return child;
}

/// False at the end of the child's output.
bool ReadSome(Child& child, milliseconds wait)
{
    pollfd waiting{child.output, POLLIN, 0};
    if (::poll(&waiting, 1, static_cast<int>(wait.count())) <= 0) return true;
    std::array<char, 1 << 16> buffer{};
    const ssize_t count = ::read(child.output, buffer.data(), buffer.size());
    if (count > 0) child.text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

/// Runs until `delay` after the first edit was accepted, or after the start; the output up to the kill.
std::string RunAndKill(const Form& form, const std::string& script, milliseconds delay, bool from_start, Faults& faults)
{
    Child child = StartChild(form, script);
    const auto start = Clock::now();
    auto end = from_start ? start + delay : start + kLongestStart;
    bool running = true, working = from_start;
    while (running && Clock::now() < end) {
        running = ReadSome(child, milliseconds(1));
        if (working || child.text.find("\naccepted") == std::string::npos) continue;
        working = true;
        end = Clock::now() + delay;
    }
    if (!running) faults.Add(std::string(form.name) + ": the program ended by itself");
    if (!working) faults.Add(std::string(form.name) + ": no edit within a minute");
    ::kill(child.process, SIGKILL);
    ::waitpid(child.process, nullptr, 0);
    while (ReadSome(child, milliseconds(1000))) {
    }
    ::close(child.output);
    return child.text;
}

// --- What its lines say

void CheckStart(Form& form, const std::string& word, const std::string& state, Faults& faults)
{
    Expected& expected = form.expected;
    const bool fresh = word == "fresh";
    ++(fresh ? form.fresh : form.recovered);
    const bool good = fresh ? expected.may_be_fresh : expected.states.contains(state);
    if (!good)
        faults.Add(fmt::format("{}: {} {}, expected {}", form.name, word, state, fmt::join(expected.states, " or ")));
    expected.states = {state};
    expected.may_be_fresh = fresh;
    if (fresh) expected.states.clear();
}

void CheckFile(Form& form, const std::string& path, const std::string& content, Faults& faults)
{
    const auto known = form.expected.files.find(path);
    // A save that had hardly begun leaves no trace, one that was nearly done leaves its file.
    if (known == form.expected.files.end() || !known->second.contains(content))
        faults.Add(fmt::format("{}: {} is {}", form.name, path, content));
    form.expected.files[path] = {content};
}

void CheckMissing(Form& form, const std::set<std::string>& seen, Faults& faults)
{
    std::erase_if(form.expected.files, [&](const auto& file) {
        if (seen.contains(file.first)) return false;
        if (!file.second.contains("")) faults.Add(fmt::format("{}: {} is gone", form.name, file.first));
        return true;
    });
}

void Follow(Form& form, const std::string& output, Faults& faults)
{
    std::istringstream lines(output);
    std::set<std::string> seen;
    bool started = false, checked = false;
    std::string line;
    // The last line may be cut.
    while (std::getline(lines, line) && !lines.eof()) {
        std::istringstream words(line);
        std::string word, first, second;
        words >> word >> first >> second;
        Expected& expected = form.expected;
        if (word == "fresh" || word == "recovered") {
            CheckStart(form, word, first, faults);
            started = true;
        } else if (word == "file") {
            CheckFile(form, first, second, faults);
            seen.insert(first);
        } else if (line.find("could not be recovered") != std::string::npos) {
            faults.Add(fmt::format("{}: {}", form.name, line));
        } else if (word == "notice") {
            fmt::print("kill_test: {}: {}\n", form.name, line);
        } else if (started) {
            if (!std::exchange(checked, true)) CheckMissing(form, seen, faults);
            if (word == "pending") {
                expected.states.insert(first);
                expected.may_be_fresh = expected.may_be_fresh || second == "saved";
            }
            if (word == "accepted") {
                expected.states = {first};
                expected.may_be_fresh = second == "saved";
                ++form.accepted;
            }
            if (word == "saving") {
                auto& contents = expected.files[first];
                if (contents.empty()) contents.insert(""); // not there yet
                contents.insert(second);
            }
            if (word == "saved") {
                expected.files[first] = {second};
                ++form.saves;
            }
        }
    }
}

void Round(Form& form, const std::vector<std::string>& data, std::mt19937_64& random, Faults& faults)
{
    const fs::path saved = form.home / "saved";
    fs::create_directories(saved);
    const std::string script = fmt::format("{}|{}|{}", random() % 1000000000, saved.string(), fmt::join(data, "|"));
    // Every sixth kill comes during the start, where the work of the run before is brought back.
    const bool from_start = random() % 6 == 0;
    const milliseconds delay(random() % (from_start ? 400 : 700));
    Follow(form, RunAndKill(form, script, delay, from_start, faults), faults);
    ++form.kills;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4) return fmt::print(stderr, "usage: kill_test KILLS WORK_FOLDER DATA... [--window NMR1D]\n"), 2;
    const int kills = std::atoi(argv[1]);
    const fs::path folder = fs::absolute(argv[2]);
    const fs::path programs = fs::read_symlink("/proc/self/exe").parent_path();
    std::vector<Form> forms(1);
    forms[0].name = "command interface";
    forms[0].home = folder / "command";
    forms[0].command = {(programs / "edit_session").string(), (forms[0].home / "nmr1d").string()};
    std::vector<std::string> data;
    for (int i = 3; i < argc; ++i)
        if (std::string(argv[i]) == "--window" && i + 1 < argc)
            forms.push_back({"window", {fs::absolute(argv[++i]).string()}, true, folder / "window", {}});
        else
            data.push_back(fs::absolute(argv[i]).string());
    for (const Form& form : forms) fs::create_directories(form.home / "nmr1d");
    const char* seed = std::getenv("KILL_TEST_SEED");
    std::mt19937_64 random(seed != nullptr ? std::strtoull(seed, nullptr, 10) : std::random_device{}());
    Faults faults;
    for (int i = 0; i < kills; ++i) Round(forms[static_cast<std::size_t>(i) % forms.size()], data, random, faults);
    for (const Form& form : forms)
        fmt::print(
            "kill_test: {}: {} kills, {} edits accepted, {} saves, {} starts with work brought back, {} without\n",
            form.name, form.kills, form.accepted, form.saves, form.recovered, form.fresh);
    fmt::print("kill_test: {} losses\n", faults.count);
    return faults.count == 0 ? 0 : 1;
}
