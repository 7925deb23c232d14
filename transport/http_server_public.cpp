// The server over the public interface of the HTTP library alone.

#include "transport/http_head.h"
#include "transport/http_server.h"

namespace vorn {

void HttpServer::Prepare() {
    // The library goes on with what a refused body leaves in the connection, as if it were a request.
    set_keep_alive_max_count(1);
}

bool HttpServer::Admits(const httplib::Request& request, httplib::Response& response) const {
    const auto count = [&](const char* name) { return request.get_header_value_count(name); };
    const HttpFraming framing =
        FramingOf(request.get_header_value("Content-Length"), count("Content-Length"),
                  request.get_header_value("Transfer-Encoding"), count("Transfer-Encoding"));
    constexpr int Forbidden = 403;
    constexpr int BadRequest = 400;
    constexpr int UnsupportedMediaType = 415;
    int status = framing.refused;
    if (status == 0 && count("Content-Encoding") > 0) status = UnsupportedMediaType;
    if (status == 0 && !rules_.bodies && (framing.chunked || framing.bodyBytes > 0)) status = BadRequest;
    if (status == 0 && rules_.admits && !rules_.admits(request)) status = Forbidden;
    if (status == 0) return true;
    response.status = status;
    response.set_content(status == Forbidden ? rules_.refusal : "this request is not served\n", "text/plain");
    return false;
}

bool HttpServer::BodyEnded() {
    return true;  // the library alone sees the body's end
}

}  // namespace vorn
