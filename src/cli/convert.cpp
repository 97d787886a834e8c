#include "cli/convert.h"

#include "cli/run.h"
#include "core/text.h"
#include "formats/jcamp.h"
#include "session/ascii_commands.h"
#include "session/read_flow.h"
#include "session/save_flow.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace nmr {
namespace {

Status WriteText(Session& s, const ConvertOptions& options)
{
    return Save_Ascii(s.g, options.out, options.ascii);
}

Status WriteJcamp(Session& s, const ConvertOptions& options)
{
    return options.reduced ? WriteDataDx2(options.out, s.g, 0) : WriteDataDX(options.out, s.g, 0);
}

Status WriteNative(Session& s, const ConvertOptions& options)
{
    return Save_Ver4(s, options.out);
}

/// What convert writes: one row for an extension.
struct WriterRow {
    std::string_view extension;
    std::string_view help;
    Status (*write)(Session& s, const ConvertOptions& options);
};
constexpr WriterRow kWriters[] = {
    {".tvo1", "native, with all rows, every parameter and the history", WriteNative},
    {".tvo", "the same", WriteNative},
    {".tv1", "the same", WriteNative},
    {".csv", "text with every parameter and all points", WriteText},
    {".txt", "columns of ppm and intensity, see --ascii", WriteText},
    {".dat", "the same", WriteText},
    {".asc", "the same", WriteText},
    {".dx", "JCAMP-DX, see --reduced", WriteJcamp},
    {".jdx", "the same", WriteJcamp},
};

const WriterRow* FindWriter(const std::string& path)
{
    const std::string extension = std::filesystem::path(path).extension().string();
    const auto row = std::ranges::find_if(
        kWriters, [&](const WriterRow& writer) { return EqualsNoCase(writer.extension, extension); });
    return row == std::end(kWriters) ? nullptr : &*row;
}

std::string KnownExtensions()
{
    std::string known;
    for (const WriterRow& row : kWriters) known += fmt::format("{}{}", known.empty() ? "" : ", ", row.extension);
    return known;
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    std::error_code missing;
    return std::filesystem::equivalent(a, b, missing) && !missing;
}

} // namespace

std::string ConvertHelp()
{
    std::string text;
    for (const WriterRow& row : kWriters) text += fmt::format("  {:<6}{}\n", row.extension, row.help);
    return text;
}

Exit RunConvert(const ConvertOptions& options)
{
    const WriterRow* writer = FindWriter(options.out);
    if (writer == nullptr) {
        Complain(options.out, "the extension must be one of " + KnownExtensions());
        return Exit::usage;
    }
    if (IsSameFile(options.in, options.out)) {
        Complain(options.out, "a file can't be converted into itself");
        return Exit::usage;
    }
    Run run;
    run.asker.SetTableValues(options.table);
    run.asker.SetBlock(options.block);
    run.g->settings.ref_initital = options.file_reference ? 1 : 0;
    const Status read = Read_Path(run.session, options.in, run.type);
    TellWarnings(run, options.in, read ? std::string_view() : std::string_view(read.error().text));
    if (!read) {
        Complain(options.in, read.error().text);
        return ExitFor(read.error().code);
    }
    if (!HasRowAndBlock(run, options.in, options.row)) return Exit::bad_parameters;
    run.g->CurrentRow = static_cast<std::int16_t>(options.row - 1);
    if (const Status written = writer->write(run.session, options); !written) {
        Complain(options.out, written.error().text);
        return written.error().code == ErrorCode::bad_value ? Exit::bad_parameters : Exit::not_written;
    }
    return Exit::done;
}

} // namespace nmr
