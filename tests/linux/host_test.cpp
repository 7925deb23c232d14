// The host program and what only this system has for it: signals, descriptors, locales, terminals.

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <thread>

#include "host/serial_port.h"
#include "include/vorn_contract.h"
#include "platform/line_queue.h"
#include "platform/notice.h"
#include "tests/support/host_process.h"
#include "tests/support/linux/locale_files.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

/// A socket on the first port from `port` on that is free for it, and nobody behind it. A host that is
/// started meanwhile has it among its descriptors too.
class IdleSocket {
  public:
    IdleSocket(int family, in_addr_t address, int port) : socket_(socket(family, SOCK_STREAM, 0)) {
        sockaddr_in6 wide{};
        wide.sin6_family = AF_INET6;
        sockaddr_in narrow{};
        narrow.sin_family = AF_INET;
        narrow.sin_addr.s_addr = htonl(address);
        for (bool bound = false; !bound; ++port) {
            narrow.sin_port = wide.sin6_port = htons(static_cast<in_port_t>(port));
            const bool six = family == AF_INET6;
            const auto* const at =
                six ? reinterpret_cast<const sockaddr*>(&wide) : reinterpret_cast<const sockaddr*>(&narrow);
            bound = bind(socket_, at, six ? sizeof wide : sizeof narrow) == 0 && listen(socket_, 1) == 0;
        }
    }
    ~IdleSocket() { close(socket_); }
    IdleSocket(const IdleSocket&) = delete;
    IdleSocket& operator=(const IdleSocket&) = delete;

    bool Asked() const {
        pollfd readable{.fd = socket_, .events = POLLIN, .revents = 0};
        return poll(&readable, 1, 0) > 0 && (readable.revents & POLLIN) != 0;
    }

  private:
    int socket_;
};

TEST(HostThreadsTest, TellsItsOwnPortAndAsksNoNeighbour) {
    const IdleSocket local(AF_INET, INADDR_LOOPBACK, VORN_FIRST_PORT);
    const IdleSocket wide(AF_INET6, 0, VORN_FIRST_PORT);
    const IdleSocket alike(AF_INET, INADDR_ANY, VORN_FIRST_PORT);
    const IdleSocket beyond(AF_INET, INADDR_ANY, VORN_LAST_PORT + 1);
    HostProcess host;
    const auto hi = host.Client().Get("/hi");
    EXPECT_TRUE(hi && hi->body == "Hello Quelmo!\n") << host.Output();
    for (const IdleSocket* each : {&local, &wide, &alike, &beyond}) EXPECT_FALSE(each->Asked());
}

TEST(HostThreadsTest, EndsBySignals) {
    for (const int signal : {SIGINT, SIGHUP}) {
        HostProcess host;
        kill(static_cast<pid_t>(host.Number()), signal);
        EXPECT_EQ(host.End(), 0) << signal;
    }
}

TEST(HostThreadsTest, TellsAManagerOfServicesWhenItAnswersAndWhenItEnds) {
    const TemporaryFolder folder;
    const string path = (folder.Path() / "notify").string();
    for (const string& name : {path, "@" + path}) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(name.begin(), name.end(), address.sun_path);
        if (name[0] == '@') address.sun_path[0] = '\0';
        const int manager = socket(AF_UNIX, SOCK_DGRAM, 0);
        const timeval patience{.tv_sec = 20, .tv_usec = 0};
        setsockopt(manager, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        ASSERT_EQ(bind(manager, reinterpret_cast<const sockaddr*>(&address), length), 0);
        const auto told = [manager] {
            string text(1000, '\0');
            text.resize(
                static_cast<size_t>(std::max<ssize_t>(recv(manager, text.data(), text.size(), 0), 0)));
            return text;
        };
        setenv("NOTIFY_SOCKET", name.c_str(), 1);
        HostProcess host;
        unsetenv("NOTIFY_SOCKET");
        EXPECT_EQ(told(), "READY=1\nSTATUS=VornServer answers on http://127.0.0.1:" +
                              std::to_string(host.Port()) + "/api\n");
        EXPECT_EQ(host.End(), 0);
        EXPECT_EQ(told(), "STOPPING=1\n");
        close(manager);
    }
}

