// A fixture for tests that talk to the pipe service over a real pipe.

#pragma once

#include <string>
#include <thread>

#include "platform/named_pipe.h"
#include "service/pipe_service.h"
#include "tests/support/service_test.h"
#include "tests/support/system.h"

/// `bytes` bytes of text in which a lost or moved piece shows.
inline std::string Pattern(std::size_t bytes) {
    std::string text;
    for (std::size_t number = 0; text.size() < bytes; ++number) text += std::to_string(number) + ".";
    text.resize(bytes);
    return text;
}

/// Serves a pipe of its own name, client by client, on a thread.
class PipeThreadsTest : public ServiceTest {
  protected:
    PipeThreadsTest() : name_("VornTestPipe" + std::to_string(ProcessNumber())) {
        EXPECT_TRUE(vorn::PipeOpen(name_.c_str(), vorn::PipeHandle));
    }
    ~PipeThreadsTest() override {
        Join();
        vorn::PipeHoldSet(60000);
        vorn::CloseHandle(vorn::PipeHandle);
        vorn::PipeHandle = nullptr;
    }
    /// Serves so many clients, those included that are let go.
    void Serve(int clients) {
        Join();
        server_ = std::thread([clients] {
            for (int client = 0; client < clients; ++client) vorn::PipeServeClient();
        });
    }
    void Join() {
        if (server_.joinable()) server_.join();
    }
    /// What comes back for one request from a client that waits at the end of it.
    std::string Ask(const std::string& request) {
        const RawClient client(name_);
        EXPECT_TRUE(client.Connected() && client.Send(request));
        return client.Receive();
    }

    const std::string name_;

  private:
    std::thread server_;
};
