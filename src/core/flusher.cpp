#include "core/flusher.h"

#include "core/file_layer.h"

#include <chrono>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace nmr {
namespace {

constexpr auto kPause = std::chrono::milliseconds(500);

void FlushFile(const std::filesystem::path& file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) return; // gone again
    // Nobody waits for the answer: what does not reach the disk is seen by its checksum.
    static_cast<void>(::fsync(descriptor));
    ::close(descriptor);
}

} // namespace

void Flusher::Wrote(const std::filesystem::path& file)
{
    const std::lock_guard lock(mutex_);
    files_.insert(file);
    if (!thread_.joinable()) thread_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
    woken_.notify_one();
}

void Flusher::Run(const std::stop_token& stop)
{
    std::unique_lock lock(mutex_);
    while (woken_.wait(lock, stop, [this] { return !files_.empty(); })) {
        // One flush for many edits. A run that ends needs none: its files go.
        if (woken_.wait_for(lock, stop, kPause, [] { return false; }); stop.stop_requested()) return;
        const auto files = std::exchange(files_, {});
        lock.unlock();
        std::set<std::filesystem::path> folders;
        for (const auto& file : files) {
            FlushFile(file);
            folders.insert(file.parent_path());
        }
        for (const auto& folder : folders) static_cast<void>(FlushFolder(folder));
        lock.lock();
    }
}

} // namespace nmr