TEST(HostThreadsTest, KeepsToWhatItsStarterIgnoresClosedAndBounds) {
    constexpr int Ignored[] = {SIGHUP, SIGINT};
    for (const int each : Ignored) signal(each, SIG_IGN);
    const string program = ProgramBeside("vorn-host").string();
    HostProcess host({"-c", "exec '" + program + "' --quiet <&- 2>&-"}, "/bin/sh");
    for (const int each : Ignored) signal(each, SIG_DFL);
    const auto process = static_cast<pid_t>(host.Number());
    for (const int each : Ignored) kill(process, each);
    const rlimit small{.rlim_cur = 20, .rlim_max = RLIM_INFINITY};
    ASSERT_EQ(prlimit(process, RLIMIT_FSIZE, &small, nullptr), 0);
    EXPECT_EQ(host.Ask("Create", "P"), "OK");
    EXPECT_EQ(host.Ask("PjtSent", "P", "{}"), "OK");
    EXPECT_EQ(host.Ask("Fdp", "P"), "1");
    for (const char* stream : {"0", "2"}) {
        const string link = "/proc/" + std::to_string(process) + "/fd/" + stream;
        EXPECT_EQ(std::filesystem::read_symlink(link), "/dev/null");
    }
    EXPECT_EQ(host.End(), 0);
}

TEST(HostThreadsTest, TakesTheCodePageOfTheUsersLanguage) {
    const LocaleFiles chinese("zh_CN", "GBK");
    if (!chinese.Made()) GTEST_SKIP() << "no Chinese locale: localedef or its sources are missing";
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vorn_\xB7\xBF";
    std::filesystem::create_directories(folder);
    setenv("TMPDIR", folder.c_str(), 1);
    setenv("LC_ALL", chinese.Name().c_str(), 1);
    {
        HostProcess host;
        string root = host.Program().substr(0, host.Program().find("bin/"));
        root.replace(root.find("\xB7\xBF"), 2, "房");
        std::replace(root.begin(), root.end(), '/', '_');
        EXPECT_EQ(host.Ask("Fph", root), "1") << root;
        host.Ask("Create", "P");
        const auto valve = host.Client().Post(
            "/api",
            R"({"command":"AddModule","name":"P","messages":{"VornModuleID":2601010000012,"DeviceName":")"
            "\xB7\xA7\xC3\xC5\"}}",
            "application/json");
        EXPECT_TRUE(valve && valve->body == "MOD0") << valve->body;
    }
    unsetenv("LC_ALL");
    unsetenv("TMPDIR");
    std::filesystem::remove_all(folder);
}

TEST(SerialPortTest, SetsTheSpeedThatIsAskedFor) {
    const SerialLink terminal;
    const std::pair<unsigned, speed_t> speeds[] = {{1200, B1200}, {57600, B57600}, {921600, B921600}};
    for (const auto& [baud, speed] : speeds) {
        string fault;
        const std::intptr_t device = SerialOpen({terminal.Device(), baud}, fault);
        ASSERT_GE(device, 0) << fault;
        termios settings{};
        EXPECT_EQ(tcgetattr(static_cast<int>(device), &settings), 0);
        EXPECT_EQ(cfgetospeed(&settings), speed) << baud;
        SerialClose(device);
    }
}

TEST(SerialThreadsTest, GoesOnWithADeviceThatIsBack) {
    const TemporaryFolder folder;
    const std::filesystem::path device = folder.Path() / "device";
    auto terminal = std::make_unique<SerialLink>();
    std::filesystem::create_symlink(terminal->Device(), device);
    HostProcess host({"--quiet", "--serial", device.string()});
    terminal->Write("Get/X\rhalf a line");
    EXPECT_EQ(terminal->ReadLine(), NoVariable);
    terminal.reset();
    EXPECT_EQ(host.WaitFor("vorn-host: the serial port "), device.string() + " has gone");
    terminal = std::make_unique<SerialLink>();
    std::filesystem::remove(device);
    std::filesystem::create_symlink(terminal->Device(), device);
    EXPECT_EQ(host.WaitFor(device.string() + " is "), "back");
    terminal->Write("Get/X\r");
    EXPECT_EQ(terminal->ReadLine(), NoVariable);
}

