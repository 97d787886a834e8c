#include "support/files.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace nmr::test {

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "nmr1d-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void WriteText(const std::filesystem::path& path, std::string_view text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::filesystem::path RealData(std::string_view name)
{
    auto path = std::filesystem::path(NMR1D_SHARED_DATA) / name;
    std::error_code ignored;
    return std::filesystem::exists(path, ignored) ? std::filesystem::canonical(path, ignored) : std::filesystem::path();
}

} // namespace nmr::test
