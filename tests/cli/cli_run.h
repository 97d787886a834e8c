#pragma once
// nmr1d-cli as a process: its exit code and what it writes.

#include "support/files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

namespace nmr::test {

using Json = nlohmann::json;

struct Outcome {
    int exit = -1;
    std::string out;
    Json json() const { return Json::parse(out); }
};

inline Outcome RunCommand(const std::string& command)
{
    Outcome outcome;
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) return outcome;
    char buffer[4096];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) outcome.out.append(buffer, got);
    outcome.exit = WEXITSTATUS(pclose(pipe));
    return outcome;
}

inline const std::string kBin = NMR1D_BINARY_DIR "/bin/";

inline Outcome Cli(const std::string& arguments)
{
    return RunCommand(kBin + "nmr1d-cli " + arguments);
}

/// A word of the shell, whatever it holds but quotes.
inline std::string Quoted(const std::string& word)
{
    return "'" + word + "'";
}

// The sample, made once for all tests of a file.
class CliSample : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder_ = new TempFolder;
        ASSERT_EQ(RunCommand(kBin + "make_sample_fid " + (*folder_ / "sample")).exit, 0);
    }
    static void TearDownTestSuite() { delete folder_; }
    static std::string Sample() { return *folder_ / "sample/1"; }
    static std::string Path(const std::string& name) { return *folder_ / name; }

private:
    static inline TempFolder* folder_ = nullptr;
};

} // namespace nmr::test
