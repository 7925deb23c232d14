// A write to a pipe or a console waits while nobody reads, and the system lets no writer say otherwise
// without changing the stream for all who share it. A thread for each stream therefore writes, a piece at a
// time, and nobody waits longer for it than a reader at work takes.

#include "platform/write_now.h"

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

namespace vorn {

namespace {

/// Pieces end with a line where they can: a console shows no character that comes in two of them.
constexpr std::size_t PieceBytes = 4096;
/// A reader at work has taken a piece by then.
constexpr std::chrono::milliseconds PieceWait{10};

std::size_t PieceSize(std::string_view text) {
    if (text.size() <= PieceBytes) return text.size();
    const std::size_t end = text.rfind('\n', PieceBytes - 1);
    return end == std::string_view::npos ? text.size() : end + 1;
}

/// False for what can never be written.
bool WriteWhole(DWORD stream, std::string_view piece) {
    HANDLE handle = GetStdHandle(stream);
    while (!piece.empty()) {
        DWORD count = 0;
        if (WriteFile(handle, piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) == 0)
            return false;
        piece.remove_prefix(count);
    }
    return true;
}

/// The thread of one stream and the piece that it writes.
class Writer {
  public:
    explicit Writer(DWORD stream) : stream_(stream) {}

    /// As `WriteNow`. A piece that is still being written is the beginning of `text` once more.
    std::size_t Write(std::string_view text) {
        std::unique_lock lock(lock_);
        if (!running_) Start();
        std::size_t done = 0;
        while (running_ && done < text.size()) {
            const bool fresh = piece_.empty();
            if (fresh) Give(text.substr(done));
            const auto atMost = fresh ? PieceWait : std::chrono::milliseconds::zero();
            if (!changed_.wait_for(lock, atMost, [this] { return written_; })) break;
            done += piece_.size();
            piece_.clear();
            if (failed_) return text.size();
        }
        return done;
    }

  private:
    void Start() {
        try {
            std::thread([this] { Work(); }).detach();
            running_ = true;
        } catch (const std::system_error&) {
            // No thread is to be had for the moment: the text is kept.
        }
    }

    void Give(std::string_view text) {
        piece_.assign(text, 0, PieceSize(text));
        written_ = false;
        changed_.notify_all();
    }

    [[noreturn]] void Work() {
        std::unique_lock lock(lock_);
        for (;;) {
            changed_.wait(lock, [this] { return !piece_.empty() && !written_; });
            lock.unlock();  // nobody touches the piece until it is written
            const bool whole = WriteWhole(stream_, piece_);
            lock.lock();
            failed_ = !whole;
            written_ = true;
            changed_.notify_all();
        }
    }

    const DWORD stream_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::string piece_;  ///< empty while there is nothing to write
    bool written_ = false;
    bool failed_ = false;
    bool running_ = false;
};

}  // namespace

std::size_t WriteNow(StandardStream stream, std::string_view text) {
    // Never destroyed: their threads do not end.
    static Writer& output = *new Writer(STD_OUTPUT_HANDLE);
    static Writer& error = *new Writer(STD_ERROR_HANDLE);
    return (stream == StandardStream::Output ? output : error).Write(text);
}

}  // namespace vorn
