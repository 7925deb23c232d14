// The account of what happens: what the host prints, counts and keeps of each request, and what nobody can
// hide or forge.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "host/event_text.h"
#include "platform/visible.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

TEST(EventTextTest, EscapesWhatATerminalWouldActOn) {
    for (const string text : {"Get 房间_X é😀", ""}) EXPECT_EQ(vorn::Visible(text), text);
    EXPECT_EQ(vorn::Visible("\x1B[2J\t\r\x7F"), "\\x1B[2J\\x09\\x0D\\x7F");
    EXPECT_EQ(vorn::Visible("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(vorn::Visible("\xE6\x88"), "\\xE6\\x88");
    EXPECT_EQ(vorn::Visible("\x88房"), "\\x88房");
    EXPECT_EQ(vorn::Visible("\xED\xA0\x80\xF4\x90\x80\x80"), R"(\xED\xA0\x80\xF4\x90\x80\x80)");
    EXPECT_EQ(vorn::Visible("\xC0\x8A\xE0\x80\x8A\xFF"), "\\xC0\\x8A\\xE0\\x80\\x8A\\xFF");
}

TEST(EventTextTest, LeavesNoDoubtWhereATextEnds) {
    vorn::ExchangeEvent event;
    event.name = {.text = "A B"};
    event.sentWord = {.text = "x' 'OK"};
    event.messages = {.text = "[1", .bytes = 9, .left = 7};
    event.peer = "::1";
    EXPECT_EQ(ExchangeLine(event), "read   http/::1 other 'x\\x27 \\x27OK' 'A B' '[1'+7 ''\n");
    event.front = vorn::Front::Console;
    event.word = vorn::WordIndex("PjtSent");
    event.writes = true;
    event.name = {.text = "A", .left = 2};
    event.store = vorn::StoreEnd::Failed;
    EXPECT_EQ(ExchangeLine(event), "write  console/::1 PjtSent A+2 '[1'+7 '' (store failed)\n");
}

string Metrics() {
    const auto reply = httplib::Client("127.0.0.1", 9360).Get("/metrics");
    return reply ? "\n" + reply->body : "";
}

/// The value of a counter, 0 where it is not there.
long Counter(const string& metrics, const string& name) {
    const std::size_t at = metrics.find("\n" + name + " ");
    return at == string::npos ? 0 : std::stol(metrics.substr(at + name.size() + 2));
}

string Exchanges(const string& side, const string& command) {
    return "vornserver_exchanges_total{side=\"" + side + "\",command=\"" + command + "\"}";
}

/// Looks until the counters have come so far, for 20 seconds.
template <typename Value>
long Await(long wanted, Value value) {
    long seen = value();
    for (int look = 0; look < 400 && seen < wanted; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        seen = value();
    }
    return seen;
}

TEST(EventsThreadsTest, HideNoWriteAndLetNobodyForgeOne) {
    HostProcess host({"--metrics", "--no-console"});
    ASSERT_EQ(host.Ask("Create", "A"), "OK");
    EXPECT_EQ(host.Ask("Set", "A_GTemp", R"(7 {\"By\":\"console\"})"), "OK");
    const string forged = R"(\nwrite  http PjtStop A '' 'OK'\nwrite  PjtStop A  OK\u0000)";
    host.Ask("Get", "A" + forged, forged);
    for (int word = 0; word < 64; ++word) host.Ask("Forged" + string(1, static_cast<char>('0' + word)), "A");
    for (const string& word : {string("e"), forged}) host.Ask(word, "A");
    // Right behind a close, and longer than what the exchange log keeps.
    EXPECT_EQ(host.Ask("PjtClose", "A"), "OK");
    string names, values;
    for (int name = 0; name < 1500; ++name) {
        names.append(name > 0 ? "," : "").append(R"(\"A_V)" + std::to_string(name) + R"(\")");
        values.append(name > 0 ? "," : "").append(R"(\"1\")");
    }
    host.Ask("Set", "json", R"({\"VarName\":[)" + names + R"(],\"VarValue\":[)" + values + "]}");
    EXPECT_EQ(host.Ask("PjtStep", "A"), "项目名称找不到(project Char error)");

    const long last = Await(1, [] { return Counter(Metrics(), Exchanges("write", "PjtStep")); });
    EXPECT_EQ(last, 1);
    const string metrics = Metrics();
    EXPECT_EQ(Counter(metrics, Exchanges("read", "other")), 66);
    const std::pair<string, long> counted[] = {{Exchanges("write", "Create"), 1},
                                               {Exchanges("write", "Set"), 2},
                                               {Exchanges("read", "Get"), 1},
                                               {Exchanges("write", "PjtClose"), 1},
                                               {Exchanges("write", "PjtStop"), 0}};
    for (const auto& [name, count] : counted) EXPECT_EQ(Counter(metrics, name), count) << name;
    EXPECT_EQ(metrics.find("Forged"), string::npos);

    // Read before the end: a pipe may have less room than all these lines take.
    host.WaitFor("http/127.0.0.1 PjtStep A ");
    EXPECT_EQ(host.End(), 0);
    host.WaitFor("VornServer has ended.");
    std::vector<string> lines = Split(host.Output(), '\n');
    std::erase_if(lines, [](const string& line) {
        return line.find("Forged") != string::npos || line.starts_with("Vorn");
    });
    const char* const beginnings[] = {
        "write  http/127.0.0.1 Create A '' 'OK'",
        "state  A stopped",
        R"(write  http/127.0.0.1 Set A_GTemp '7 {"By":"console"}' 'OK')",
        R"(read   http/127.0.0.1 Get 'A\x0Awrite  http PjtStop A \x27\x27 \x27OK\x27\x0Awrite )",
        "read   http/127.0.0.1 other 'e' A ''",
        R"(read   http/127.0.0.1 other '\x0Awrite  http PjtStop A )",
        "write  http/127.0.0.1 PjtClose A '' 'OK'",
        "state  A closed",
        R"(write  http/127.0.0.1 Set json '{"VarName":["A_V0",)",
        "write  http/127.0.0.1 PjtStep A ''",
    };
    ASSERT_EQ(lines.size(), std::size(beginnings)) << host.Output();
    for (std::size_t line = 0; line < lines.size(); ++line) {
        EXPECT_TRUE(lines[line].starts_with(beginnings[line])) << lines[line];
    }
}

TEST(EventsThreadsTest, CountEachOfAHundredThousandReads) {
    constexpr int Clients = 4;
    constexpr int Reads = 25000;
    HostProcess host({"--quiet", "--metrics", "--no-console"});
    ASSERT_EQ(host.Ask("Create", "A"), "OK");
    std::atomic<int> failed{0};
    std::vector<std::thread> threads;
    for (int each = 0; each < Clients; ++each) {
        threads.emplace_back([&] {
            httplib::Client client = host.Client();
            client.set_keep_alive(true);
            client.set_tcp_nodelay(true);
            for (int read = 0; read < Reads; ++read) {
                const auto reply =
                    client.Post("/api", R"({"command":"Get","name":"A_GTemp"})", "application/json");
                if (!reply) ++failed;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(Await(Clients * Reads,
                    [] {
                        const string metrics = Metrics();
                        return Counter(metrics, Exchanges("read", "Get")) +
                               Counter(metrics, "vornserver_events_dropped_total{kind=\"exchange\"}");
                    }),
              Clients * Reads);
}

/// The sum of the numbers of lines that were dropped.
long Dropped(const string& line) {
    return line.find(" lines were dropped here") == string::npos ? 0 : std::stol(line.substr(1));
}

TEST(EventsThreadsTest, BringEachLineOfTheEngineOrItsNumberToASlowReader) {
    HostProcess host({"--quiet", "--trace", "--metrics", "--no-console"});
    host.Ask("Create", "A");
    const string name = "A_" + string(3000, 'x');
    for (int request = 0; request < 600; ++request) host.Ask("Get", name);
    // The last report before the end, behind more than is kept for a reader.
    ASSERT_EQ(host.Ask("Put", "A", "Remove"), "OK");
    const auto traced = [] { return Counter(Metrics(), "vornserver_notices_total{kind=\"trace\"}"); };
    long reports = traced();
    for (long before = -1; before != reports; reports = traced()) {
        before = reports;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    EXPECT_GT(reports, 600);
    EXPECT_EQ(Counter(Metrics(), "vornserver_events_dropped_total{kind=\"notice\"}"), 0);
    std::thread end([&host] { EXPECT_EQ(host.End(), 0); });
    host.WaitFor("engine: ProjectInfoRemove(");
    host.WaitFor("no line has this");  // reads on to the end
    end.join();
    long lines = 0;
    for (const string& line : Split(host.Output(), '\n'))
        lines += Dropped(line) + (line.starts_with("engine: ") ? 1 : 0);
    EXPECT_EQ(lines, reports);
}

TEST(EventsThreadsTest, EndBehindTheStoreThatRuns) {
    HostProcess host({"--no-console"});
    ASSERT_EQ(host.Ask("Create", "A"), "OK");
    string reply;
    std::thread request([&] { reply = host.Ask("PjtSent", "A", "{}"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // it rests for 300 before it stores
    EXPECT_EQ(host.End(), 0);
    request.join();
    EXPECT_EQ(reply, "OK");
    EXPECT_EQ(host.WaitFor("write  http/127.0.0.1 PjtSent A "), "'{}' 'OK'");
    const auto folder = std::filesystem::path(host.Program()).parent_path() / "../AlgProject/A";
    std::vector<string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files.push_back(entry.path().filename().string());
    EXPECT_EQ(std::count(files.begin(), files.end(), "A.json"), 1);
    for (const string& file : files) EXPECT_EQ(file.find(".new"), string::npos) << file;
}

TEST(EventsThreadsTest, FollowTheRunOfAProject) {
    HostProcess host({"--metrics", "--no-console"});
    ASSERT_EQ(host.Ask("Create", "A"), "OK");
    ASSERT_EQ(host.Ask("AddModule", "A", R"({\"VornModuleID\":25092208120526336,\"DeviceName\":\"房间\"})")
                  .substr(0, 3),
              "MOD");
    for (const char* word : {"PjtRun", "PjtPause", "PjtStop"}) EXPECT_EQ(host.Ask(word, "A"), "OK") << word;
    EXPECT_EQ(host.Ask("Put", "A", "Run"), "成功运行");
    EXPECT_EQ(Await(1, [] { return Counter(Metrics(), "vornserver_projects{state=\"running\"}"); }), 1);
    EXPECT_EQ(host.Ask("Put", "", "Close"), "OK");
    EXPECT_EQ(host.End(), 0);
    host.WaitFor("VornServer has ended.");
    string states;
    for (const string& line : Split(host.Output(), '\n')) {
        if (line.starts_with("state  A ")) states += line.substr(9) + " ";
    }
    EXPECT_EQ(states, "stopped running paused stopped running closed ");
}

}  // namespace
