// The named-pipe service, both ends: what a request and a reply become on the wire, and what clients may do
// without holding the service up.

#include <algorithm>
#include <chrono>
#include <thread>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "service/pipe_message.h"
#include "service/pipe_service.h"
#include "service/server_root.h"
#include "tests/support/host_process.h"
#include "tests/support/peer.h"
#include "tests/support/pipe_test.h"
#include "transport/pipe_client.h"

namespace {

using std::string;
using std::chrono::milliseconds;

TEST_F(PipeThreadsTest, SplitsAtTheFirstTwoSlashes) {
    const auto logged = [](const string& text) {
        Rtn_Get_Get();
        string reply;
        vorn::PipeMessageSplit(text, reply);
        return string(Rtn_Get_Get());
    };
    EXPECT_EQ(logged("Fdp/PLANT1_GTemp"), "Fdp PLANT1_GTemp  0");
    EXPECT_EQ(logged(R"(Fdp/json/{"a":["A"]})"), R"(Fdp json {"a":["A"]} 0)");
    EXPECT_EQ(logged("Fdp/A/1,2/3/"), "Fdp A 1,2/3/ 0");
    EXPECT_EQ(logged("Fdp//"), "Fdp   0");
    EXPECT_EQ(logged("Fdp/a"), "Fdp a  0");
    EXPECT_EQ(logged("Pjtxx"), string("Pjtxx   ") + NoProject);
    for (const char* text : {"Fdp/", ""}) EXPECT_EQ(logged(text), string("   ") + NoProject);
    EXPECT_EQ(logged("/abcd"), string(" abcd  ") + NoProject);
    EXPECT_EQ(logged("/////"), string("  /// ") + NoProject);
}

TEST_F(PipeThreadsTest, ReadsRequestsWhole) {
    const string lineEnd = "\r\n";
    const auto Name = [](size_t requestBytes) { return Pattern(requestBytes - 4); };
    struct Case {
        string sent, name;
        size_t pauses;  ///< one behind each full chunk
    };
    std::vector<Case> cases{
        // Only a last chunk of 2 to 255 bytes loses its line end.
        {"X" + lineEnd, "X", 0},
        {"X\n", "X\n", 0},
        {"X\r", "X\r", 0},
        {"X" + lineEnd + lineEnd, "X" + lineEnd, 0},
        {Name(254) + lineEnd, Name(254) + lineEnd, 1},
        {Name(255) + lineEnd, Name(255) + lineEnd, 1},
        {Name(256) + lineEnd, Name(256), 1},
        {Name(254) + lineEnd + "Y", Name(254) + lineEnd + "Y", 1},
        // A zero byte ends its chunk.
        {string("A\0B", 3), "A", 0},
        {string("A\0", 2) + string(250, 'B') + "C", "AC", 1},
    };
    for (const size_t bytes : {255, 256, 257, 512, 1 << 20})
        cases.push_back({Name(bytes), Name(bytes), bytes / 256});
    for (const Case& each : cases) {
        Serve(1);
        standin::TraceStart();
        EXPECT_EQ(Ask("Fdp/" + each.sent), "0");
        Join();
        std::vector<string> expected(each.pauses, "sleep 1");
        expected.push_back("ProjectNameToID(\"" + each.name + "\")");
        EXPECT_TRUE(standin::TraceStop() == expected) << each.sent.size() << " bytes";
    }
}

TEST_F(PipeThreadsTest, CarriesRepliesWholeAndNoneForTheEmptyText) {
    Serve(2);
    EXPECT_EQ(Ask("none\r\n"), NoProject);
    EXPECT_EQ(vorn::PipeExchange(name_.c_str(), ""), NoProject);
    Join();
    for (const size_t bytes : {0, 1, 255, 256, 257, 512, 3 << 20}) {
        std::thread server([bytes] {
            for (int client = 0; client < 2; ++client) {
                EXPECT_TRUE(vorn::ConnectNamedPipe(vorn::PipeHandle));
                vorn::PipeReply(Pattern(bytes));
                vorn::DisconnectNamedPipe(vorn::PipeHandle);
            }
        });
        EXPECT_TRUE(vorn::PipeExchange(name_.c_str(), "x") == Pattern(bytes)) << bytes;
        EXPECT_TRUE(Ask("x") == (bytes == 0 ? "none" : Pattern(bytes))) << bytes;
        server.join();
    }
}

TEST_F(PipeThreadsTest, LetsGoOfClientsThatHoldItUp) {
    vorn::PipeHoldSet(200);
    Serve(6);
    { const RawClient leaves(name_); }
    const RawClient silent(name_);
    EXPECT_EQ(silent.Receive(), "");
    {
        const RawClient leavesBehindItsRequest(name_);
        EXPECT_TRUE(leavesBehindItsRequest.Send("Create/LEFT"));
    }
    const RawClient endless(name_);
    const auto limit = std::chrono::steady_clock::now() + milliseconds(20000);
    while (endless.Send("x") && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(milliseconds(1));
    }
    EXPECT_FALSE(endless.Send("x")) << "it was let write on and on";
    EXPECT_EQ(Ask("Fdp/LEFT"), "1");
    EXPECT_EQ(Ask("Fdp/NONE"), "0");
    Join();

    for (const auto& [replyBytes, ends] : {std::pair(3 << 20, false), {10, false}, {10, true}}) {
        std::thread server([bytes = static_cast<size_t>(replyBytes)] {
            EXPECT_TRUE(vorn::ConnectNamedPipe(vorn::PipeHandle));
            vorn::PipeReply(Pattern(bytes));
            vorn::DisconnectNamedPipe(vorn::PipeHandle);
            vorn::PipeServeClient();
        });
        const RawClient neverReads(name_);
        EXPECT_TRUE(neverReads.Send("x"));
        if (ends) neverReads.EndSending();
        EXPECT_EQ(Ask("Fdp/LEFT"), "1");
        server.join();
    }
}

TEST_F(PipeThreadsTest, BoundsRequestsAndTheTimeOfAWholeExchange) {
    Serve(3);
    string reply;
    const string least = "Get/";
    const string most = least + string(vorn::PipeRequestBytesAtMost - least.size(), 'x');
    EXPECT_EQ(vorn::PipeAsk(name_.c_str(), most, 0, reply), vorn::PipeAnswer::Whole);
    EXPECT_EQ(vorn::PipeAsk(name_.c_str(), most + "x", 0, reply), vorn::PipeAnswer::BrokeOff);
    EXPECT_EQ(vorn::PipeAsk(name_.c_str(), "Fdp/P", 0, reply), vorn::PipeAnswer::Whole);
    Join();

    // A client that reads on, but slowly, is let go all the same.
    constexpr size_t ReplyBytes = 3U << 20U;
    vorn::PipeHoldSet(100);
    std::thread server([] {
        EXPECT_TRUE(vorn::ConnectNamedPipe(vorn::PipeHandle));
        vorn::PipeReply(string(ReplyBytes, 'r'));
        vorn::DisconnectNamedPipe(vorn::PipeHandle);
    });
    vorn::NamedPipe* const slow = vorn::CreateFileW(name_);
    ASSERT_TRUE(slow != nullptr && vorn::WriteFile(slow, "Fdp/P"));
    size_t received = 0;
    string bytes(4096, ' ');
    for (size_t read = bytes.size(); read == bytes.size(); received += read) {
        std::this_thread::sleep_for(milliseconds(10));
        if (!vorn::ReadFile(slow, bytes.data(), bytes.size(), read)) break;
    }
    EXPECT_LT(received, ReplyBytes);
    vorn::CloseHandle(slow);
    server.join();
}

TEST_F(PipeThreadsTest, DoesNotWaitForEverOnAPipeThatNobodyServes) {
    vorn::PipeHoldSet(50);
    EXPECT_EQ(vorn::PipeExchange(name_.c_str(), "Fph/x"), "");
    EXPECT_EQ(vorn::PipeExchange((name_ + "no").c_str(), "Fph/x"), "LinkNone");
    vorn::NamedPipe* second = nullptr;
    EXPECT_FALSE(vorn::PipeOpen(name_.c_str(), second));
    EXPECT_EQ(second, nullptr);
    EXPECT_FALSE(vorn::PipeOpen(string(300, 'x').c_str(), second));
}

/// Takes all free names, starts the service and gives one name back at its first pause.
int WaitForAName(const string& /*argument*/) {
    vorn::PipeHoldSet(1);
    std::vector<vorn::NamedPipe*> held(VORN_PIPE_NAMES);
    for (int row = 0; row < VORN_PIPE_NAMES; ++row) {
        vorn::PipeOpen(vorn::PipeName(row).c_str(), held[static_cast<size_t>(row)]);
    }
    auto last = std::find_if(held.rbegin(), held.rend(), [](auto* pipe) { return pipe != nullptr; });
    const string name = vorn::PipeName(static_cast<int>(held.rend() - last) - 1);
    vorn::NamedPipe* given = std::exchange(*last, nullptr);
    std::atomic<int> pauses{0};
    AtSleep([&pauses, given](int pause) {
        if (pause == 2000 && ++pauses == 2) vorn::CloseHandle(given);
    });
    std::thread([] { PipeServerThread(nullptr); }).detach();
    while (pauses < 2) std::this_thread::yield();
    vorn::PipeHoldSet(10000);
    const string question = "Fph/" + vorn::DirectoryText(vorn::ServerRootGet());
    while (vorn::PipeExchange(name.c_str(), question) != "1") std::this_thread::yield();
    for (vorn::NamedPipe* pipe : held) vorn::CloseHandle(pipe);
    PipeServerThread(nullptr);  // returns: the first one answers its probe
    {
        // And where that is too busy to answer: the library has its pipe.
        const std::lock_guard busy(vorn::DispatchLock);
        vorn::PipeHoldSet(1);
        PipeServerThread(nullptr);
    }
    std::_Exit(vorn::PipeName(vorn::PipeSlot) == name ? 0 : 1);
}
const Peer waitForAName("wait for a name", WaitForAName);

TEST(PipeWalkThreadsTest, WaitsForAFreeNameAndHoldsOnlyOne) {
    EXPECT_EQ(PeerStart("wait for a name").Wait(), 0);
}

TEST(PipeWalkThreadsTest, GivesEachDirectoryOneServerAndEachServerOneName) {
    HostProcess first;
    const string firstName = first.WaitFor("holds the pipe ");
    HostProcess second;
    const string secondName = second.WaitFor("holds the pipe ");
    EXPECT_TRUE(firstName != "" && secondName != "" && firstName != secondName);
    {
        HostProcess sameDirectory({"--quiet"}, first.Program());
        EXPECT_EQ(sameDirectory.WaitFor("holds no pipe"), ": a server of this directory has one already");
    }
    const string directory = vorn::DirectoryText(first.Program().substr(0, first.Program().find("bin/")));
    const auto ask = [&](const string& name, const string& text) {
        return vorn::PipeExchange(name.c_str(), "Fph/" + text);
    };
    EXPECT_EQ(ask(firstName, directory) + ask(firstName, directory + "Sub_") + ask(secondName, directory),
              "110");
    first.End();
    EXPECT_EQ(ask(firstName, directory), "LinkNone");
}

}  // namespace
