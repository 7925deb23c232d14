// The host program around the library: what it prints, and how it ends.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

TEST(HostThreadsTest, AnswersAndEndsThoughNobodyReadsWhatItPrints) {
    HostProcess host({"--trace"});
    host.Ask("Create", "P");
    const string name = "P_" + string(20000, 'x');
    for (int request = 0; request < 100; ++request) ASSERT_EQ(host.Ask("Get", name), NoVariable);
    // What the engine says is not read either.
    ASSERT_EQ(host.Ask("PjtSent", "P", "{}"), "OK");
    std::ofstream(std::filesystem::path(host.Program()).parent_path() / "../AlgProject/P/P.json") << "x";
    ASSERT_EQ(host.Ask("Put", "P", "Remove"), "OK");
    ASSERT_EQ(host.Ask("Put", "P", "Run"), "找不到项目");
    EXPECT_EQ(host.End(), 0);
}

TEST(HostThreadsTest, PrintsWhatNobodyReadToWhoReadsAgain) {
    HostProcess host({"--trace"});
    const string name = "P_" + string(20000, 'x');
    for (int request = 0; request < 100; ++request) host.Ask("Get", name);
    host.Ask("Fdp", "LAST");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));  // it fetches its log and finds no room
    EXPECT_EQ(host.WaitFor("read   http/127.0.0.1 Fdp LAST "), "'' '0'");
}

TEST(HostThreadsTest, PrintsTheLastExchangesAtItsEnd) {
    HostProcess host(std::vector<string>{});
    ASSERT_NE(host.WaitFor("VornServer holds "), "");
    host.Ask("Create", "P");
    host.Ask("Fdp", "P");
    EXPECT_EQ(host.End(), 0);
    EXPECT_EQ(host.WaitFor("write  http/127.0.0.1 Create P "), "'' 'OK'");
    EXPECT_EQ(host.WaitFor("read   http/127.0.0.1 Fdp P "), "'' '1'");
    EXPECT_TRUE(host.WaitFor("VornServer has ended.").empty());
    EXPECT_TRUE(host.Output().ends_with("\nVornServer has ended.\n")) << host.Output();
}

TEST(HostThreadsTest, TracesTextsOfClientsOnOneLineAndHarmless) {
    HostProcess host({"--quiet", "--trace"});
    host.Ask("Get", R"(A\nengine: forged\u001B[2J\u009B\u007F房)");
    EXPECT_EQ(host.WaitFor("engine: NameParsing("), R"("A\x0Aengine: forged\x1B[2J\xC2\x9B\x7F房"))");
}

}  // namespace
