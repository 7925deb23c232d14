// The ways in as this system has them: what a process may use, who asks, and what sockets tell.

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <list>
#include <thread>

#include "platform/listen_socket.h"
#include "platform/named_pipe.h"
#include "platform/stream_socket.h"
#include "service/pipe_service.h"
#include "tests/support/host_process.h"
#include "tests/support/pipe_test.h"
#include "tests/support/system.h"
#include "transport/pipe_client.h"

namespace {

std::atomic<int> pipeConnects{0};

}  // namespace

/// Stands before the system's own and counts the attempts to open a pipe.
extern "C" int connect(int socket, const sockaddr* address, socklen_t length) {
    if (address->sa_family == AF_UNIX) ++pipeConnects;
    return static_cast<int>(syscall(SYS_connect, socket, address, length));
}

namespace {

using std::string;
using std::chrono::milliseconds;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool OwnMemory = false;
#else
constexpr bool OwnMemory = true;
#endif

// Columns of a process's `statm`.
constexpr int Data = 5;
constexpr int Resident = 1;

size_t MegabytesOf(pid_t process, int column) {
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    size_t pages = 0;
    for (int read = 0; read <= column; ++read) file >> pages;
    return pages * static_cast<size_t>(getpagesize()) >> 20U;
}

string Fdp(size_t nameBytes) {
    return R"({"command":"Fdp","name":")" + string(nameBytes, 'x') + "\"}";
}

TEST(WaysInThreadsTest, GivesMemoryBackAfterLargeRequests) {
    if (!OwnMemory) GTEST_SKIP() << "the sanitizer keeps what is freed";
    HostProcess host;
    const auto process = static_cast<pid_t>(host.Number());
    httplib::Client client = host.Client();
    client.set_read_timeout(60);
    ASSERT_TRUE(client.Post("/api", Fdp(10), "application/json"));
    const size_t before = MegabytesOf(process, Resident);
    for (int body = 0; body < 4; ++body) {
        const auto reply = client.Post("/api", Fdp(40U << 20U), "application/json");
        ASSERT_TRUE(reply && reply->body == "0");
    }
    // Not large each by itself, but many times its bytes in each worker's memory.
    std::string values = "1";
    while (values.size() < 900000) values += ",1";
    std::vector<std::thread> clients;
    for (int count = 0; count < 8; ++count) {
        clients.emplace_back([&host, &values] {
            const auto reply = host.Client().Post(
                "/api", R"({"command":"Fdp","name":"x","messages":[)" + values + "]}", "application/json");
            EXPECT_TRUE(reply && reply->body == "0");
        });
    }
    for (std::thread& each : clients) each.join();
    // A reply goes out before its request's memory is given back.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (MegabytesOf(process, Resident) > before + 12 && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(milliseconds(20));
    }
    EXPECT_LE(MegabytesOf(process, Resident), before + 12);
}

TEST(WaysInThreadsTest, GoesOnWhenRequestsAreTooLargeForItsMemory) {
    if (!OwnMemory) GTEST_SKIP() << "the sanitizer takes memory of its own";
    signal(SIGPIPE, SIG_IGN);  // a client's library writes on where it was let go
    const SerialLink terminal;
    HostProcess host({"--quiet", "--metrics", "--serial", terminal.Device()});
    const string pipe = "VornServerPipe" + host.WaitFor("holds the pipe VornServerPipe");
    const auto process = static_cast<pid_t>(host.Number());
    ASSERT_TRUE(host.Client().Get("/hi"));
    const auto leaveFree = [process](size_t megabytes) {
        const rlim_t most = (MegabytesOf(process, Data) + megabytes) << 20U;
        const rlimit limit{.rlim_cur = most, .rlim_max = RLIM_INFINITY};
        ASSERT_EQ(prlimit(process, RLIMIT_DATA, &limit, nullptr), 0);
    };
    const auto expectServes = [&host, &pipe] {
        const auto hi = host.Client().Get("/hi");
        EXPECT_TRUE(hi && hi->status == 200);
        string reply;
        vorn::PipeAsk(pipe.c_str(), "Fdp/P", 0, reply);
        EXPECT_EQ(reply, "0");
    };
    leaveFree(12);
    string reply;
    EXPECT_EQ(vorn::PipeAsk(pipe.c_str(), "Get/" + string(15U << 20U, 'x'), 0, reply),
              vorn::PipeAnswer::BrokeOff);
    expectServes();
    leaveFree(40);
    // All that is left goes to one worker.
    const auto refused = host.Client().Post("/api", Fdp(60U << 20U), "application/json");
    EXPECT_FALSE(refused && refused->body == "0");
    std::list<httplib::Client> all;
    for (size_t worker = 0; worker < CPPHTTPLIB_THREAD_POOL_COUNT; ++worker) {
        all.push_back(host.Client());
        all.back().set_keep_alive(true);
        EXPECT_TRUE(all.back().Get("/hi"));
        EXPECT_TRUE(httplib::Client("127.0.0.1", 9360).Get("/metrics"));
    }
    all.clear();
    terminal.Write("Get/" + string(60000, 'x') + "\rGet/X\r");
    while (terminal.ReadLine() != NoVariable) ASSERT_TRUE(host.Client().Get("/hi"));
    expectServes();
    leaveFree(40);
    int bodiesRefused = 0;
    for (const size_t megabytes : {1, 2, 4, 6, 9, 12, 14, 16, 20, 30, 60}) {
        httplib::Client client = host.Client();
        client.set_read_timeout(60);
        const auto body = client.Post("/api", Fdp(megabytes << 20U), "application/json");
        bodiesRefused += body && body->body == "0" ? 0 : 1;
        expectServes();
    }
    EXPECT_GT(bodiesRefused, 0);
    EXPECT_EQ(host.End(), 0) << host.WaitFor("nothing") << host.Output();
}

