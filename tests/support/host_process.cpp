#include "tests/support/host_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>

HostProcess::HostProcess(std::vector<std::string> arguments, const std::string& program) : program_(program) {
    std::string folder = std::filesystem::temp_directory_path() / "vorn_host_XXXXXX";
    folder_ = mkdtemp(folder.data());
    const std::string work = folder_ + "/work";
    std::filesystem::create_directory(work);
    if (program_.empty()) {
        std::filesystem::create_directory(folder_ + "/bin");
        program_ = folder_ + "/bin/vorn-host";
        std::filesystem::copy(VORN_HOST_PROGRAM, program_);
    }

    std::vector<char*> words{program_.data()};
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);

    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
        if (chdir(work.c_str()) != 0) _exit(126);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        execv(words[0], words.data());
        _exit(127);
    }
    close(ends[1]);
    output_fd_ = ends[0];
    port_ = std::atoi(WaitFor("http://127.0.0.1:").c_str());
}

HostProcess::~HostProcess() {
    End();
    close(output_fd_);
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
}

std::string HostProcess::WaitFor(const std::string& mark) {
    std::array<char, 4096> buffer{};
    pollfd readable{.fd = output_fd_, .events = POLLIN, .revents = 0};
    for (;;) {
        const std::size_t at = output_.find(mark);
        const std::size_t end = at == std::string::npos ? at : output_.find('\n', at);
        if (end != std::string::npos) return output_.substr(at + mark.size(), end - at - mark.size());
        if (poll(&readable, 1, 20000) <= 0) return {};
        const ssize_t count = read(output_fd_, buffer.data(), buffer.size());
        if (count <= 0) return {};
        output_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

int HostProcess::End() {
    if (pid_ <= 0) return -1;
    kill(pid_, SIGTERM);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
