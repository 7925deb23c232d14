#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <future>
#include <limits>

#include "engine/vorn_core.h"
#include "platform/file_text.h"
#include "standin/drawing.h"
#include "tests/support/file_faults.h"
#include "tests/support/service_test.h"

namespace {

using namespace std::string_literals;

class PicturesTest : public ServiceTest {
  protected:
    PicturesTest() { Send("Create", "P1"); }
};

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(PicturesTest, RepliesAreTheFileUpToItsFirstZeroByte) {
    const std::string parsing = R"(NameParsing_ModNod("P1"); )";
    const std::string wait = "sleep 2500; ProjectNameGet(0); ProjectNameGet(0)";
    const struct {
        const char *command, *file;
        std::string calls;
    } commands[] = {
        {"PjtPngGet", "P1.txt", parsing + "Pipe_PjtPngSave(0); " + wait},
        {"PjtChartGet", "P1_chart.txt", parsing + R"(ProjectNameGet(0); Chart_PngSave("P1"); )" + wait}};
    const std::pair<std::string, std::string> contents[] = {
        {"", ""}, {"plain <&\r\n", "plain <&\r\n"}, {"\xff\xfe\0tail"s, "\xff\xfe"}, {"\0"s, ""}};
    for (const auto& [command, file, wanted] : commands) {
        const std::filesystem::path path = folder_.Projects() / "P1" / file;
        for (const auto& content : contents) {
            AtSleep([&](int) { std::ofstream(path, std::ios::binary) << content.first; });
            EXPECT_EQ(Send(command, "P1"), content.second);
        }
        AtSleep([&](int) { std::filesystem::resize_file(path, std::uintmax_t{1} << 31); });
        EXPECT_EQ(Send(command, "P1"), "") << "2 GB";
        AtSleep([&](int) { std::filesystem::remove(path); });
        ExpectExchange(command, "P1", "", "", wanted);
        AtSleep([&](int) {
            std::filesystem::remove(path);
            std::filesystem::create_directory(path);
        });
        EXPECT_EQ(Send(command, "P1"), "") << "a folder";
    }
}

TEST_F(PicturesTest, FilesAreReplacedWholeAndReadUpToALimit) {
    const std::string path = (folder_.Projects() / "F").string();
    std::error_code fault;
    EXPECT_FALSE(vorn::FileReplace(path + "/F", "no folder", fault));
    std::filesystem::create_directories(folder_.Projects() / "G" / "full");
    EXPECT_TRUE(vorn::FileReplace(path, "old, and longer", fault) &&
                vorn::FileReplace(path, "new\0"s, fault));
    std::string content;
    EXPECT_TRUE(vorn::FileRead(path, 4, content, fault));
    EXPECT_EQ(content, "new\0"s);
    EXPECT_FALSE(vorn::FileRead(path, 3, content, fault));
    EXPECT_FALSE(vorn::FileReplace((folder_.Projects() / "G").string(), "a folder is in the way", fault));
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Projects())) {
        EXPECT_EQ(entry.path().string().find(".new"), std::string::npos);
    }
}

/// Holds a drawing against the one that was looked at and kept.
void ExpectGolden(const std::string& svg, const std::string& name) {
    std::string kept;
    std::error_code fault;
    EXPECT_TRUE(vorn::FileRead(VORN_SOURCE_DIR "/tests/golden/" + name, 1 << 20, kept, fault));
    EXPECT_EQ(svg, kept) << "where this is meant, look at the new picture and keep it as " << name;
}

