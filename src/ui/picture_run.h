#pragma once
// Runs that show the window without a user: for pictures and for measuring the start.

namespace nmr {

struct RunOptions;
struct Session;
class NMR1D_Form1;
class QuietAsker;

/// Returns the exit code.
int PictureRun(Session& session, NMR1D_Form1& window, const RunOptions& run, QuietAsker& asker);

} // namespace nmr
