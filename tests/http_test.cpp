// The HTTP service for real: the port walk, the routes, and what anybody on the network may send.

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "tests/support/framing_forms.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"
#include "tests/support/system.h"

namespace {

using std::string;

constexpr const char* BadEnvelope = "API调用格式错误";

string Post(httplib::Client& client, const string& body, const char* type = "application/json") {
    const auto result = client.Post("/api", body, type);
    if (!result) return "no reply";
    EXPECT_EQ(result->status, 200);
    EXPECT_EQ(result->get_header_value("Content-Type"), "application/json");
    return result->body;
}

TEST(HttpThreadsTest, ServesItsTwoRoutes) {
    HostProcess host;
    httplib::Client client = host.Client();
    const auto hi = client.Get("/hi");
    ASSERT_TRUE(hi);
    EXPECT_EQ(hi->body, "Hello Quelmo!\n");
    EXPECT_EQ(hi->get_header_value("Content-Type"), "text/plain");
    for (const char* path : {"/api", "/hi/more", "/"}) EXPECT_EQ(client.Get(path)->status, 404) << path;
    EXPECT_EQ(client.Post("/hi", "", "text/plain")->status, 404);
    EXPECT_EQ(Post(client, R"({"command":"Create","name":"p1"})"), "OK");
    EXPECT_EQ(host.End(), 0);
}

TEST(HttpThreadsTest, AnswersWholeAndUnpackedWhateverIsAsked) {
    HostProcess host;
    int project = 10;
    for (const char* range : {"Range: bytes=0-3,5-6", "range: bytes=9-1", "RANGE:", "Range: bytes=x",
                              "Range: bytes=99999999999999999999-", "X: y\r\nRange: lines=0-",
                              "Accept-Encoding: br, gzip, deflate"}) {
        const string head = string(" HTTP/1.1\r\nConnection: close\r\n") + range + "\r\n";
        const RawClient hi(host.Port());
        hi.Send("GET /hi" + head + "\r\n");
        const string greeting = hi.Receive();
        EXPECT_TRUE(greeting.starts_with("HTTP/1.1 200 ") && greeting.ends_with("\r\n\r\nHello Quelmo!\n"))
            << range << greeting;
        const RawClient api(host.Port());
        api.Send("POST /api" + head + "Content-Length: 33\r\n\r\n" + R"({"command":"Create","name":"P)" +
                 std::to_string(project++) + "\"}");
        const string created = api.Receive();
        EXPECT_TRUE(created.starts_with("HTTP/1.1 200 ") && created.ends_with("\r\n\r\nOK"))
            << range << created;
    }
}

TEST(HttpThreadsTest, TakesTheRequestsOfOneConnectionOneByOne) {
    HostProcess host({"--quiet", "--metrics"});
    const string create = R"({"command":"Create","name":"HIDDEN"})";
    const string post = "POST /api HTTP/1.1\r\nContent-Length: " + std::to_string(create.size()) + "\r\n";
    const RawClient pipelined(host.Port());
    string requests;
    for (int request = 0; request < 5; ++request) requests += "GET /hi HTTP/1.1\r\n\r\n";
    pipelined.Send(requests + "GET /hi HTTP/1.1\r\nConnection: close\r\n\r\n");
    const string replies = pipelined.Receive();
    size_t greetings = 0;
    for (size_t at = 0; (at = replies.find("Hello", at)) != string::npos; ++at) ++greetings;
    EXPECT_EQ(greetings, 6U);

    // What stands in a body that nobody reads, or behind what is no request, is no request.
    for (const char* head : {"NONSENSE\r\n", "GET /hi HTTP/1.1\r\nContent-Length: 9999\r\n\r\n",
                             "POST /none HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n"}) {
        const RawClient client(host.Port());
        client.Send(head + post + "\r\n" + create);
        client.Receive();
    }
    ExpectFormsRefused(host.Port());
    ExpectFormsRefused(9360);
    httplib::Client client = host.Client();
    EXPECT_EQ(Post(client, R"({"command":"Fdp","name":"HIDDEN"})"), "0");
    // And the same request is one where it stands for itself.
    EXPECT_EQ(Post(client, create), "OK");
}

