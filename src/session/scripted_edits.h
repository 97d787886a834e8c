#pragma once
// Edits chosen by a seed, through the commands and undo steps that the tools use, told line by line as they
// go. The kill test runs them in the window and without one; nothing else does.
//
// Lines: "fresh" or "recovered STATE" after the start, then "file PATH CONTENT" for each saved file, then for
// each edit "pending STATE unsaved|saved" before it reaches the journal and "accepted ..." after, and
// around each save "saving PATH CONTENT" and "saved PATH CONTENT". STATE and CONTENT are checksums, CONTENT
// of what a native file keeps to the bit. A message box gives "message TEXT".

#include "core/asker.h"
#include "session/session.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace nmr {

struct EditScript {
    std::uint64_t seed = 0;
    std::filesystem::path folder;  ///< for the saved files
    std::vector<std::string> data; ///< files to read
};
/// "SEED|FOLDER|FILE|FILE..."; no files when it is none.
EditScript ParseEditScript(const std::string& text);
inline constexpr char kEditScriptVariable[] = "NMR1D_EDIT_SCRIPT";

/// Takes work back that was lost, never saves on a question, and agrees to all else.
class ScriptAsker : public Asker {
public:
    Button Message(const MessageBox& box) override;
    std::optional<FileChoice> File(const FileDialog& dialog) override;
    FormAnswer Form(const FormRequest& request) override;
    void Beep() override {}
    void Notice(const std::string& text) override;

    std::map<std::string, std::string> next_values; ///< for the next form of a command
};

class ScriptedEdits {
public:
    ScriptedEdits(Session& s, ScriptAsker& asker, EditScript script);
    /// Recovery, the check of the saved files, and a read when there is nothing to recover.
    void Begin();
    /// One edit, taking back, doing again, save or read.
    void Step();

private:
    void Note();
    void Read();
    void Save();
    void Edit();
    void CheckFiles();
    std::size_t Pick(std::size_t count) { return static_cast<std::size_t>(random_() % count); }

    Session& s_;
    ScriptAsker& asker_;
    EditScript script_;
    std::mt19937_64 random_;
    std::function<void()> shown_; ///< display_changed as it was
};

} // namespace nmr
