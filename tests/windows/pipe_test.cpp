// The pipe service as a user's program of this system meets it: a client written on the system's own calls,
// which waits in them and has no time limits.

#include <windows.h>

#include <sddl.h>

#include <array>
#include <thread>
#include <vector>

#include "tests/support/pipe_test.h"

namespace {

using std::string;

std::wstring FullName(const string& name) {
    return LR"(\\.\pipe\)" + std::wstring(name.begin(), name.end());
}

/// A client's end; waits in the system while the pipe is busy.
HANDLE Open(const string& name) {
    const std::wstring full = FullName(name);
    for (;;) {
        WaitNamedPipeW(full.c_str(), NMPWAIT_WAIT_FOREVER);
        const HANDLE pipe =
            CreateFileW(full.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        if (pipe != INVALID_HANDLE_VALUE || GetLastError() != ERROR_PIPE_BUSY) return pipe;
    }
}

/// One exchange as the protocol has it: a read that gives fewer than 256 bytes is the last one.
string Exchange256(const string& name, const string& request) {
    const HANDLE pipe = Open(name);
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(pipe, request.data(), static_cast<DWORD>(request.size()), &count, nullptr));
    string reply;
    std::array<char, 256> chunk{};
    do {
        if (!ReadFile(pipe, chunk.data(), static_cast<DWORD>(chunk.size()), &count, nullptr)) break;
        reply.append(chunk.data(), count);
    } while (count == chunk.size());
    CloseHandle(pipe);
    return reply;
}

TEST_F(PipeThreadsTest, HasTheAttributesThatClientsRelyOn) {
    const HANDLE client = Open(name_);
    DWORD flags = 0;
    DWORD out = 0;
    DWORD in = 0;
    DWORD instances = 0;
    EXPECT_TRUE(GetNamedPipeInfo(client, &flags, &out, &in, &instances));
    EXPECT_EQ(flags & PIPE_TYPE_MESSAGE, 0U);
    EXPECT_EQ(instances, 1U);
    EXPECT_EQ(std::pair(out, in), std::pair(DWORD{256}, DWORD{256}));
    // A byte pipe cannot be read in messages.
    DWORD mode = PIPE_READMODE_MESSAGE;
    EXPECT_FALSE(SetNamedPipeHandleState(client, &mode, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    mode = PIPE_READMODE_BYTE;
    EXPECT_TRUE(SetNamedPipeHandleState(client, &mode, nullptr, nullptr));
    // The one instance is taken: the name is neither made again nor opened by another client.
    EXPECT_EQ(CreateNamedPipeW(FullName(name_).c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 256, 256, 0,
                               nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_FALSE(WaitNamedPipeW(FullName(name_).c_str(), 50));
    CloseHandle(client);
}

TEST_F(PipeThreadsTest, ServesAClientOfTheSystemsOwnCalls) {
    for (const size_t bytes : {255, 256, 257, 300, 512, 1 << 20}) {
        const string name = Pattern(bytes - 4);
        Serve(1);
        standin::TraceStart();
        EXPECT_EQ(Exchange256(name_, "Fdp/" + name), "0");
        Join();
        std::vector<string> expected(bytes / 256, "sleep 1");
        expected.push_back("ProjectNameToID(\"" + name + "\")");
        EXPECT_TRUE(standin::TraceStop() == expected) << bytes;
    }
    const string reply = Pattern((3 << 20) + 1);
    std::thread server([&reply] {
        EXPECT_TRUE(vorn::ConnectNamedPipe(vorn::PipeHandle));
        vorn::PipeReply(reply);
        vorn::DisconnectNamedPipe(vorn::PipeHandle);
    });
    EXPECT_TRUE(Exchange256(name_, "x") == reply);
    server.join();
}

TEST_F(PipeThreadsTest, ServesFiftyClientsThatWaitInTheSystem) {
    Send("Create", "P1");
    std::vector<string> replies(50);
    std::vector<std::thread> clients;
    for (size_t client = 0; client < replies.size(); ++client) {
        clients.emplace_back([this, &replies, client] {
            replies[client] = Exchange256(name_, "Fdp/P" + std::to_string(client % 3));
        });
    }
    Serve(50);
    for (std::thread& client : clients) client.join();
    for (size_t client = 0; client < replies.size(); ++client) {
        EXPECT_EQ(replies[client], client % 3 == 1 ? "1" : "0") << client;
    }
}

TEST_F(PipeThreadsTest, KnowsWhoHoldsAPipe) {
    EXPECT_EQ(vorn::PipeHolderOf(name_), vorn::PipeHolder::ThisProcess);
    EXPECT_EQ(vorn::PipeHolderOf(name_ + "no"), vorn::PipeHolder::Nobody);
    Serve(1);  // the one that asked and left
    Join();
    Serve(1);
    EXPECT_EQ(Exchange256(name_, "Fdp/NONE"), "0");
}

TEST_F(PipeThreadsTest, TellsAnotherOwnersPipeNothing) {
    const string name = name_ + "other";
    PSECURITY_DESCRIPTOR everyones = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(L"O:WDD:(A;;GA;;;WD)", SDDL_REVISION_1,
                                                                     &everyones, nullptr));
    SECURITY_ATTRIBUTES facts{sizeof facts, everyones, FALSE};
    const HANDLE pipe =
        CreateNamedPipeW(FullName(name).c_str(), PIPE_ACCESS_DUPLEX, 0, 1, 256, 256, 0, &facts);
    LocalFree(everyones);
    if (pipe == INVALID_HANDLE_VALUE) GTEST_SKIP() << "needs the right to give a pipe away";
    EXPECT_EQ(vorn::PipeExchange(name.c_str(), "Create/SECRET"), "");
    char byte = 0;
    DWORD count = 0;
    EXPECT_FALSE(ReadFile(pipe, &byte, 1, &count, nullptr));
    DisconnectNamedPipe(pipe);
    std::thread server([pipe] { ConnectNamedPipe(pipe, nullptr); });
    EXPECT_EQ(vorn::PipeHolderOf(name), vorn::PipeHolder::AnotherUser);
    server.join();
    CloseHandle(pipe);
}

}  // namespace
