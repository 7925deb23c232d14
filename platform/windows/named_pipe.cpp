#include "platform/named_pipe.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "platform/windows/pipe_owner.h"
#include "platform/windows/wide_text.h"

namespace vorn {

/// Every operation is an overlapped one, so that none outlasts its time.
struct NamedPipe {
    HANDLE handle = INVALID_HANDLE_VALUE;
    HANDLE done = nullptr;  ///< the event of the one operation under way
    bool server = false;
    DWORD left = 0;       ///< milliseconds that the exchange may still wait for the other side
    std::string first{};  ///< what a client sent first and the read loop has not yet taken
};

namespace {

constexpr DWORD BufferBytes = 256;
constexpr DWORD ClientHolds = 10;
constexpr DWORD QueueWaitMilliseconds = 100;
/// Rests between two tries of what the system refuses for the moment.
constexpr DWORD RefusedRestMilliseconds = 100;
constexpr DWORD CancelAgainMilliseconds = 100;

std::atomic<int> holdMilliseconds{60000};

DWORD Hold() {
    return static_cast<DWORD>(holdMilliseconds.load());
}

std::wstring FullName(std::string_view name) {
    return LR"(\\.\pipe\)" + WideFromCodePage(name);
}

/// The client's end of a pipe; the invalid handle, with the system's error number, where there is none.
HANDLE ClientOpen(const std::wstring& full, DWORD flags) {
    // The server may learn who calls, and may not act in the caller's name.
    return ::CreateFileW(full.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                         flags | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
}

/// Starts an operation by `start`, which is given its overlapped record, and waits for it. Gives the bytes
/// that it moved; false when it failed or was not done in time, with the system's error number.
template <typename Start>
bool Run(NamedPipe* pipe, DWORD atMost, DWORD& bytes, Start start) {
    OVERLAPPED operation{};
    operation.hEvent = pipe->done;
    bytes = 0;
    if (!start(&operation)) {
        if (GetLastError() != ERROR_IO_PENDING) return false;
        if (WaitForSingleObject(pipe->done, atMost) != WAIT_OBJECT_0) CancelIoEx(pipe->handle, &operation);
    }
    return GetOverlappedResult(pipe->handle, &operation, &bytes, TRUE) != FALSE;
}

/// As `Run`, no longer than the exchange may still wait, and takes the time off it.
template <typename Start>
bool RunInTime(NamedPipe* pipe, DWORD& bytes, Start start) {
    const ULONGLONG begin = GetTickCount64();
    const bool done = Run(pipe, pipe->left, bytes, start);
    const DWORD error = GetLastError();
    pipe->left -= static_cast<DWORD>(std::min<ULONGLONG>(GetTickCount64() - begin, pipe->left));
    SetLastError(error);
    return done;
}

/// What a text of that size adds to the time of its exchange.
DWORD ReplyTime(std::size_t bytes) {
    return static_cast<DWORD>(std::uint64_t{bytes} * Hold() / PipeReplyBytesPerHold);
}

/// Reads what is there, up to `size` bytes, and waits for it. 0 at the end of what comes and when nothing
/// came in time.
std::size_t Receive(NamedPipe* pipe, char* bytes, std::size_t size) {
    DWORD read = 0;
    const auto start = [&](OVERLAPPED* operation) {
        return ::ReadFile(pipe->handle, bytes, static_cast<DWORD>(size), nullptr, operation);
    };
    return RunInTime(pipe, read, start) ? read : 0;
}

/// Waits for the next client. One that has come, and even gone, before the call is served as well.
bool ClientAwait(NamedPipe* pipe) {
    DWORD none = 0;
    const auto start = [&](OVERLAPPED* operation) { return ::ConnectNamedPipe(pipe->handle, operation); };
    if (Run(pipe, INFINITE, none, start)) return true;
    const DWORD error = GetLastError();
    return error == ERROR_PIPE_CONNECTED || error == ERROR_NO_DATA;
}

/// Breaks the flush off that another thread waits in.
void CALLBACK FlushCancel(void* pipe, BOOLEAN /*timerFired*/) {
    CancelIoEx(static_cast<HANDLE>(pipe), nullptr);
}

}  // namespace

void PipeHoldSet(int milliseconds) {
    holdMilliseconds = milliseconds;
}

NamedPipe* CreateNamedPipeW(std::string_view name) {
    constexpr DWORD Open = PIPE_ACCESS_DUPLEX | FILE_FLAG_FIRST_PIPE_INSTANCE | FILE_FLAG_OVERLAPPED;
    constexpr DWORD Mode = PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS;
    auto pipe = std::make_unique<NamedPipe>(NamedPipe{.server = true});
    pipe->handle =
        ::CreateNamedPipeW(FullName(name).c_str(), Open, Mode, 1, BufferBytes, BufferBytes, 0, nullptr);
    if (pipe->handle == INVALID_HANDLE_VALUE) return nullptr;
    pipe->done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return pipe.release();
}

bool ConnectNamedPipe(NamedPipe* pipe) {
    if (!ClientAwait(pipe)) {
        DisconnectNamedPipe(pipe);
        Sleep(RefusedRestMilliseconds);
        return false;
    }
    pipe->left = Hold();
    std::array<char, BufferBytes> bytes{};
    pipe->first.assign(bytes.data(), Receive(pipe, bytes.data(), bytes.size()));
    if (!pipe->first.empty()) return true;
    DisconnectNamedPipe(pipe);
    return false;
}

bool PeekNamedPipe(NamedPipe* pipe, std::size_t& waiting) {
    DWORD more = 0;
    const bool connected = ::PeekNamedPipe(pipe->handle, nullptr, 0, nullptr, &more, nullptr) != FALSE;
    waiting = pipe->first.size() + more;
    return connected || waiting > 0;
}

bool ReadFile(NamedPipe* pipe, char* bytes, std::size_t size, std::size_t& read) {
    read = pipe->first.copy(bytes, size);
    pipe->first.erase(0, read);
    std::size_t waiting = 1;
    while (read < size) {
        // A server takes what is there, a client waits for the end.
        if (pipe->server && (!PeekNamedPipe(pipe, waiting) || waiting == 0)) break;
        const std::size_t received = Receive(pipe, bytes + read, size - read);
        const DWORD error = GetLastError();
        if (received == 0)
            return pipe->server || error == ERROR_BROKEN_PIPE || error == ERROR_PIPE_NOT_CONNECTED;
        read += received;
    }
    if (!pipe->server) pipe->left += ReplyTime(read);
    return true;
}

bool WriteFile(NamedPipe* pipe, std::string_view text) {
    if (pipe->server) pipe->left += ReplyTime(text.size());
    DWORD written = 0;
    const auto start = [&](OVERLAPPED* operation) {
        return ::WriteFile(pipe->handle, text.data(), static_cast<DWORD>(text.size()), nullptr, operation);
    };
    return RunInTime(pipe, written, start) && written == text.size();
}

void FlushFileBuffers(NamedPipe* pipe) {
    // The one operation that cannot overlap: it is broken off from outside when its time is up.
    HANDLE timer = nullptr;
    if (!CreateTimerQueueTimer(&timer, nullptr, FlushCancel, pipe->handle, pipe->left,
                               CancelAgainMilliseconds, 0))
        return;
    ::FlushFileBuffers(pipe->handle);
    // Waits for a call of the timer that is under way.
    DeleteTimerQueueTimer(nullptr, timer, INVALID_HANDLE_VALUE);
}

void DisconnectNamedPipe(NamedPipe* pipe) {
    ::DisconnectNamedPipe(pipe->handle);
    pipe->first.clear();
}

void WaitNamedPipeW(std::string_view name) {
    ::WaitNamedPipeW(FullName(name).c_str(), NMPWAIT_WAIT_FOREVER);
}

NamedPipe* CreateFileW(std::string_view name) {
    const std::wstring full = FullName(name);
    auto pipe = std::make_unique<NamedPipe>(NamedPipe{.left = ClientHolds * Hold()});
    pipe->handle = ClientOpen(full, FILE_FLAG_OVERLAPPED);
    if (pipe->handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_PIPE_BUSY) {
        ::WaitNamedPipeW(full.c_str(), QueueWaitMilliseconds);
        pipe->handle = ClientOpen(full, FILE_FLAG_OVERLAPPED);
    }
    if (pipe->handle == INVALID_HANDLE_VALUE) return nullptr;
    // Somebody else's pipe is not talked to, and trying again would not help: what is written fails.
    if (!PipeOwnerTrusted(pipe->handle)) ::CloseHandle(std::exchange(pipe->handle, INVALID_HANDLE_VALUE));
    pipe->done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return pipe.release();
}

void CloseHandle(NamedPipe* pipe) {
    if (pipe == nullptr) return;
    if (pipe->handle != INVALID_HANDLE_VALUE) ::CloseHandle(pipe->handle);
    ::CloseHandle(pipe->done);
    delete pipe;
}

PipeHolder PipeHolderOf(std::string_view name) {
    WaitNamedPipeW(name);
    const HANDLE pipe = ClientOpen(FullName(name), 0);
    if (pipe == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_ACCESS_DENIED ? PipeHolder::AnotherUser : PipeHolder::Nobody;
    }
    const bool trusted = PipeOwnerTrusted(pipe);
    ULONG process = 0;
    const bool told = GetNamedPipeServerProcessId(pipe, &process) != FALSE;
    ::CloseHandle(pipe);
    if (!trusted) return PipeHolder::AnotherUser;
    return told && process == GetCurrentProcessId() ? PipeHolder::ThisProcess : PipeHolder::ThisUser;
}

}  // namespace vorn
