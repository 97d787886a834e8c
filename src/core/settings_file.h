#pragma once
// Settings files: rows "KEY ; value" under a version tag, and the small tables beside the program.

#include "core/global_block.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nmr {

/// Every setting to its built-in default, with the file types and labels that hang on it.
void InitGlobals(GlobalBlock& g);

/// Reads \1DCommon.ini and writes it back at once with ACCESS COUNT raised by 1. A missing or foreign
/// file gives the defaults.
void ReadCommonSettings(GlobalBlock& g);
Status WriteCommonSettings(const GlobalBlock& g);

/// Reads g.UserIniFile, mends what is out of range, loads the parameter table it names, and writes it
/// back with ACCESS COUNT raised by 1.
void ReadUserSettings(GlobalBlock& g);
Status WriteUserSettings(const GlobalBlock& g);

/// Only USER NAME of an initial-settings file; empty when it has none.
std::string ReadUserName(const std::filesystem::path& file);

/// The users of the folder: name and file, for each NMRCOL*.ini; "COMMON" with NMRCOL.INI when none.
std::vector<std::pair<std::string, std::filesystem::path>> ListUsers(const std::filesystem::path& app_path);

/// What the user form's "OK" does with a typed name: trims, upper-cases, selects the file of a known
/// user or the first free NMRCOLnnnn.ini, and sets CurrentUser, LatestUser and UserIniFile.
void SelectUser(GlobalBlock& g, std::string_view name);

Result<std::vector<ParamTableEntry>> LoadParamTable(const std::filesystem::path& file);
Status SaveParamTable(const std::filesystem::path& file, const std::vector<ParamTableEntry>& table);
/// Nuclear.dat of the folder into g.nuclides; the built-in table when it is missing or empty.
void LoadNuclearTable(GlobalBlock& g);
/// requiredFile1D_E.txt of the folder into g.RequiredFiles.
void LoadRequiredFiles(GlobalBlock& g);
/// OB_0ppm.frq of the folder into g.Instruments.
void LoadInstrumentTable(GlobalBlock& g);
Status SaveInstrumentTable(GlobalBlock& g);

/// The program's own folder when it can be written, else a data folder of the user, filled from
/// `shipped` (Nuclear.dat and its like) on first use.
std::filesystem::path ChooseAppPath(const std::filesystem::path& program_folder, const std::filesystem::path& shipped);

} // namespace nmr
