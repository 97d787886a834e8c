#pragma once
// The life of one run: start-up in its fixed order, claim of a work file, exit with its questions.

#include "core/result.h"
#include "session/session.h"

#include <filesystem>
#include <string>

namespace nmr {

inline constexpr int kVersionMajor = 0, kVersionMinor = 1, kVersionRevision = 0;
/// "Ver." with the numbers by the patterns "###.", "##0." and "#####0".
std::string VersionText();

/// The command line as one string: argv[1], put in quotes when it holds blanks and has none.
std::string CommandLineFromArgument(const std::string& argument);
/// Unpacks the command line into CmdLineFile and NoBounce.
void ParseCommandLine(GlobalBlock& g, std::string line);

enum class StartResult { run, ended };
struct StartOptions {
    std::string command_line;
    std::filesystem::path app_path; ///< data folder of this run, without a closing separator
    std::filesystem::path sibling;  ///< program for two-dimensional data
    std::function<void()> show_splash{}, hide_splash{};
};
inline constexpr char kSplashName[] = "1D NMR Data Processing";
inline constexpr char kSplashWait[] = "Wait a moment";

/// All of start-up up to the showing of the main form. `ended`: the run is over (file in use, handed
/// to the sibling, "Quit" in the user form).
StartResult Start(Session& s, const StartOptions& options);

/// The file of the command line, once the main form shows; nothing without one.
void Read_Command_Line_File(Session& s);

/// The store for a run without a window: defaults, tables, sine table, no claim.
void Start_Batch(GlobalBlock& g, const std::filesystem::path& app_path = {});

/// The smallest free number and the files that carry it; creates WorkFile.
void Claim_Work_File(GlobalBlock& g);

/// Exit: questions, settings, removal of this run's files. True when the window may close; the
/// window's size and state must stand in the settings before. DialogResult is "END" or "CANCEL".
bool m19_Click(Session& s);

} // namespace nmr