TEST(HttpThreadsTest, AnswersWhateverIsSent) {
    HostProcess host;
    httplib::Client client = host.Client();
    client.set_read_timeout(60);
    for (const string& body : {string(), string(1000000, '['), R"({"command":)" + string(1000000, '['),
                               string(1000, '\0'), string("\xff\xfe\xc0\x80")}) {
        EXPECT_EQ(Post(client, body), BadEnvelope);
    }
    EXPECT_EQ(Post(client, "{\"command\":\"Fdp\",\"name\":\"\xff\xfe\"}"), "0");
    EXPECT_EQ(Post(client, R"({"command":"Fdp","name":")" + string(50000000, 'x') + "\"}"), "0");
    // What a plain `curl -d` sends is marked as a form.
    EXPECT_EQ(Post(client, R"({"command":"Fdp","name":")" + string(20000, 'x') + "\"}",
                   "application/x-www-form-urlencoded"),
              "0");
    EXPECT_EQ(Post(client, "--b\r\n\r\n{}\r\n--b--\r\n", "multipart/form-data; boundary=b"), BadEnvelope);
    EXPECT_EQ(client.Get("/hi")->status, 200);
}

TEST(HttpThreadsTest, CarriesOutNoHalfRequestAndWaitsForNoBodyThatIsNotTold) {
    HostProcess host;
    const string whole = R"({"command":"Create","name":"HALF"})";
    const string head = "POST /api HTTP/1.1\r\nHost: x\r\n";
    const RawClient half(host.Port());
    half.Send(head + "Content-Length: 100\r\n\r\n" + whole);
    half.EndSending();
    half.Receive();
    httplib::Client client = host.Client();
    EXPECT_EQ(Post(client, R"({"command":"Fdp","name":"HALF"})"), "0");
    const RawClient bodiless(host.Port());
    bodiless.Send(head + "\r\n");
    EXPECT_NE(bodiless.Receive().find(BadEnvelope), string::npos);
}

TEST(HttpThreadsTest, AnswersHiWhileACommandRuns) {
    HostProcess host;
    httplib::Client client = host.Client();
    Post(client, R"({"command":"Create","name":"P"})");
    std::atomic<bool> placed{false};
    std::thread command([&] {
        httplib::Client other = host.Client();
        EXPECT_EQ(Post(other, R"({"command":"AddNode","name":"P","messages":)" + Fluid() + "}"), "NOD0");
        placed = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(client.Get("/hi")->status, 200);
    EXPECT_FALSE(placed) << "the greeting waited for the command";
    command.join();
}

TEST(HttpThreadsTest, AnswersAHundredRequestsOnOneConnection) {
    HostProcess host;
    httplib::Client client = host.Client();
    client.set_keep_alive(true);
    for (int request = 1; request <= 100; ++request) {
        const auto result = client.Get("/hi");
        ASSERT_TRUE(result) << request;
        EXPECT_EQ(result->get_header_value("Connection"), request < 100 ? "" : "close") << request;
    }
}

TEST(HttpThreadsTest, WalksPastHeldPorts) {
    HostProcess first;
    HostProcess second;
    ASSERT_GT(first.Port(), 0);
    EXPECT_GT(second.Port(), first.Port());
    httplib::Client onFirst = first.Client();
    httplib::Client onSecond = second.Client();
    EXPECT_EQ(Post(onSecond, R"({"command":"Create","name":"MINE"})"), "OK");
    EXPECT_EQ(Post(onSecond, R"({"command":"Fdp","name":"MINE"})"), "1");
    EXPECT_EQ(Post(onFirst, R"({"command":"Fdp","name":"MINE"})"), "0");

    const int next = second.Port() + 1;
    const HeldPort held(next);
    HostProcess third;
    EXPECT_GT(third.Port(), next);
}

TEST(HttpThreadsTest, TakesTheLastPortAndEndsWhenNoneIsFree) {
    std::vector<std::unique_ptr<HeldPort>> held;
    for (int port = 33360; port <= 33458; ++port) held.push_back(std::make_unique<HeldPort>(port));
    HostProcess last;
    ASSERT_EQ(last.Port(), 33459);
    EXPECT_EQ(last.Client().Get("/hi")->status, 200);
    HostProcess host;
    EXPECT_EQ(host.Port(), 0);
    EXPECT_NE(host.Output().find("no port of 33360 to 33459 is free"), string::npos) << host.Output();
}

}  // namespace
