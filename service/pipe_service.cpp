#include "service/pipe_service.h"

#include <array>
#include <exception>
#include <mutex>
#include <string_view>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "platform/sleep.h"
#include "service/pipe_message.h"
#include "service/server_root.h"
#include "transport/pipe_client.h"

namespace vorn {

namespace {

constexpr std::size_t ChunkBytes = VORN_PIPE_CHUNK_BYTES;
constexpr int WalkPauseMilliseconds = 2000;
constexpr int ChunkPauseMilliseconds = 1;
constexpr int ReplyChunkPauseMilliseconds = 2;

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

/// Reads until the pipe runs dry, which ends the request. False for a client that left without one, or sends
/// more than a request may hold.
bool PipeRequestRead(std::string& midRead) {
    Chunk bufferGet{};
    bool received = false;
    std::size_t waiting = 0;
    while (midRead.size() <= PipeRequestBytesAtMost && PeekNamedPipe(PipeHandle, waiting)) {
        if (waiting == 0 && received) break;
        if (waiting == 0) continue;
        std::size_t read = 0;
        if (!ReadFile(PipeHandle, bufferGet.data(), ChunkBytes, read)) break;
        AppendChunk(midRead, bufferGet, read);
        if (read >= ChunkBytes) SleepMilliseconds(ChunkPauseMilliseconds);
        received = true;
    }
    return received && midRead.size() <= PipeRequestBytesAtMost;
}

/// Walks the names once and takes the first free one; false when there was none.
bool PipeWalk() {
    for (int row = 0; row < VORN_PIPE_NAMES; ++row) {
        if (!PipeOpen(PipeName(row).c_str(), PipeHandle)) continue;
        PipeSlot = row;
        return true;
    }
    return false;
}

/// Held by the thread that looks for a name: two at once take one name and not two.
std::mutex TakeLock;

/// Takes the first free name, and waits until there is one. False when a server of this directory runs, or
/// this library holds a pipe already.
bool PipeTake() {
    const std::lock_guard guard(TakeLock);
    if (PipeServerProbe() || PipeSlot >= 0) return false;
    while (!PipeWalk()) SleepMilliseconds(WalkPauseMilliseconds);
    return true;
}

/// One exchange with the client that is connected.
void PipeServeRequest() {
    std::string midRead;
    if (!PipeRequestRead(midRead)) return;
    std::string midReturn;
    PipeMessageSplit(std::move(midRead), midReturn);
    PipeReply(std::move(midReturn));
}

}  // namespace

std::string PipeName(int row) {
    return VORN_PIPE_NAME_PREFIX + std::to_string(row);
}

bool PipeOpen(const char* name, NamedPipe*& out) {
    out = CreateNamedPipeW(name);
    return out != nullptr;
}

bool PipeServerProbe() {
    const std::string question = "Fph/" + DirectoryText(ServerRootGet());
    for (int row = 0; row < VORN_PIPE_NAMES; ++row) {
        if (PipeExchange(PipeName(row).c_str(), question) == "1") return true;
    }
    return false;
}

std::string PipeExchange(const char* name, std::string message) {
    std::string reply;
    const PipeAnswer answer = PipeAsk(name, std::move(message), ReplyChunkPauseMilliseconds, reply);
    return answer == PipeAnswer::NoPipe ? "LinkNone" : reply;
}

void PipeReply(std::string text) {
    if (text.empty()) text = PipeEmptyMark;
    if (PipeHandle == nullptr) return;
    WriteFile(PipeHandle, text);
    FlushFileBuffers(PipeHandle);
}

void PipeServeClient() {
    try {
        if (ConnectNamedPipe(PipeHandle)) PipeServeRequest();
    } catch (const std::exception&) {
        // This client is let go; the next one finds the service as it was.
    }
    DisconnectNamedPipe(PipeHandle);
}

}  // namespace vorn

void PipeServerThread(const char* const /*unused*/) {
    for (bool taken = false; !taken;) {
        try {
            if (!vorn::PipeTake()) return;
            taken = true;
        } catch (const std::exception&) {
            vorn::SleepMilliseconds(vorn::WalkPauseMilliseconds);  // not even the memory for a name
        }
    }
    for (;;) vorn::PipeServeClient();
}
