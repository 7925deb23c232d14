// A user's host that loads the library by itself, in a folder with a Chinese name, on a system whose code
// page is Chinese.

#include <windows.h>

#include <algorithm>

#include "include/vorn_contract.h"
#include "platform/code_page.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;
namespace fs = std::filesystem;

/// The port of the service that runs in that folder, by what it answers itself; 0 for none.
int PortOf(const string& directoryText) {
    for (int round = 0; round < 100; ++round) {
        for (int port = VORN_FIRST_PORT; port < VORN_FIRST_PORT + 10; ++port) {
            httplib::Client client("127.0.0.1", port);
            const auto reply = client.Post("/api", R"({"command":"Fph","name":")" + directoryText + "\"}",
                                           "application/json");
            if (reply && reply->body == "1") return port;
        }
        Sleep(100);
    }
    return 0;
}

TEST(UserHostThreadsTest, LoadsTheLibraryOnAChinesePath) {
    if (GetACP() != 936) GTEST_SKIP() << "the system code page is not 936";
    const TemporaryFolder folder;
    const fs::path place = folder.Path() / u8"制冷站 一号" / "bin";
    fs::create_directories(place);
    for (const fs::path& file :
         {ProgramBeside("user_host"), TestProgram().replace_filename("VornServer.dll")}) {
        fs::copy_file(file, place / file.filename());
    }
    const std::u8string library = (place / "VornServer.dll").u8string();
    ChildProcess host(place / "user_host.exe", {string(library.begin(), library.end())}, place);
    string output;
    while (output.find("started") == string::npos) ASSERT_TRUE(host.Read(output)) << output;
    EXPECT_EQ(output.substr(0, output.find("\r\nstarted")),
              string("line: ") + NoVariable + "\r\naccess: 1\r\ntopology: none");

    const std::u8string wide = (place.parent_path() / "").make_preferred().u8string();
    string directory(wide.begin(), wide.end());
    std::replace(directory.begin(), directory.end(), '\\', '_');
    EXPECT_TRUE(directory.ends_with("制冷站 一号_")) << directory;
    const int port = PortOf(directory);
    ASSERT_GT(port, 0) << directory;
    const auto ask = [port](const string& command, const string& name, const string& messages) {
        const auto reply = httplib::Client("127.0.0.1", port)
                               .Post("/api",
                                     R"({"command":")" + command + R"(","name":")" + name +
                                         R"(","messages":)" + messages + "}",
                                     "application/json");
        return reply ? reply->body : "no reply";
    };
    EXPECT_EQ(
        ask("Fph", directory + "Sub_", "0") + ask("Fph", directory.substr(0, directory.size() - 2), "0"),
        "10");
    EXPECT_EQ(ask("Create", "PLANT1", "0"), "OK");
    // The catalogue's name as the engine has it, and in UTF-8.
    const string raw = vorn::CodePageFromUtf8("阀门");
    EXPECT_EQ(raw, "\xB7\xA7\xC3\xC5");
    const auto valve = [](const string& name) {
        return R"({"VornModuleID":2601010000012,"DeviceName":")" + name + "\"}";
    };
    EXPECT_EQ(ask("AddModule", "PLANT1", valve(raw)), "MOD0");
    EXPECT_EQ(ask("AddModule", "PLANT1", valve("阀门")), "MOD1");
    EXPECT_EQ(ask("AddModule", "PLANT1", valve("\xB7\xA7")), "DeviceName与VornModuleID对应不上,请重新核查");
    const string report = ask("PjtInfoChk", "PLANT1", "0");
    EXPECT_NE(report.find(R"("阀门")"), string::npos) << report;
    while (output.find("write: Create PLANT1") == string::npos) ASSERT_TRUE(host.Read(output)) << output;
}

}  // namespace
