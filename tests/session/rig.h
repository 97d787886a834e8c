#pragma once
// A run for tests: a data folder of its own, a global block, a scripted user, and small instrument
// folders whose lines are known.

#include "session/fft_form.h"
#include "session/forms.h"
#include "session/read_flow.h"
#include "session/startup.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace nmr::test {

struct Tone {
    double hz = 0; ///< above the carrier
    double amplitude = 1;
    double phase_deg = 0;
};

struct BrukerSpec {
    std::vector<Tone> tones{{1000.0, 1.0, 20.0}};
    int points = 1024; ///< complex, measured
    double sweep_hz = 8000, obs_mhz = 400.0, carrier_hz = 2000;
    std::string nucleus = "1H";
    double decay_hz = 2.0;
    double group_delay = 0; ///< complex points before the signal begins
};

/// An experiment folder with acqus and fid; returns the path of the fid.
std::string WriteBrukerFid(const std::filesystem::path& folder, const BrukerSpec& spec = {});
/// A processed spectrum (pdata/1 with procs and 1r): one triangle of 11 points about `top`.
std::string WriteBrukerSpectrum(const std::filesystem::path& folder, int points, int top);
/// A two-dimensional spectrum; returns the path of its 2rr.
std::string WriteBruker2D(const std::filesystem::path& folder);
/// A file of a family that is recognised only.
std::string WriteUnreadableFamily(const std::filesystem::path& folder);

/// A global block with the settings of a first start and no files.
struct Rig {
    TempFolder folder;
    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    ScriptedAsker asker;
    std::vector<std::string> titles;
    int repaints = 0;
    std::vector<std::string> started;
    bool sibling_installed = false;
    std::string form_answer = "OK"; ///< "OK" commits, anything else leaves the transform form
    Session s{g, asker, {}, {}, {}, {}};

    explicit Rig(std::initializer_list<ScriptedAsker::Answer> answers = {});
    /// The store as after start-up, with a data folder and a claim.
    void Boot();
    std::string Path(std::string_view name) const { return folder / name; }
    std::vector<std::string> Texts() const; ///< of the message boxes shown, "title: text"
};

FormAnswer Pressed(std::string word, forms::Values values = {});
std::optional<FileChoice> Chosen(std::string path, int filter = 1);
std::optional<FileChoice> NothingChosen();

/// ppm of the highest point of the shown row.
double HighestPpm(const DataSet& set);

} // namespace nmr::test
