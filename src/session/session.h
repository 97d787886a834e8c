#pragma once
// One run as its commands see it: the global block, who answers questions, and what the platform
// has to do. Window, nmr1d-cli and tests make one each and run the same commands on it.

#include "core/asker.h"
#include "core/global_block.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace nmr {

class FftForm;
class PictureDevices;
class Recorder;
class Tools;

/// What a tool changes while it is at work: marks and lists, or the points of the shown row too.
enum class ToolChange { marks, points };

struct Session {
    GlobalBlock& g;
    Asker& asker;
    /// Runs NMR1D_Form11 on its logic and returns DialogResult ("OK" after a commit, "CANCEL").
    std::function<std::string(FftForm&)> run_fft_form;
    /// Data or state changed: repaint, and ask SetMenuActivateForm1 again.
    std::function<void()> display_changed;
    /// Window title.
    std::function<void(const std::string&)> set_title;
    /// Starts another program with one argument; false when it is not there.
    std::function<bool(const std::string& program, const std::string& argument)> start_program;
    /// Whether dummy files may be left beside instrument data (the window), or nothing may be written (batch).
    bool may_leave_dummy_files = false;
    /// Whether another run of the program is there whose files must be left alone at exit; empty: ask
    /// the machine (AnotherRunPresent).
    std::function<bool()> another_run_present{};
    /// Writes the journal of this run; empty in a batch.
    std::shared_ptr<Recorder> recorder{};
    /// After each read: what it mended or missed, one sentence each; mostly nothing.
    std::function<void(const std::vector<std::string>&)> notes_of_read{};
    /// A drag or a phase under way: only what is drawn has changed, and at once. Its end calls display_changed.
    std::function<void(ToolChange)> tool_moved{};
    /// The tools of the main form; a batch has none.
    Tools* tools = nullptr;
    /// Puts a text on the clipboard, plain and as HTML (which may be empty).
    std::function<void(const std::string& plain, const std::string& html)> copy_text{};
    /// Picture files, clipboard and printers; a batch has none.
    PictureDevices* pictures = nullptr;
};

} // namespace nmr