TEST(WaysInThreadsTest, SendsRepliesWithoutDelay) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    vorn::ListenSocketOptions(listener);
    ASSERT_EQ(listen(listener, 1), 0);
    sockaddr_in address{};
    socklen_t length = sizeof address;
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    const RawClient client(ntohs(address.sin_port));
    const int accepted = accept(listener, nullptr, nullptr);
    int noDelay = 0;
    length = sizeof noDelay;
    EXPECT_EQ(getsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &noDelay, &length), 0);
    EXPECT_EQ(noDelay, 1);
    close(accepted);
    close(listener);
}

TEST(WaysInThreadsTest, KnowsItsDirectoryByItsPathOf256Bytes) {
    for (const size_t bytes : {256, 257}) {
        const TemporaryFolder folder;
        const string end = "/bin/vorn-host";
        string root = folder.Path().string() + "/";
        root += string(bytes - end.size() - root.size(), 'd');
        std::filesystem::create_directories(root + "/bin");
        std::filesystem::copy(ProgramBeside("vorn-host"), root + end);
        HostProcess host({"--quiet"}, root + end);
        string text = root + "/";
        std::replace(text.begin(), text.end(), '/', '_');
        const auto reply =
            host.Client().Post("/api", R"({"command":"Fph","name":")" + text + "\"}", "application/json");
        EXPECT_EQ(reply ? reply->body : "no reply", bytes == 256 ? "1" : "0");
    }
}

TEST_F(PipeThreadsTest, WaitsForAClientThatEndedItsWritingToReadItsReply) {
    Serve(2);
    const RawClient first(name_);
    first.Send("Fdp/FIRST");
    first.EndSending();
    const int second = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(name_.begin(), name_.end(), address.sun_path + 1);
    ASSERT_EQ(connect(second, reinterpret_cast<const sockaddr*>(&address),
                      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name_.size())),
              0);
    ASSERT_EQ(send(second, "Fdp/B", 5, 0), 5);
    EXPECT_FALSE(vorn::SocketAwait(second, 300)) << "the second client was served before the first had read";
    EXPECT_EQ(first.Receive(), "0");
    EXPECT_TRUE(vorn::SocketAwait(second, 20000));
    close(second);
}

TEST_F(PipeThreadsTest, BridgesThePauseBetweenTwoPiecesOfALargeRequest) {
    // The pause is longer than a small request may have, and on a busy machine at times than any may.
    const string piece(40000, 'p');
    bool whole = false;
    for (int attempt = 0; attempt < 20 && !whole; ++attempt) {
        Serve(1);
        standin::TraceStart();
        const RawClient client(name_);
        client.Send("Fdp/" + piece);
        std::this_thread::sleep_for(milliseconds(80));
        client.Send(piece);
        client.EndSending();
        client.Receive();
        Join();
        whole = standin::TraceStop().back() == "ProjectNameToID(\"" + piece + piece + "\")";
    }
    EXPECT_TRUE(whole);
}

TEST_F(PipeThreadsTest, TriesFiveHundredTimesToOpenAPipe) {
    pipeConnects = 0;
    string reply;
    EXPECT_EQ(vorn::PipeAsk((name_ + "no").c_str(), "Fdp/P", 0, reply), vorn::PipeAnswer::NoPipe);
    EXPECT_EQ(pipeConnects, 500);
}

TEST_F(PipeThreadsTest, TakesNoReplyOverItsLimit) {
    std::thread server([] {
        EXPECT_TRUE(vorn::ConnectNamedPipe(vorn::PipeHandle));
        const string part(1U << 20U, 'r');
        for (size_t sent = 0; sent <= vorn::PipeReplyBytesAtMost; sent += part.size()) {
            if (!vorn::WriteFile(vorn::PipeHandle, part)) break;
        }
        vorn::DisconnectNamedPipe(vorn::PipeHandle);
    });
    string reply;
    EXPECT_EQ(vorn::PipeAsk(name_.c_str(), "Fdp/P", 0, reply), vorn::PipeAnswer::BrokeOff);
    EXPECT_EQ(reply, "");
    server.join();
}

TEST_F(PipeThreadsTest, TellsAnotherUsersPipeNothing) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root, to become another user";
    const string name = name_ + "other";
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        vorn::NamedPipe* const own = setuid(65534) == 0 ? vorn::CreateNamedPipeW(name) : nullptr;
        if (own == nullptr || write(ready[1], "r", 1) != 1) _exit(99);
        // Root may be served: what comes would be a request. Both clients leave without one.
        vorn::PipeHoldSet(20000);
        const bool asked = vorn::ConnectNamedPipe(own) || vorn::ConnectNamedPipe(own);
        _exit(asked ? 1 : 0);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_EQ(vorn::PipeHolderOf(name), vorn::PipeHolder::AnotherUser);
    string reply;
    EXPECT_EQ(vorn::PipeAsk(name.c_str(), "Create/SECRET", 0, reply), vorn::PipeAnswer::BrokeOff);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(vorn::PipeHolderOf(name_), vorn::PipeHolder::ThisProcess);
    close(ready[0]);
    close(ready[1]);
}

}  // namespace
