// The HTTP server over a connection in memory: an input is the size of the pieces in which a client's bytes
// come, and those bytes. A plain and strict reader of the same bytes says which requests are in them; no
// other may be run.

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/stream_socket.h"
#include "tests/fuzz/front.h"
#include "transport/http_server.h"

namespace {

using std::string_view;

struct Connection {
    string_view coming;
    std::size_t piece = 1;
    std::string sent;
    bool open = true;
};
Connection connection;

/// Lower case, without blanks at both ends.
std::string Trimmed(string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == string_view::npos) return {};
    std::string result(text.substr(first, text.find_last_not_of(" \t") - first + 1));
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char each) { return std::tolower(each); });
    return result;
}

std::optional<std::size_t> NumberOf(string_view digits, int base) {
    std::size_t number = 0;
    const auto end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, number, base);
    if (digits.empty() || digits.size() > 15 || read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return number;
}

/// Cuts a line that ends with CR LF off the text.
std::optional<string_view> Line(string_view& text) {
    const std::size_t end = text.find("\r\n");
    if (end == string_view::npos) return std::nullopt;
    const string_view line = text.substr(0, end);
    text.remove_prefix(end + 2);
    return line;
}

/// Cuts a chunked body off the text.
std::optional<std::string> Chunks(string_view& text) {
    std::string body;
    for (;;) {
        const auto line = Line(text);
        if (!line) return std::nullopt;
        const auto size = NumberOf(line->substr(0, line->find(';')), 16);
        if (!size || text.size() < *size + 2 || text.substr(*size, 2) != "\r\n") return std::nullopt;
        body += text.substr(0, *size);
        text.remove_prefix(*size + 2);
        if (*size == 0) return body;
    }
}

/// Cuts one request off the text and gives its body; none where its end is in doubt.
std::optional<std::string> RequestBody(string_view& text) {
    if (!Line(text)) return std::nullopt;
    std::vector<std::string> lengths;
    std::vector<std::string> codings;
    for (auto line = Line(text);; line = Line(text)) {
        if (!line) return std::nullopt;
        if (line->empty()) break;
        const std::size_t colon = line->find(':');
        if (colon == string_view::npos || line->find_first_of("\r\n") != string_view::npos)
            return std::nullopt;
        const std::string name = Trimmed(line->substr(0, colon));
        if (name == "content-length") lengths.push_back(Trimmed(line->substr(colon + 1)));
        if (name == "transfer-encoding") codings.push_back(Trimmed(line->substr(colon + 1)));
    }
    if (lengths.size() + codings.size() > 1) return std::nullopt;
    if (!codings.empty()) return codings[0] == "chunked" ? Chunks(text) : std::nullopt;
    const auto size = lengths.empty() ? 0 : NumberOf(lengths[0], 10);
    if (!size || *size > text.size()) return std::nullopt;
    std::string body(text.substr(0, *size));
    text.remove_prefix(*size);
    return body;
}

std::vector<std::string> BodiesIn(string_view text) {
    std::vector<std::string> bodies;
    for (auto body = RequestBody(text); body; body = RequestBody(text)) bodies.push_back(*body);
    return bodies;
}

/// Serves one connection with a route for each path, which keeps the bodies that it is given.
class Door : public vorn::HttpServer {
  public:
    Door() {
        PostWhole(".*", [this](const httplib::Request& request, const std::string& body,
                               httplib::Response& response) {
            if (request.is_multipart_form_data()) return;
            run_.push_back(body);
            response.set_content("ran", "text/plain");
        });
    }
    std::vector<std::string> Run() {
        run_.clear();
        ServeConnection(0);
        return run_;
    }

  private:
    std::vector<std::string> run_;
};

/// Each reply has a whole head, and behind one that says that it is the last comes no other.
void CheckReplies(string_view sent) {
    while (!sent.empty()) {
        Require(sent.starts_with("HTTP/1.1 "), "a reply begins with its status", sent);
        const std::size_t headEnd = sent.find("\r\n\r\n");
        Require(headEnd != string_view::npos, "a reply has a whole head", sent);
        const bool last = sent.substr(0, headEnd).find("\r\nConnection: close") != string_view::npos;
        const std::size_t next = sent.find("HTTP/1.1 ", 1);
        Require(!last || next == string_view::npos, "nothing follows the last reply", sent);
        sent.remove_prefix(std::min(next, sent.size()));
    }
}

}  // namespace

namespace vorn {

bool SocketAwait(std::intptr_t /*socket*/, int /*milliseconds*/) {
    return true;
}
std::ptrdiff_t SocketRead(std::intptr_t /*socket*/, char* bytes, std::size_t size) {
    const std::size_t count = connection.coming.copy(bytes, std::min(size, connection.piece));
    connection.coming.remove_prefix(count);
    return static_cast<std::ptrdiff_t>(count);
}
void SocketReadTimeSet(std::intptr_t /*socket*/, int /*milliseconds*/) {}
std::ptrdiff_t SocketReadAwait(std::intptr_t socket, char* bytes, std::size_t size) {
    return SocketRead(socket, bytes, size);
}
std::ptrdiff_t SocketWrite(std::intptr_t /*socket*/, const char* bytes, std::size_t size,
                           int /*milliseconds*/) {
    Require(connection.open, "nothing is sent behind the end", "");
    connection.sent.append(bytes, size);
    return static_cast<std::ptrdiff_t>(size);
}
void SocketEndSending(std::intptr_t /*socket*/) {}
void SocketClose(std::intptr_t /*socket*/) {
    Require(connection.open, "a connection is closed once", "");
    connection.open = false;
}
void SocketEnds(std::intptr_t /*socket*/, SocketEndpoint /*remote*/, SocketEndpoint /*local*/) {}

}  // namespace vorn

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size == 0) return 0;
    static Door& door = *new Door;
    const std::string_view text = Text(bytes, size).substr(1);
    connection = {.coming = text, .piece = bytes[0] == 0 ? text.size() + 1 : bytes[0]};
    const std::vector<std::string> run = door.Run();
    Require(!connection.open, "a connection is closed", "");
    const std::vector<std::string> bodies = BodiesIn(text);
    auto from = bodies.begin();
    for (const std::string& body : run) {
        from = std::find(from, bodies.end(), body);
        Require(from != bodies.end(), "only what is a request is run", body);
        ++from;
    }
    CheckReplies(connection.sent);
    return 0;
}
