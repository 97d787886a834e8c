#pragma once
// One run of the program, and what it says on standard error.

#include "cli/cli_asker.h"
#include "formats/detect.h"
#include "session/session.h"

#include <memory>
#include <string>
#include <string_view>

namespace nmr {

/// The global block is large, so it stands on the heap.
struct Run {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    CliAsker asker;
    Session session{*g, asker, {}, {}, {}, {}, false};
    FileType type;

    Run();
};

/// False, and said so, when the read data have no such row, or their file no such data set.
bool HasRowAndBlock(const Run& run, const std::string& path, std::int32_t row);

/// "nmr1d-cli: PATH: TEXT".
void Complain(const std::string& path, const std::string& text);

/// Where the report on standard output is not for people, what went wrong must not stay unseen.
/// Warnings that end with `said` have been told already.
void TellWarnings(const Run& run, const std::string& path, std::string_view said = {});

} // namespace nmr
