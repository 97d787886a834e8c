#pragma once
// Puts files on the disk behind the back of the work: a power cut then takes no more than about the last
// second, and no edit waits for the disk.

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <set>
#include <stop_token>
#include <thread>

namespace nmr {

class Flusher {
public:
    /// The file was written; it is flushed within about a second, with the name that it has in its folder.
    void Wrote(const std::filesystem::path& file);

private:
    void Run(const std::stop_token& stop);

    std::mutex mutex_;
    std::condition_variable_any woken_;
    std::set<std::filesystem::path> files_;
    std::jthread thread_; ///< begun at the first call; last, so that it ends before what it uses
};

} // namespace nmr
