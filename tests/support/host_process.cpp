#include "tests/support/host_process.h"

#include <cstdlib>

namespace fs = std::filesystem;

HostProcess::HostProcess(const std::vector<std::string>& arguments, const std::string& program)
    : program_(program) {
    fs::create_directory(folder_.Path() / "work");
    if (program_.empty()) {
        const fs::path from = ProgramBeside("vorn-host");
        fs::create_directory(folder_.Path() / "bin");
        program_ = (folder_.Path() / "bin" / from.filename()).string();
        fs::copy(from, program_);
    }
    process_ = std::make_unique<ChildProcess>(program_, arguments, folder_.Path() / "work");
    port_ = std::atoi(WaitFor("http://127.0.0.1:").c_str());
}

std::string HostProcess::WaitFor(const std::string& mark) {
    for (;;) {
        const std::size_t at = output_.find(mark);
        const std::size_t end = at == std::string::npos ? at : output_.find_first_of("\r\n", at);
        if (end != std::string::npos) return output_.substr(at + mark.size(), end - at - mark.size());
        if (!process_->Read(output_)) return {};
    }
}

std::string HostProcess::Ask(const std::string& command, const std::string& name,
                             const std::string& messages) {
    httplib::Client client = Client();
    client.set_read_timeout(60);
    const auto reply = client.Post(
        "/api", R"({"command":")" + command + R"(","name":")" + name + R"(","messages":")" + messages + "\"}",
        "application/json");
    return reply ? reply->body : "no reply";
}

int HostProcess::End() {
    process_->AskToEnd();
    return process_->Wait();
}
