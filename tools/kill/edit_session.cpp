// edit_session FOLDER SCRIPT: a session without a window on the data folder FOLDER, which edits by its
// script (session/scripted_edits.h) until it is killed.

#include "session/recovery.h"
#include "session/scripted_edits.h"
#include "session/startup.h"

#include <cstdio>
#include <memory>

using namespace nmr;

int main(int argc, char** argv)
{
    if (argc != 3) return std::fprintf(stderr, "usage: edit_session FOLDER SCRIPT\n"), 2;
    const auto g = std::make_unique<GlobalBlock>();
    ScriptAsker asker;
    Session session{*g, asker, {}, {}, {}, {}};
    StartOptions options;
    options.app_path = argv[1];
    if (Start(session, options) == StartResult::ended) return 1;
    Watch_Edits(session);
    ScriptedEdits edits(session, asker, ParseEditScript(argv[2]));
    edits.Begin();
    for (;;) edits.Step();
}
