#include "host/own_port.h"

#include <httplib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "include/vorn_server.h"

namespace {

/// This program's directory as servers compare it: the parent of the folder that it lies in, `_` for `/`.
std::string DirectoryText() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    std::string text = program.parent_path().parent_path().string();
    if (!text.ends_with('/')) text += '/';
    for (char& character : text) {
        if (character == '/') character = '_';
    }
    return text;
}

/// A text in JSON quotes. Paths may hold anything.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') quoted += '\\';
        if (static_cast<unsigned char>(character) >= 0x20) quoted += character;
    }
    return quoted + '"';
}

std::string UniqueMark() {
    std::random_device random;
    return "vorn-host-" + std::to_string(getpid()) + "-" + std::to_string(random());
}

bool AnswersFromHere(int port, const std::string& directory, const std::string& mark) {
    httplib::Client client("127.0.0.1", port);
    client.set_connection_timeout(1);
    client.set_read_timeout(1);
    const auto reply = client.Post(
        "/api", R"({"command":"Fph","name":)" + Quoted(directory) + R"(,"messages":")" + mark + "\"}",
        "application/json");
    return reply && reply->body == "1";
}

/// Takes the lines with `mark` out of the log; true when there were any.
bool TakeOutMarked(std::string& log, const std::string& mark) {
    bool found = false;
    for (std::size_t at = log.find(mark); at != std::string::npos; at = log.find(mark)) {
        found = true;
        const std::size_t lineStart = at == 0 ? 0 : log.rfind('\n', at - 1) + 1;
        const std::size_t lineEnd = log.find('\n', at);
        log.erase(lineStart, lineEnd == std::string::npos ? lineEnd : lineEnd + 1 - lineStart);
    }
    return found;
}

}  // namespace

int OwnPortFind(const std::function<bool()>& waiting, const std::function<void(const std::string&)>& reads) {
    const std::string directory = DirectoryText();
    const std::string mark = UniqueMark();
    for (int port = FirstPort; waiting(); port = port == LastPort ? FirstPort : port + 1) {
        if (port == FirstPort) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (!AnswersFromHere(port, directory, mark)) continue;
        RtnGet_SxGet();
        std::string log = Rtn_Get_Get();
        const bool own = TakeOutMarked(log, mark);
        if (!log.empty()) reads(log);
        if (own) return port;
    }
    return 0;
}
