// The console's own server: what it serves, whom it refuses, and the records that it gives.

#include "host/console.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <fstream>

#include "host/event_log.h"
#include "tests/support/framing_forms.h"
#include "tests/support/working_folder.h"

namespace {

using std::string;

TEST(ConsoleTest, ReadsAddresses) {
    struct Row {
        string text;
        string host;  ///< empty for one that is refused
        int port;
    };
    for (const Row& row : {Row{"127.0.0.1:8400", "127.0.0.1", 8400}, Row{"0.0.0.0", "0.0.0.0", 0},
                           Row{"[::1]:9000", "::1", 9000}, Row{"[::1]", "::1", 0}, Row{"box:1", "box", 1},
                           Row{"", "", 0}, Row{":8400", "", 0}, Row{"a:", "", 0}, Row{"a:b", "", 0},
                           Row{"a:80x", "", 0}, Row{"a:-1", "", 0}, Row{"a:65536", "", 0}, Row{"[::1", "", 0},
                           Row{"a:33360", "", 0}, Row{"a:33459", "", 0}, Row{"a:33460", "a", 33460}}) {
        ConsoleAddress address;
        string fault;
        const bool read = ConsoleAddressRead(row.text, address, fault);
        EXPECT_EQ(read, !row.host.empty()) << row.text;
        EXPECT_EQ(fault.empty(), read) << row.text;
        if (!read) continue;
        EXPECT_EQ(address.host, row.host) << row.text;
        EXPECT_EQ(address.port, row.port) << row.text;
    }
    EXPECT_EQ(LinkTo("::1", 9000) + LinkTo("box", 80), "http://[::1]:9000http://box");
}

/// The console, there once for all tests: it cannot be stopped.
class ConsoleThreadsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        const TemporaryFolder top;
        std::ofstream(top.Path() / "secret.html") << "secret";
        const std::filesystem::path folder = top.Path() / "page";
        string fault;
        EXPECT_EQ(ConsoleStart({}, folder, fault), "") << "there is no page yet";
        EXPECT_NE(fault, "");
        std::filesystem::create_directory(folder);
        std::ofstream(folder / "index.html") << "the page";
        std::ofstream(folder / "key.pem") << "no file of a page";
        link_ = ConsoleStart({}, folder, fault);
    }
    void SetUp() override { ASSERT_TRUE(link_.starts_with("http://127.0.0.1:")) << link_; }

    /// The console's address, as `Host` has it.
    static string Host() { return link_.substr(7, link_.size() - 8); }
    static httplib::Client Client() { return httplib::Client("http://" + Host()); }
    static string Events(const string& after) { return Client().Get("/events?after=" + after)->body; }

    inline static string link_;
};

TEST_F(ConsoleThreadsTest, ServesItsPageAndNothingElse) {
    struct Row {
        string path;
        int status;
    };
    for (const Row& row :
         {Row{"/", 200}, Row{"/index.html", 200}, Row{"/key.pem", 404}, Row{"/../secret.html", 404},
          Row{"/..%2fsecret.html", 404}, Row{"/%2e%2e/secret.html", 404}, Row{"/api", 404},
          Row{"//index.html", 404}, Row{"/index.html/", 404}}) {
        EXPECT_EQ(Client().Get(row.path)->status, row.status) << row.path;
    }
    const auto page = Client().Get("/", {{"Accept-Encoding", "br, gzip"}, {"Range", "bytes=0-2"}});
    EXPECT_EQ(page->body, "the page");
    EXPECT_FALSE(page->has_header("Content-Encoding"));
    EXPECT_EQ(page->get_header_value("X-Content-Type-Options"), "nosniff");
    const string policy = page->get_header_value("Content-Security-Policy");
    EXPECT_TRUE(policy.starts_with("default-src 'none'")) << policy;
    EXPECT_EQ(policy.find("unsafe"), string::npos) << policy;
}

TEST_F(ConsoleThreadsTest, ServesItsOwnPagesRequestsOnly) {
    const string port = Host().substr(Host().find(':'));
    struct Row {
        httplib::Headers headers;
        int status;
    };
    for (const Row& row :
         {Row{{}, 200}, Row{{{"Host", "localhost" + port}}, 200}, Row{{{"Origin", "http://" + Host()}}, 200},
          Row{{{"Host", "localhost" + port}, {"Origin", "http://localhost" + port}}, 200},
          Row{{{"Origin", "http://evil.example"}}, 403}, Row{{{"Origin", "null"}}, 403},
          Row{{{"Origin", "https://" + Host()}}, 403}, Row{{{"Origin", "http://127.0.0.1:1"}}, 403},
          Row{{{"Origin", "http://localhost" + port}}, 403}, Row{{{"Host", "evil.example" + port}}, 403},
          Row{{{"Host", "localhost" + port}, {"Host", "evil.example" + port}}, 403},
          Row{{{"Host", "127.0.0.1"}}, 403}, Row{{{"Host", "10.0.0.1" + port}}, 403},
          Row{{{"Host", "evil.example" + port}, {"Origin", "http://evil.example" + port}}, 403}}) {
        httplib::Client client = Client();
        client.set_default_headers(row.headers);
        const auto answer = client.Post("/api", R"({"command":"Fdp","name":"P"})", "application/json");
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, row.status);
        EXPECT_EQ(answer->body == "0", row.status == 200) << answer->body;
        EXPECT_EQ(client.Get("/events?after=0")->status, row.status);
    }
}

TEST_F(ConsoleThreadsTest, RefusesWhatHidesARequest) {
    ExpectFormsRefused(std::stoi(Host().substr(Host().find(':') + 1)));
}

/// A record of a write with that name.
vorn::Event Write(const string& name) {
    vorn::ExchangeEvent event;
    event.writes = true;
    event.word = vorn::WordIndex("Set");
    event.name = {.text = name, .bytes = name.size() + 3, .left = 3};
    return {.what = event};
}

TEST_F(ConsoleThreadsTest, GivesTheLastRecordsAndTheRunStates) {
    EventKeep(Write(R"(A\"B)"));
    EventKeep({.what = vorn::RunStateEvent{.project = "P", .state = vorn::RunState::Running}});
    EventKeep({.what = vorn::RunStateEvent{.project = "Q", .state = vorn::RunState::Paused}});
    EventKeep({.what = vorn::RunStateEvent{.project = "Q", .state = vorn::RunState::Closed}});
    EventKeep({.what = vorn::NoticeEvent{.kind = vorn::NoticeKind::Trace, .text = "none of the page's"}});
    EventLossKeep({.exchanges = 2});
    const string first = Events("0");
    EXPECT_TRUE(first.starts_with(R"({"next":4,"lost":2,"projects":{"P":"running"},"events":[{"number":1,)"))
        << first;
    EXPECT_NE(first.find(R"("side":"write","word":"Set","sent":"","name":"A\\\"B","nameLeft":3)"),
              string::npos)
        << first;
    EXPECT_EQ(Events("4"), R"({"next":4,"lost":2,"projects":{"P":"running"},"events":[]})");

    for (int record = 0; record < 2100; ++record) EventKeep(Write("X"));
    for (const char* after : {"0", "garbage", "104"}) {
        EXPECT_TRUE(Events(after).starts_with(R"({"next":604,)")) << after;  // 105 to 2104 are kept
        EXPECT_NE(Events(after).find(R"("events":[{"number":105,)"), string::npos) << after;
    }
}

}  // namespace
