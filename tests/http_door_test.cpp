// The door before the HTTP library: what an HTTP server of this project does by itself, whatever its routes.

#include <gtest/gtest.h>

#include <chrono>
#include <list>
#include <memory>
#include <thread>

#include "tests/support/system.h"
#include "transport/http_server.h"

namespace {

using std::string;

/// A server in this process, which answers `/api` with who asks and what was sent.
class DoorThreadsTest : public testing::Test {
  protected:
    void Bind(const vorn::HttpRules& rules) {
        for (port_ = 33500; port_ < 33600; ++port_) {
            server_ = std::make_unique<vorn::HttpServer>(rules);
            if (server_->Bind("127.0.0.1", port_)) return;
        }
        FAIL() << "no port is free";
    }
    void Serve(const vorn::HttpRules& rules) {
        Bind(rules);
        server_->PostWhole(
            "/api", [](const httplib::Request& request, const string& body, httplib::Response& response) {
                const string from = request.remote_addr + " " + std::to_string(request.remote_port);
                response.set_content(from + " " + body, "text/plain");
            });
        serving_ = std::thread([this] { server_->listen_after_bind(); });
        while (!server_->is_running()) std::this_thread::yield();
    }
    void TearDown() override {
        server_->stop();
        if (serving_.joinable()) serving_.join();
    }
    string Reply(const string& request) const {
        const RawClient client(port_);
        client.Send(request);
        return client.Receive();
    }

    int port_ = 0;

  private:
    std::unique_ptr<vorn::HttpServer> server_;
    std::thread serving_;
};

const string Post = "POST /api HTTP/1.1\r\nHost: x\r\nConnection: close\r\n";

TEST_F(DoorThreadsTest, LetsManyClientsConnectAtOnce) {
    // Nobody accepts: all of them wait in the backlog.
    Bind({});
    std::list<RawClient> clients;
    for (int count = 0; count < 64; ++count) {
        ASSERT_TRUE(clients.emplace_back(port_).Connected()) << count;
    }
}

TEST_F(DoorThreadsTest, TakesWhatItCanAndSaysWhatItCannot) {
    Serve({});
    string headers;
    for (int line = 0; line < 100; ++line) headers += "a: b\r\n";
    const struct {
        string request, begin, end;
    } rows[] = {
        {Post + "Content-Length: 2\r\n\r\n{}", "HTTP/1.1 200 ", " {}"},
        {Post + "content-LENGTH:\t02 \r\n\r\n{}", "HTTP/1.1 200 ", " {}"},
        {Post + "Transfer-Encoding: Chunked\r\n\r\n5;name=x\r\nhello\r\n00A\r\n, 0123456,\r\n0\r\n\r\n",
         "HTTP/1.1 200 ", " hello, 0123456,"},
        {Post + "\r\nbytes of no body", "HTTP/1.1 200 ", " "},
        {Post + "Expect: 100-continue\r\nContent-Length: 2\r\n\r\n", "HTTP/1.1 100 Continue\r\n\r\n",
         "error"},
        {"POST /api HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", "HTTP/1.1 400 ", "\n"},
        {"\r\n" + Post + "\r\n", "HTTP/1.1 400 ", "\n"},
        {"GET /none HTTP/1.1\r\n" + headers + "\r\n", "HTTP/1.1 404 ", ""},
        {"GET /none HTTP/1.1\r\n" + headers + "a: b\r\n\r\n", "HTTP/1.1 431 ", "\n"},
        {"GET /none HTTP/1.1\r\na: " + string(70000, 'x'), "HTTP/1.1 431 ", "\n"},
    };
    for (const auto& [request, begin, end] : rows) {
        const string reply = Reply(request);
        EXPECT_TRUE(reply.starts_with(begin) && reply.ends_with(end)) << request.substr(0, 200) << reply;
    }
    // Each connection has the address of its own client.
    const string first = Reply(Post + "\r\n");
    EXPECT_NE(first.find("\r\n\r\n127.0.0.1 "), string::npos) << first;
    EXPECT_NE(first, Reply(Post + "\r\n"));
}

TEST_F(DoorThreadsTest, WaitsForASlowClientOnlySoLong) {
    Serve({.headMilliseconds = 300, .bodyMilliseconds = 300});
    const std::pair<string, string> rows[] = {{Post + "X: ", "HTTP/1.1 408 "},
                                              {Post + "Content-Length: 100\r\n\r\n", "HTTP/1.1 400 "}};
    for (const auto& [begin, status] : rows) {
        // Without a limit for the whole, each byte would come in time.
        const RawClient client(port_);
        bool open = client.Send(begin);
        for (int byte = 0; byte < 50 && open; ++byte) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            open = client.Send("x");
        }
        EXPECT_TRUE(client.Receive().starts_with(status)) << begin;
    }
}

TEST_F(DoorThreadsTest, AdmitsWhomItsRulesAdmit) {
    Serve({.bodies = false,
           .admits = [](const httplib::Request& request) { return request.get_header_value("Host") == "x"; },
           .refusal = "not here"});
    EXPECT_TRUE(Reply(Post + "\r\n").starts_with("HTTP/1.1 200 "));
    EXPECT_TRUE(Reply(Post + "Content-Length: 0\r\n\r\n").starts_with("HTTP/1.1 200 "));
    EXPECT_TRUE(Reply(Post + "Content-Length: 1\r\n\r\nx").starts_with("HTTP/1.1 400 "));
    EXPECT_TRUE(Reply("POST /api HTTP/1.1\r\nHost: y\r\nConnection: close\r\n\r\n").ends_with("not here"));
}

TEST(HostTest, IsOwnByItsNameOrItsNumbers) {
    const struct {
        const char *header, *host;
        int port;
        bool own;
    } rows[] = {
        {"127.0.0.1:9360", "127.0.0.1", 9360, true},
        {"localhost:9360", "10.0.0.1", 9360, true},
        {"10.0.0.1:9360", "10.0.0.1", 9360, true},
        {"10.0.0.1:9360", "127.0.0.1", 9360, false},
        {"10.0.0.1:9360", "0.0.0.0", 9360, true},
        {"[fe80::1]:9360", "::", 9360, true},
        {"[fe80::1]:9360", "fe80::1", 9360, true},
        {"evil.example:9360", "0.0.0.0", 9360, false},
        {"box:9360", "box", 9360, true},
        {"box", "box", 9360, false},
        {"box", "box", 80, true},
        {"", "0.0.0.0", 9360, false},
    };
    for (const auto& [header, host, port, own] : rows) {
        EXPECT_EQ(vorn::HostIsOwn(header, host, port), own) << header << " " << host;
    }
}

}  // namespace
