#pragma once
// Folders and files for tests.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace nmr::test {

/// A folder of its own for one test, removed with everything in it.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::string operator/(std::string_view name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

void WriteText(const std::filesystem::path& path, std::string_view text);
std::string ReadText(const std::filesystem::path& path);

/// A real instrument data set by its folder's name; empty when the collection is not on this machine.
std::filesystem::path RealData(std::string_view name);

} // namespace nmr::test

/// Skips the test where the collection of real files is missing.
#define NMR1D_REAL_DATA(variable, name)                                                                                \
    const auto variable = nmr::test::RealData(name);                                                                   \
    if (variable.empty()) GTEST_SKIP() << "no real data here"
