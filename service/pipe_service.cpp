#include "service/pipe_service.h"

#include <array>
#include <mutex>
#include <string_view>

#include "include/vorn_server.h"
#include "platform/sleep.h"
#include "service/pipe_message.h"
#include "service/server_root.h"

namespace vorn {

namespace {

constexpr std::size_t ChunkBytes = 256;
constexpr int OpenAttempts = 500;
constexpr int WalkPauseMilliseconds = 2000;
constexpr int ChunkPauseMilliseconds = 1;
constexpr int ReplyChunkPauseMilliseconds = 2;
/// Stands for the empty text on the pipe, in both directions.
constexpr std::string_view EmptyMark = "none";

void MarkEmpty(std::string& text) {
    if (text.empty()) text = EmptyMark;
}

void UnmarkEmpty(std::string& text) {
    if (text == EmptyMark) text.clear();
}

/// Room for a chunk and its terminator.
using Chunk = std::array<char, ChunkBytes + 1>;

/// Appends one chunk of a request, up to its first zero byte. The line end that a terminal puts behind the
/// request is cut off; a full chunk keeps it.
void AppendChunk(std::string& midRead, Chunk& bufferGet, std::size_t read) {
    bufferGet[read] = '\0';
    if (read < ChunkBytes && std::string_view(bufferGet.data(), read).ends_with("\r\n")) {
        bufferGet[read - 2] = '\0';
    }
    midRead += bufferGet.data();
}

/// Reads until the pipe runs dry, which ends the request. False for a client that left without one.
bool PipeRequestRead(std::string& midRead) {
    Chunk bufferGet{};
    bool received = false;
    std::size_t waiting = 0;
    while (PeekNamedPipe(PipeHandle, waiting)) {
        if (waiting == 0 && received) break;
        if (waiting == 0) continue;
        const std::size_t read = ReadFile(PipeHandle, bufferGet.data(), ChunkBytes);
        AppendChunk(midRead, bufferGet, read);
        if (read >= ChunkBytes) SleepMilliseconds(ChunkPauseMilliseconds);
        received = true;
    }
    return received;
}

/// Takes the first free name, and waits until there is one. False when a server of this directory runs, or
/// this library holds a pipe already. Two threads at once take one name and not two.
bool PipeTake() {
    static std::mutex& oneTaker = *new std::mutex;
    const std::lock_guard guard(oneTaker);
    if (PipeServerProbe() || PipeSlot >= 0) return false;
    for (;;) {
        for (int row = 0; row < PipeNameCount; ++row) {
            if (!PipeOpen(PipeName(row).c_str(), PipeHandle)) continue;
            PipeSlot = row;
            return true;
        }
        SleepMilliseconds(WalkPauseMilliseconds);
    }
}

}  // namespace

std::string PipeName(int row) {
    return "VornServerPipe" + std::to_string(row);
}

bool PipeOpen(const char* name, NamedPipe*& out) {
    out = CreateNamedPipeW(name);
    return out != nullptr;
}

bool PipeServerProbe() {
    const std::string question = "Fph/" + DirectoryText(ServerRootGet());
    for (int row = 0; row < PipeNameCount; ++row) {
        if (PipeExchange(PipeName(row).c_str(), question) == "1") return true;
    }
    return false;
}

std::string PipeExchange(const char* name, std::string message) {
    MarkEmpty(message);
    WaitNamedPipeW(name);
    NamedPipe* pipe = nullptr;
    for (int attempt = 0; attempt < OpenAttempts && pipe == nullptr; ++attempt) pipe = CreateFileW(name);
    if (pipe == nullptr) return "LinkNone";

    std::string reply;
    if (WriteFile(pipe, message)) {
        Chunk bufferGet{};
        for (;;) {
            const std::size_t read = ReadFile(pipe, bufferGet.data(), ChunkBytes);
            bufferGet[read] = '\0';
            reply += bufferGet.data();
            if (read < ChunkBytes) break;
            SleepMilliseconds(ReplyChunkPauseMilliseconds);
        }
    }
    CloseHandle(pipe);
    UnmarkEmpty(reply);
    return reply;
}

int PipeReply(std::string text) {
    MarkEmpty(text);
    if (PipeHandle == nullptr) return 0;
    const bool written = WriteFile(PipeHandle, text);
    FlushFileBuffers(PipeHandle);
    return written ? 1 : 0;
}

void PipeServeClient() {
    if (!ConnectNamedPipe(PipeHandle)) return;
    std::string midRead;
    if (PipeRequestRead(midRead)) {
        UnmarkEmpty(midRead);
        std::string midReturn;
        PipeMessageSplit(std::move(midRead), midReturn);
        PipeReply(std::move(midReturn));
    }
    DisconnectNamedPipe(PipeHandle);
}

}  // namespace vorn

void PipeServerThread(const char* const /*unused*/) {
    if (!vorn::PipeTake()) return;
    for (;;) vorn::PipeServeClient();
}
