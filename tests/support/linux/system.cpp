#include "tests/support/system.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/listen_socket.h"

namespace {

constexpr int PatienceMilliseconds = 20000;

sockaddr_in LoopbackAddress(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool Connect(int socket, const void* address, std::size_t size, int seconds) {
    const timeval wait{.tv_sec = seconds, .tv_usec = 0};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    const timeval connectWait{.tv_sec = 20, .tv_usec = 0};
    setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &connectWait, sizeof connectWait);
    const bool connected =
        connect(socket, static_cast<const sockaddr*>(address), static_cast<socklen_t>(size)) == 0;
    const timeval forEver{};
    setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &forEver, sizeof forEver);
    return connected;
}

bool WriteAll(int descriptor, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t written = write(descriptor, text.data() + done, text.size() - done);
        if (written <= 0) return false;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

const char* const NullDevice = "/dev/null";

unsigned ProcessNumber() {
    return static_cast<unsigned>(getpid());
}

std::filesystem::path TestProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           const std::filesystem::path& folder, const std::string& input) {
    std::vector<std::string> texts{program.string()};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> words;
    for (std::string& text : texts) words.push_back(text.data());
    words.push_back(nullptr);
    std::array<int, 2> ends{};
    std::array<int, 2> inputEnds{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0 || pipe2(inputEnds.data(), O_CLOEXEC) != 0) return;
    process_ = fork();
    if (process_ == 0) {
        dup2(inputEnds[0], STDIN_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        if (chdir(folder.c_str()) != 0) _exit(126);
        execv(words[0], words.data());
        _exit(127);
    }
    close(ends[1]);
    output_ = ends[0];
    close(inputEnds[0]);
    WriteAll(inputEnds[1], input);
    close(inputEnds[1]);
}

ChildProcess::~ChildProcess() {
    Kill();
    Wait();
    close(static_cast<int>(output_));
}

bool ChildProcess::Read(std::string& output) {
    std::array<char, 4096> bytes{};
    pollfd readable{.fd = static_cast<int>(output_), .events = POLLIN, .revents = 0};
    if (poll(&readable, 1, PatienceMilliseconds) <= 0) return false;
    const ssize_t count = read(readable.fd, bytes.data(), bytes.size());
    if (count > 0) output.append(bytes.data(), static_cast<std::size_t>(count));
    return count > 0;
}

unsigned ChildProcess::Number() const {
    return static_cast<unsigned>(process_);
}

void ChildProcess::AskToEnd() {
    if (process_ > 0) kill(static_cast<pid_t>(process_), SIGTERM);
}

void ChildProcess::Kill() {
    if (process_ > 0) kill(static_cast<pid_t>(process_), SIGKILL);
}

int ChildProcess::Wait() {
    int status = 0;
    if (process_ <= 0 || waitpid(static_cast<pid_t>(process_), &status, 0) < 0) return -1;
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

RawClient::RawClient(const std::string& pipe) : handle_(socket(AF_UNIX, SOCK_STREAM, 0)), ofPipe_(true) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(pipe.begin(), pipe.end(), address.sun_path + 1);
    connected_ =
        Connect(static_cast<int>(handle_), &address, offsetof(sockaddr_un, sun_path) + 1 + pipe.size(), 20);
}

RawClient::RawClient(int port) : handle_(socket(AF_INET, SOCK_STREAM, 0)), ofPipe_(false) {
    const sockaddr_in address = LoopbackAddress(port);
    connected_ = Connect(static_cast<int>(handle_), &address, sizeof address, 1);
}

RawClient::~RawClient() {
    close(static_cast<int>(handle_));
}

bool RawClient::Send(const std::string& text) const {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t sent =
            send(static_cast<int>(handle_), text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (sent <= 0) return false;
        done += static_cast<std::size_t>(sent);
    }
    return true;
}

void RawClient::EndSending() const {
    shutdown(static_cast<int>(handle_), SHUT_WR);
}

std::string RawClient::Receive() const {
    std::string text;
    std::array<char, 65536> bytes{};
    ssize_t count = 0;
    while ((count = recv(static_cast<int>(handle_), bytes.data(), bytes.size(), 0)) > 0) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return count == 0 ? text : text + "error";
}

HeldPort::HeldPort(int port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    vorn::ListenSocketOptions(socket_);
    sockaddr_in address = LoopbackAddress(port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    const int socket = static_cast<int>(socket_);
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) listen(socket, 1);
}

HeldPort::~HeldPort() {
    close(static_cast<int>(socket_));
}

SerialLink::SerialLink() : end_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    grantpt(static_cast<int>(end_));
    unlockpt(static_cast<int>(end_));
}

SerialLink::~SerialLink() {
    close(static_cast<int>(end_));
}

const char* SerialLink::Lacks() {
    return "no pseudo-terminals on this machine";
}

std::string SerialLink::Device() const {
    return ptsname(static_cast<int>(end_));
}

void SerialLink::Write(const std::string& text) const {
    WriteAll(static_cast<int>(end_), text);
}

std::string SerialLink::ReadLine() const {
    std::string line;
    pollfd readable{.fd = static_cast<int>(end_), .events = POLLIN, .revents = 0};
    while (poll(&readable, 1, PatienceMilliseconds) > 0) {
        char byte = 0;
        if (read(readable.fd, &byte, 1) != 1) break;
        if (byte == '\n' && line.ends_with('\r')) return line.substr(0, line.size() - 1);
        line += byte;
    }
    return line + "timeout";
}
