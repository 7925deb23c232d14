// What only this system's pipes have: an end of the request, a queue of clients, other users at the door.

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>

#include "tests/support/pipe_test.h"

namespace {

using std::string;
using std::chrono::milliseconds;

TEST_F(PipeThreadsTest, TakesTheEndOfWritingOrSilenceForTheEndOfARequest) {
    ASSERT_EQ(Send("Create", "ABC"), "OK");
    Serve(2);
    {
        const RawClient byteByByte(name_);
        for (const char byte : string("Fdp/ABC")) ASSERT_TRUE(byteByByte.Send({byte}));
        byteByByte.EndSending();
        EXPECT_EQ(byteByByte.Receive(), "1");
    }
    const RawClient pausing(name_);
    ASSERT_TRUE(pausing.Send("Fdp/AB"));
    std::this_thread::sleep_for(milliseconds(100));
    pausing.Send("C");
    EXPECT_EQ(pausing.Receive(), "0");
}

TEST_F(PipeThreadsTest, AnswersTwoHundredClientsInTurn) {
    Send("Create", "P1");
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int client = 0; client < 200; ++client) {
        clients.push_back(std::make_unique<RawClient>(name_));
        ASSERT_TRUE(clients.back()->Send("Fdp/P" + std::to_string(client % 3)));
        clients.back()->EndSending();
    }
    Serve(200);
    for (size_t client = 0; client < 200; ++client)
        EXPECT_EQ(clients[client]->Receive(), client % 3 == 1 ? "1" : "0");
}

TEST_F(PipeThreadsTest, TakesInNoMoreThanARequestMayHold) {
    // The pipe itself, without the service behind it, which has the same bound.
    std::thread server([] { EXPECT_FALSE(vorn::ConnectNamedPipe(vorn::PipeHandle)); });
    const RawClient client(name_);
    EXPECT_FALSE(client.Send(string(2 * vorn::PipeRequestBytesAtMost, 'x')));
    server.join();
}

TEST_F(PipeThreadsTest, KeepsToItsOwnUser) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root, to become another user";
    Serve(3);
    const pid_t child = fork();
    if (child == 0) {
        if (setuid(65534) != 0) _exit(99);
        const RawClient stranger(name_);
        stranger.Send("Create/STRANGER");
        const bool refused = stranger.Receive().find("OK") == string::npos;
        // Root's pipes may be used by all, as far as they are let in.
        _exit(refused && vorn::PipeHolderOf(name_) == vorn::PipeHolder::ThisUser ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Ask("Fdp/STRANGER"), "0");
}

}  // namespace
