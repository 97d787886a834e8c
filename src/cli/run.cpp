#include "cli/run.h"

#include "session/startup.h"

#include <fmt/format.h>

namespace nmr {

Run::Run()
{
    Start_Batch(*g);
    g->settings.vendor_start = 0; // only what the options ask for
}

bool HasRowAndBlock(const Run& run, const std::string& path, std::int32_t row)
{
    const std::int32_t rows = run.g->Slots[0].RowCount;
    if (row > rows) Complain(path, fmt::format("there is no row {}, the data have {}", row, rows));
    if (run.asker.BlockIsMissing()) Complain(path, "the file holds one data set only");
    return row <= rows && !run.asker.BlockIsMissing();
}

void Complain(const std::string& path, const std::string& text)
{
    fmt::print(stderr, "nmr1d-cli: {}: {}\n", path, text);
}

void TellWarnings(const Run& run, const std::string& path, std::string_view said)
{
    for (const std::string& warning : run.g->Slots[0].Warnings) Complain(path, warning);
    for (const std::string& warning : run.asker.warnings())
        if (said.empty() || !warning.ends_with(said)) Complain(path, warning);
}

} // namespace nmr