/// Standard error as a pipe of 4096 bytes while the object lives.
class ErrorPipe {
  public:
    ErrorPipe() : before_(dup(STDERR_FILENO)) {
        [[maybe_unused]] const int made = pipe(ends_.data());
        fcntl(ends_[0], F_SETFL, O_NONBLOCK);
        fcntl(ends_[1], F_SETPIPE_SZ, 4096);
        dup2(ends_[1], STDERR_FILENO);
    }
    ~ErrorPipe() {
        dup2(before_, STDERR_FILENO);
        for (const int each : {before_, ends_[0], ends_[1]}) close(each);
    }
    ErrorPipe(const ErrorPipe&) = delete;
    ErrorPipe& operator=(const ErrorPipe&) = delete;

    /// What waits in it.
    string Take() const {
        string text(8192, '\0');
        const ssize_t count = read(ends_[0], text.data(), text.size());
        text.resize(count > 0 ? static_cast<size_t>(count) : 0);
        return text;
    }

  private:
    int before_;
    std::array<int, 2> ends_{-1, -1};
};

/// What a reader gets that reads on until nothing is left; the long lines of 'f' as "F".
string Drain(const ErrorPipe& error, vorn::LineQueue& queue, const string& full) {
    string all;
    do {
        all += error.Take();
    } while (!queue.Send());
    all += error.Take();
    for (size_t at = 0; (at = all.find(full)) != string::npos;) all.replace(at, full.size(), "F");
    return all;
}

TEST(LineQueueTest, KeepsWhatNobodyReadsInBoundsAndSaysWhatItDropped) {
    const string full = string(4095, 'f') + "\n";
    const string dropped = string(100, 'd') + "\nd\n";
    const string notice = "(4 lines were dropped here: nobody read them)\n";
    const ErrorPipe error;
    vorn::LineQueue queue(vorn::StandardStream::Error, 100);
    queue.Put(full + full + "a\n");  // nothing waits: taken whole
    EXPECT_FALSE(queue.Send());
    for (const string& lines : {dropped, dropped}) queue.Put(lines);
    EXPECT_EQ(Drain(error, queue, full), "FFa\n" + notice);

    // Room again before the queue is empty: the notice stands where the lines would.
    queue.Put(full + "a\n");
    for (const string& lines : {dropped, dropped, string("b\n")}) queue.Put(lines);
    EXPECT_EQ(Drain(error, queue, full), "Fa\n" + notice + "b\n");
}

TEST(NoticeTest, ReachesASlowReaderWithoutAnotherReport) {
    const ErrorPipe error;
    for (const char* line : {"first", "last"}) {
        vorn::Notice(vorn::NoticeKind::Fault, string(6000, 'f') + line);
    }
    string all;
    for (int look = 0; look < 2000 && !all.ends_with("last\n"); ++look) {
        all += error.Take();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(all.ends_with("last\n"));
}

TEST(LineQueueTest, CountsAtTheEndWhatNobodyTakes) {
    const ErrorPipe error;
    vorn::LineQueue queue(vorn::StandardStream::Error);
    queue.Put(string(4095, 'f') + "\na\nb\n");
    const std::chrono::milliseconds little(20);
    EXPECT_EQ(queue.Finish({.still = little, .whole = little}), 2U);
    error.Take();
    EXPECT_EQ(queue.Finish(), 0U);
    EXPECT_EQ(error.Take(), "(2 lines were dropped here: nobody read them)\n");
}

TEST(LineQueueTest, WaitsForNoTerminalThatNobodyReads) {
    const SerialLink terminal;
    const int before = dup(STDERR_FILENO);
    const int device = open(terminal.Device().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    dup2(device, STDERR_FILENO);
    vorn::LineQueue queue(vorn::StandardStream::Error);
    for (size_t line = 0; line < 5000; ++line) queue.Put(string(line % 100, 'x') + "\n");
    const bool sent = queue.Send();
    dup2(before, STDERR_FILENO);
    for (const int each : {before, device}) close(each);
    EXPECT_FALSE(sent);
}

TEST(SendThreadsTest, TellsThatItsReplyCannotBeWritten) {
    const HostProcess host;
    const string send = ProgramBeside("vorn-send").string() + " --port " + std::to_string(host.Port());
    std::FILE* const output = popen((send + " Fdp P 2>&1 >/dev/full").c_str(), "r");
    string text(100, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), output));
    EXPECT_EQ(pclose(output), 1 << 8);
    EXPECT_EQ(text, "vorn-send: the reply cannot be written\n");
}

}  // namespace