TEST_F(PicturesTest, ThePictureIsTheOneThatWasLookedAt) {
    const int modules[][4] = {
        {11, 0, 100, 100}, {13, 0, 500, 300}, {0, 0, 50, 50}, {16, 7, -80, 40}, {1, 0, 0, 0}};
    for (int number = 0; number < 5; ++number) {
        const auto& [type, page, x, z] = modules[number];
        EXPECT_TRUE(ProjectAddModule("P1", number, type, page, x, z));
    }
    ModuleInstanceIDSet(0, 1, "<a&b>\"'\x01\xff\xed\xa0\x80]]>");
    for (int kind = 0; kind < 4; ++kind) {
        EXPECT_TRUE(ProjectAddNode("P1", kind + 1, kind, 0, 700, 100 * kind));
    }
    // Through a pipe; of all types; to another page and from it; into a jump and out of it; to nothing.
    const LinkSxCache links[] = {
        {true, 0, 0, 1, 0, 1, true, 1, 2, 0, true},   {true, 0, 0, 1, 2, 1, true, 1, 1, 0, true},
        {true, 1, 0, 2, 1, 8, false, 2, 2, 0, false}, {true, 2, 0, 2, 2, 8, false, 2, 3, 0, false},
        {true, 3, 0, 2, 4, 8, false, 2, 3, 1, false}, {true, 9, 0, 1, 1, 3, true, 2, 4, 0, false},
        {true, 0, 0, 1, 0, 1, true, 1, 3, 0, true},   {true, 0, 0, 1, 1, 1, true, 3, 5, 0, false},
        {true, 0, 0, 3, 6, 0, false, 2, 1, 0, false}, {true, 0, 0, 3, 6, 0, false, 3, 7, 0, false}};
    for (int number = 0; number < 10; ++number) ProjectAddLink("P1", number, links[number]);
    ExpectGolden(Send("PjtPngGet", "P1"), "plant.svg");
    // However far apart, all stays on a sheet that programs take.
    constexpr int Far = std::numeric_limits<int>::max();
    ProjectModuleXYSet("P1", 0, Far, -Far);
    const std::string far = Send("PjtPngGet", "P1");
    EXPECT_TRUE(Holds(far, "x=\"8150\"")) << far;
}

TEST_F(PicturesTest, TheChartIsTheOneThatWasLookedAtAndTakesAnyRun) {
    constexpr double Infinite = std::numeric_limits<double>::infinity();
    // It falls, has a gap, and rises again.
    const std::vector<double> fall{-1, -4, -6, -7, NAN, -6.5, Infinite, -3, 2};
    ExpectGolden(standin::ChartSvg("P<1>", fall, 3), "chart.svg");
    const std::vector<double> runs[] = {
        {}, {-1.0}, {-1.0, -1.0}, {NAN, Infinite, 1e300}, {0.0, -5.0, 8e8}, {1e-9, 2e-9}};
    for (const auto& run : runs) {
        const std::string svg = standin::ChartSvg("P1", run, 1 << 20);
        EXPECT_FALSE(Holds(svg, "nan") || Holds(svg, "inf"));
    }
    standin::ProjectFind(0)->temperatures = fall;
    standin::ProjectFind(0)->temperatureSteps = 3;
    EXPECT_EQ(Send("PjtChartGet", "P1"), standin::ChartSvg("P1", fall, 3));
}

TEST_F(PicturesTest, AreDrawnWhileTheCallerWaits) {
    constexpr auto Long = std::chrono::seconds(60);
    std::promise<void> begun;
    std::promise<void> asked;
    FileFaultSet(0, StepFault::Stop, [&] {
        begun.set_value();
        EXPECT_EQ(asked.get_future().wait_for(Long), std::future_status::ready);
    });
    Pipe_PjtPngSave(0);
    EXPECT_EQ(begun.get_future().wait_for(Long), std::future_status::ready);
    asked.set_value();
    standin::DrawingFinish();
    FileFaultClear();
    EXPECT_EQ(Send("PjtPngGet", "P1").substr(0, 5), "<?xml");
}

/// A script that gives that many names a value.
std::string Names(int count) {
    std::string script;
    for (int number = 0; number < count; ++number) script += "v" + std::to_string(number) + "=1 ";
    return script;
}

/// A script with a text of that many megabytes.
std::string Text(std::size_t megabytes) {
    return "x='" + std::string(megabytes << 20, 'x') + "'";
}

TEST_F(PicturesTest, ScriptsAreCompiledWhenTheyAreSent) {
    const std::pair<std::string, std::string> scripts[] = {
        {"", "OK"},
        {"while true do end", "OK"},
        {"温度 = 1", "script:1: unexpected symbol near '<\\230>'"},
        {"x = 1\ny =\n= 2", "script:3: unexpected symbol near '='"},
        {"\x1bLuaS", "attempt to load a binary chunk (mode is 't')"},
        {"return " + std::string(100'000, '('), "C stack overflow"},
        // It compiles within what a run of it has: 16 MB in all, and 4 MB for one text.
        {Names(300'000), "not enough memory"},
        {Text(5), "not enough memory"},
        {Text(3), "OK"},
        {Names(50'000) + Text(2), "OK"},
    };
    for (const auto& [script, reply] : scripts) EXPECT_EQ(Send("LuaSent", "P1", script), reply);
    EXPECT_EQ(CallsOf("LuaSent", "P1", "x"), Split(R"(NameParsing_ModNod("P1"); ProjectNameGet(0);
        ProjectLuaPreWrite("P1","x"); ProjectLuaAnalysis("P1"); LuaAnalysisGet())"));
}

}  // namespace
