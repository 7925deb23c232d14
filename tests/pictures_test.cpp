#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

#include "engine/vorn_core.h"
#include "platform/file_text.h"
#include "standin/chart.h"
#include "standin/plant_picture.h"
#include "tests/support/service_test.h"
#include "tests/support/working_folder.h"

namespace {

using namespace std::string_literals;

class PicturesTest : public ServiceTest {
  protected:
    PicturesTest() { Send("Create", "P1"); }
    WorkingFolder folder_;
};

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// What is wrong with an XML text, empty where all elements are closed in order and no character is loose.
std::string XmlFault(const std::string& xml) {
    std::vector<std::string> open;
    for (std::size_t at = xml.find_first_of("<&"); at != std::string::npos;) {
        const std::size_t end = xml.find_first_of(xml[at] == '<' ? ">" : ";", at);
        if (end == std::string::npos) return "ends inside " + xml.substr(at);
        const std::string inner = xml.substr(at + 1, end - at - 1);
        if (xml[at] == '&') {
            if (!Holds(" amp lt gt quot apos ", ' ' + inner + ' ')) return "a loose & before " + inner;
        } else if (Holds(inner, "<") || std::count(inner.begin(), inner.end(), '"') % 2 != 0) {
            return "a loose < or quote in " + inner;
        } else if (inner[0] == '/') {
            if (open.empty() || open.back() != inner.substr(1)) return "closes " + inner;
            open.pop_back();
        } else if (inner[0] != '?' && inner.back() != '/') {
            open.push_back(inner.substr(0, inner.find(' ')));
        }
        at = xml.find_first_of("<&", end);
    }
    return open.empty() ? "" : "leaves open " + open.back();
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
    EXPECT_FALSE(vorn::FileReplace(path, "no folder", fault));
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

TEST_F(PicturesTest, ThePictureShowsTheProject) {
    EXPECT_EQ(XmlFault(Send("PjtPngGet", "P1")), "");
    const int modules[][4] = {{11, 0, 100, 100}, {13, 0, 900, 500}, {0, 0, 50, 50}, {16, 7, 0, 0}};
    for (int number = 0; number < 4; ++number) {
        const auto& [type, page, x, z] = modules[number];
        EXPECT_TRUE(ProjectAddModule("P1", number, type, page, x, z));
    }
    ModuleInstanceIDSet(0, 1, "<a&b>\"'\x01\xff\xed\xa0\x80]]>");
    EXPECT_TRUE(ProjectAddNode("P1", 0, 2, 0, 2000, 100));
    const LinkSxCache links[] = {{true, 0, 0, 1, 0, 1, true, 1, 2, 0, true},
                                 {true, 2, 0, 1, 2, 1, true, 1, 1, 0, true},
                                 {true, 3, 0, 1, 1, 1, true, 3, 5, 0, false},
                                 {true, 1, 0, 1, 0, 1, true, 1, 3, 0, true},
                                 {true, 9, 0, 2, 0, 8, false, 2, 0, 0, false}};
    for (int number = 0; number < 5; ++number) ProjectAddLink("P1", number, links[number]);
    const std::string svg = Send("PjtPngGet", "P1");
    EXPECT_EQ(XmlFault(svg), "");
    for (const std::string& part : Split("水泵;板式换热器;MOD0<;class=\"l0\";class=\"l1\";class=\"l2\";class="
                                         "\"l3\";class=\"n2\";>JMP5<;>→MOD3<;页 7")) {
        EXPECT_TRUE(Holds(svg, part)) << part;
    }
    EXPECT_TRUE(Holds(svg, "&lt;a&amp;b&gt;&quot;&apos;\uFFFD\uFFFD"));
    EXPECT_FALSE(Holds(svg, "\xff") || Holds(svg, "\x01") || Holds(svg, "\xed\xa0"));
}

TEST_F(PicturesTest, NoTwoShapesOverlap) {
    constexpr int Far = std::numeric_limits<int>::max();
    std::mt19937 random(7);
    const auto any = [&random](unsigned limit) { return double(random() % limit); };
    for (std::size_t plant = 0; plant < 5; ++plant) {
        standin::PlantPage page;
        for (int index = 0; index < 60; ++index) {
            const standin::Point plants[] = {{0, 0},
                                             {5.0 * index + 120, 5.0 * index},
                                             {100.0 * (index % 9), 3000.0 * (index / 9)},
                                             {any(4000), any(2000)},
                                             {double(index % 2 == 0 ? Far : -Far), double(index)}};
            const standin::Point at = plants[plant];
            page.elements.push_back({.shape = static_cast<standin::Shape>(index % 5 == 4 ? 2 : 0),
                                     .x = static_cast<int>(at.x),
                                     .z = static_cast<int>(at.y)});
        }
        // Two pipes in a row between neighbours, and a jump.
        for (std::size_t index = 0; index < 8; ++index) {
            const std::size_t pipe = page.elements.size();
            page.elements.resize(pipe + 2, {.shape = standin::Shape::Connector});
            page.links.insert(page.links.end(),
                              {{0, index, pipe}, {0, pipe, pipe + 1}, {0, pipe + 1, index + 1}});
        }
        page.elements.push_back({.shape = standin::Shape::Mark});
        page.links.push_back({0, 3, page.elements.size() - 1});
        standin::PlantArrange(page);

        int overlaps = 0;
        for (const auto& one : page.elements) {
            const standin::Point size = standin::ShapeSize(one);
            EXPECT_TRUE(one.at.x >= size.x / 2 && one.at.x <= page.size.x - size.x / 2);
            EXPECT_TRUE(one.at.y >= size.y / 2 && one.at.y <= page.size.y - size.y / 2);
            for (const auto& two : page.elements) {
                const standin::Point other = standin::ShapeSize(two);
                overlaps += &one != &two && std::abs(one.at.x - two.at.x) < (size.x + other.x) / 2 &&
                            std::abs(one.at.y - two.at.y) < (size.y + other.y) / 2;
            }
        }
        EXPECT_EQ(overlaps, 0) << "plant " << plant;
        EXPECT_LT(std::max(page.size.x, page.size.y), 17000.0) << "plant " << plant;
    }
}

TEST_F(PicturesTest, TheChartTakesAnyRun) {
    constexpr double Infinite = std::numeric_limits<double>::infinity();
    const std::vector<double> runs[] = {
        {}, {-1.0}, {-1.0, -1.0}, {NAN, Infinite, 1e300}, {0.0, NAN, -5.0, -Infinite, 8e8}, {1e-9, 2e-9}};
    for (const auto& run : runs) {
        const std::string svg = standin::ChartSvg("P1", run, 1 << 20);
        EXPECT_EQ(XmlFault(svg), "");
        EXPECT_EQ(Holds(svg, "暂无数据"), run.empty());
        EXPECT_FALSE(Holds(svg, "nan") || Holds(svg, "inf"));
    }
    EXPECT_TRUE(Holds(Send("PjtChartGet", "P1"), "暂无数据,项目还没有运行"));
}

TEST_F(PicturesTest, ScriptsAreCompiledAndNeverRun) {
    std::string names;
    for (int number = 0; number < 1'000'000; ++number) names += "v" + std::to_string(number) + "=1 ";
    const std::pair<std::string, std::string> scripts[] = {
        {"", "OK"},
        {"while true do end", "OK"},
        {"温度 = 1", "script:1: unexpected symbol near '<\\230>'"},
        {"x = 1\ny =\n= 2", "script:3: unexpected symbol near '='"},
        {"\x1bLuaS", "attempt to load a binary chunk (mode is 't')"},
        {"return " + std::string(100'000, '('), "C stack overflow"},
        {names, "not enough memory"},
    };
    for (const auto& [script, reply] : scripts) EXPECT_EQ(Send("LuaSent", "P1", script), reply);
    EXPECT_EQ(CallsOf("LuaSent", "P1", "x"), Split(R"(NameParsing_ModNod("P1"); ProjectNameGet(0);
        ProjectLuaPreWrite("P1","x"); ProjectLuaAnalysis("P1"); LuaAnalysisGet())"));
}

}  // namespace
