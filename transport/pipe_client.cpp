#include "transport/pipe_client.h"

#include <array>

#include "include/vorn_contract.h"
#include "platform/named_pipe.h"
#include "platform/sleep.h"

namespace vorn {

namespace {

constexpr int OpenAttempts = 500;

/// A client's end of a pipe, closed on every path; null when the pipe could not be opened.
class Connection {
  public:
    explicit Connection(const char* name) {
        WaitNamedPipeW(name);
        for (int attempt = 0; attempt < OpenAttempts && pipe_ == nullptr; ++attempt) {
            pipe_ = CreateFileW(name);
        }
    }
    ~Connection() { CloseHandle(pipe_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    NamedPipe* Get() const { return pipe_; }

  private:
    NamedPipe* pipe_ = nullptr;
};

/// Reads until a chunk is not full. False when the reply breaks off or is too long.
bool ReplyRead(NamedPipe* pipe, int chunkRestMilliseconds, std::string& reply) {
    std::array<char, VORN_PIPE_CHUNK_BYTES + 1> bufferGet{};
    while (reply.size() <= PipeReplyBytesAtMost) {
        std::size_t read = 0;
        if (!ReadFile(pipe, bufferGet.data(), VORN_PIPE_CHUNK_BYTES, read)) return false;
        bufferGet[read] = '\0';
        reply += bufferGet.data();
        if (read < VORN_PIPE_CHUNK_BYTES) return true;
        if (chunkRestMilliseconds > 0) SleepMilliseconds(chunkRestMilliseconds);
    }
    return false;
}

}  // namespace

PipeAnswer PipeAsk(const char* name, std::string message, int chunkRestMilliseconds, std::string& reply) {
    reply.clear();
    if (message.empty()) message = PipeEmptyMark;
    const Connection connection(name);
    if (connection.Get() == nullptr) return PipeAnswer::NoPipe;
    if (!WriteFile(connection.Get(), message) || !ReplyRead(connection.Get(), chunkRestMilliseconds, reply) ||
        reply.empty()) {
        std::string().swap(reply);
        return PipeAnswer::BrokeOff;
    }
    if (reply == PipeEmptyMark) reply.clear();
    return PipeAnswer::Whole;
}

}  // namespace vorn
