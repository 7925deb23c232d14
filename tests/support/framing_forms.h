// Requests whose end two readers could see at two places, and those that no reader should take.

#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/system.h"

struct FramingForm {
    std::string
        lines;  ///< behind the request line and `Host`; with what of a body stands before the hidden request
    int status = 400;
};

inline const FramingForm FramingForms[] = {
    {"Content-Length: abc\r\n\r\n"},
    {"Content-Length: 0x10\r\n\r\n"},
    {"Content-Length: +0\r\n\r\n"},
    {"Content-Length: -1\r\n\r\n"},
    {"Content-Length:\r\n\r\n"},
    {"Content-Length: 0, 0\r\n\r\n"},
    {"Content-Length: 18446744073709551617\r\n\r\n"},
    {"Content-Length: 0\r\nContent-Length: 0\r\n\r\n"},
    {"Content-Length:\r\n 0\r\n\r\n"},
    {"Content-Length : 0\r\n\r\n"},
    {"X: y\nContent-Length: 0\r\n\r\n"},
    {"X: y\rContent-Length: 0\r\n\r\n"},
    {"no header\r\n\r\n"},
    {"Transfer-Encoding: chunked\r\nContent-Length: 0\r\n\r\n0\r\n\r\n"},
    {"Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"},
    {"Transfer-Encoding: chunked, identity\r\n\r\n0\r\n\r\n"},
    {"Transfer-Encoding: xchunked\r\n\r\n0\r\n\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\nzz\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\n0x0\r\n\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\n 0\r\n\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\n-1\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\n10000000000000000\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\n2\r\n{}0\r\n\r\n"},
    {"Transfer-Encoding: chunked\r\n\r\n2\n{}\n0\n\n"},
    {"Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\nX: y\r\n\r\n"},
    {"Content-Encoding: gzip\r\nContent-Length: 300000\r\n\r\n", 415},
    {"Content-Encoding: br\r\nTransfer-Encoding: chunked\r\n\r\n", 415},
};

/// Sends each form to the port, with a request behind it that would create the project HIDDEN. Expects one
/// answer, of the form's status, and the end of the connection.
inline void ExpectFormsRefused(int port) {
    const std::string host = "Host: 127.0.0.1:" + std::to_string(port) + "\r\n";
    const std::string create = R"({"command":"Create","name":"HIDDEN"})";
    const std::string hidden = "POST /api HTTP/1.1\r\n" + host +
                               "Content-Length: " + std::to_string(create.size()) + "\r\n\r\n" + create;
    for (const FramingForm& form : FramingForms) {
        const RawClient client(port);
        client.Send("POST /api HTTP/1.1\r\n" + host + form.lines + hidden);
        const std::string reply = client.Receive();
        EXPECT_TRUE(reply.starts_with("HTTP/1.1 " + std::to_string(form.status) + " "))
            << form.lines << reply;
        EXPECT_EQ(reply.find("HTTP/1.1 ", 1), std::string::npos) << form.lines << reply;
        EXPECT_FALSE(reply.ends_with("error")) << form.lines;
    }
}
