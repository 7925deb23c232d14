// The commands NetAccess and PjtInfoChk on plants that stand in the engine: snapshot, page links and report.

#include <rapidjson/document.h>

#include <algorithm>
#include <functional>

#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "include/vorn_server.h"
#include "network/net_access.h"
#include "network/topology_report.h"
#include "tests/support/service_test.h"

namespace {

/// Adds links: type, then kind, number, port and flag of the upstream and of the downstream end.
void Link(const char* project, const std::string& links) {
    for (const std::string& text : Split(links)) {
        LinkSxCache link{.InUse = true};
        std::istringstream(text) >> link.Type >> link.F_Sx >> link.F_Nb >> link.F_PortNb >> link.F_Type2 >>
            link.S_Sx >> link.S_Nb >> link.S_PortNb >> link.S_Type2;
        ProjectAddLink(project, ProjectLinkNbCheck(ProjectNameToID(project)), link);
    }
}

/// A tank, a pipe and a node; behind the node an exchanger, whose second aisle is reached over jump 2 and
/// leads nowhere. Module 1 is vacant.
void PlantMake() {
    ProjectJsonAdd("PLANT");
    const int types[] = {14, 0, 0, 13};
    for (int number = 0; number < 4; ++number)
        ProjectAddModule("PLANT", number, types[number], 0, number * 25, -100);
    ProjectAddNode("PLANT", 0, 0, 0, 125, 0);
    ModuleInstanceIDSet(0, 2, "管-\"A\"");
    Pipe_DeleteModule(0, 1);
    Link("PLANT",
         "0 1 0 1 0 1 2 0 1; 0 1 2 1 1 2 0 0 0; 1 2 0 9 0 2 0 1 0; 0 2 0 8 0 3 2 0 0; 0 3 2 1 0 1 3 2 1");
}

/// The text without its line breaks and indents.
std::string Packed(std::string_view text) {
    std::string packed;
    bool indent = false;
    for (char character : text) {
        indent = character == '\n' || (indent && character == ' ');
        if (!indent) packed += character;
    }
    return packed;
}

/// An analysis beside the library's own, for what no request shows.
vorn::Analysis Own;

using NetworkReportTest = ServiceTest;

constexpr const char* PlantReport =
    R"({"DeviceNb": 3,"DeviceInfo": [)"
    R"({"InstanceID": "MOD0","DeviceName": "膨胀水箱","VornModuleID": 2601010000014,"PositionX": 0.0,"PositionZ": -2.0,"RoomID": 0,"ModelID": ""},)"
    R"({"InstanceID": "管-\"A\"","DeviceName": "铸铁管道","VornModuleID": 24032022192805856,"PositionX": 1.0,"PositionZ": -2.0,"RoomID": 0,"ModelID": ""},)"
    R"({"InstanceID": "MOD3","DeviceName": "板式换热器","VornModuleID": 2601010000013,"PositionX": 1.5,"PositionZ": -2.0,"RoomID": 0,"ModelID": ""}],)"
    R"("NodeNb": 1,"NodeInfo": [{"InstanceID": "NOD0","NodeName": "FLUID","VornModuleID": 3000,"PositionX": 2.5,"PositionZ": 0.0,"RoomID": 0,"ModelID": ""}],)"
    R"("ConnectionNb": 4,"ConnectionInfo": [)"
    R"({"InstanceID": "LNK0","Type": 0,"PageNb": 0,"F_InstanceID": "MOD0","F_PortNb": 1,"S_InstanceID": "MOD2","S_PortNb": 0},)"
    R"({"InstanceID": "LNK1","Type": 0,"PageNb": 0,"F_InstanceID": "MOD2","F_PortNb": 1,"S_InstanceID": "NOD0","S_PortNb": 0},)"
    R"({"InstanceID": "LNK2","Type": 1,"PageNb": 0,"F_InstanceID": "NOD0","F_PortNb": 9,"S_InstanceID": "NOD0","S_PortNb": 1},)"
    R"({"InstanceID": "LNK5","Type": 0,"PageNb": 0,"F_InstanceID": "NOD0","F_PortNb": 8,"S_InstanceID": "MOD3","S_PortNb": 2}],)"
    R"("BranchNb": 2,"BranchInfo": [)"
    R"({"Branch": 0,"Type": 0,"Size": 1,"Front_InstanceID": "MOD0","FrontPort": 1,"InstanceID_AisleNb": [{"MOD2": 0}],"Post_InstanceID": "NOD0","PostPort": 0},)"
    R"({"Branch": 1,"Type": 0,"Size": 1,"Front_InstanceID": "NOD0","FrontPort": 8,"InstanceID_AisleNb": [{"MOD3": 1}],"Post_InstanceID": "None","PostPort": -1}]})";

TEST_F(NetworkReportTest, TellsThePlantAndUsesTheAnalysisUp) {
    PlantMake();
    const auto calls = CallsOf("NetAccess", "PLANT");
    const auto loading = Split(
        R"(ProjectNameGet(0); ProjectInfoGet("PLANT"); ProjectInfoJumpLinkPressing(0); ModulePortInfo(0,2,0,5);
        ModulePortInfo(0,3,2,5); ModuleAisleSx(0,2,0,2))");
    const auto first = std::find(calls.begin(), calls.end(), loading[0]);
    ASSERT_GE(calls.end() - first, 6);
    EXPECT_EQ(std::vector(first, first + 6), loading);
    EXPECT_EQ(Send("NetAccess", "PLANT"),
              "出错啦,此支路号:1不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) "
              ":MOD3,通路号:1,设备VornmoduleID:2601010000013\n");
    EXPECT_EQ(Packed(Net_InfoToAI(0)), PlantReport);

    // Each report analyses afresh, but for one that follows an analysis: that tells of its project, and only
    // of what stood then, whatever slot is asked for.
    EXPECT_EQ(Packed(Send("PjtInfoChk", "PLANT")), PlantReport);
    Send("NetAccess", "PLANT");
    ProjectJsonAdd("OTHER");
    Pipe_DeleteLink(0, 2);
    EXPECT_EQ(Packed(Send("PjtInfoChk", "OTHER")), PlantReport);
    EXPECT_EQ(Module_FindInstanceID(0, "MOD0"), -1);  // the default names are the snapshot's alone
    EXPECT_EQ(Send("PjtInfoChk", "OTHER"),
              "{\n    \"DeviceNb\": 0,\n    \"DeviceInfo\": [],\n    \"NodeNb\": 0,\n    \"NodeInfo\": [],\n"
              "    \"ConnectionNb\": 0,\n    \"ConnectionInfo\": [],\n    \"BranchNb\": 0,\n    "
              "\"BranchInfo\": []\n}");
    EXPECT_EQ(Send("NetAccess", "OTHER"), "OK");

    Link("PLANT", "0 1 3 3 1 2 0 1 0");
    EXPECT_EQ(Send("NetAccess", "PLANT"), "OK");
    EXPECT_EQ(Net_InfoToAI(-1), nullptr);
    EXPECT_EQ(Net_InfoToAI(8), nullptr);
    EXPECT_NE(Net_InfoToAI(7), nullptr);  // an empty slot
}

/// A snapshot that is taken again shows each change, and nothing that the report entered.
TEST_F(NetworkReportTest, ShowsEachChange) {
    PlantMake();
    Send("PjtInfoChk", "PLANT");
    const std::pair<std::function<void()>, std::string> rows[] = {
        {[] { ProjectModuleXYSet("PLANT", 0, 50, 0); },
         R"("MOD0","DeviceName": "膨胀水箱","VornModuleID": 2601010000014,"PositionX": 1.0,)"},
        {[] { ProjectNodeXYSet("PLANT", 0, 50, 0); },
         R"("NodeName": "FLUID","VornModuleID": 3000,"PositionX": 1.0,)"},
        {[] { ModuleInstanceIDSet(0, 0, "tank"); }, R"({"InstanceID": "tank",)"},
        {[] { ModuleInstanceIDSet(0, 0, ""); }, R"({"InstanceID": "MOD0",)"},
        {[] { NodeInstanceIDSet(0, 0, "node"); }, R"({"InstanceID": "node",)"},
        {[] {
             Model_DB_Read(0, "DN50铸铁管道");
             Pjt_Modu_ModelToPch(0, 0, 2, 0);
         },
         R"("ModelID": "DN50铸铁管道"})"},
        {[] { ProjectAddModule("PLANT", 1, 0, 0, 0, 0); }, R"("DeviceNb": 4,)"},
        {[] { Pipe_DeleteModule(0, 1); }, R"("DeviceNb": 3,)"},
        {[] { ProjectAddNode("PLANT", 1, 0, 0, 0, 0); }, R"("NodeNb": 2,)"},
        {[] { Pipe_DeleteNode(0, 1); }, R"("NodeNb": 1,)"},
        {[] { Pipe_DeleteLink(0, 4); }, R"("ConnectionNb": 3,)"},
        {[] { Link("PLANT", "0 3 2 1 0 1 3 2 1"); }, R"("ConnectionNb": 4,)"},
        {[] { Pipe_ProjectInfoClear(0); }, R"("DeviceNb": 0,)"},
    };
    for (const auto& [change, shown] : rows) {
        change();
        const std::string report = Packed(Send("PjtInfoChk", "PLANT"));
        EXPECT_NE(report.find(shown), std::string::npos) << shown << " is not in " << report;
        EXPECT_EQ(Packed(Send("PjtInfoChk", "PLANT")), report);
    }
    vorn::SnapshotLoad(Own, 0);
    vorn::TopologyReport(Own);
    vorn::SnapshotLoad(Own, 0);
    EXPECT_EQ(Own.ProjectCheck.ModuleNb, 0);
    ProjectInfoRemove("PLANT");
    PlantMake();  // the same numbers in the same slot
    vorn::SnapshotLoad(Own, 0);
    vorn::TopologyReport(Own);
    vorn::SnapshotLoad(Own, 0);
    EXPECT_EQ(Own.ProjectCheck.ModuleNb, 4);
    EXPECT_STREQ(Own.ProjectCheck.ModuleSx[0].InstanceID, "");
}

TEST_F(NetworkReportTest, NamesOutsideTheTablesAreEmpty) {
    PlantMake();
    vorn::SnapshotLoad(Own, 0);
    Own.ProjectCheck.ModuleSx[0].TypeNb = 600;
    Own.ProjectCheck.ModuleSx[2].TypeNb = -1;
    Own.ProjectCheck.NodeSx[0].Kind = 4;
    Own.ProjectCheck.PageLinkSx[0].S_Sx = JumpKind;
    Own.ReportText.reserve(1000000);
    vorn::TopologyReport(Own);
    EXPECT_LT(Own.ReportText.capacity(), 100000U);  // the memory of a larger one is given back
    const std::string report = Packed(Own.ReportText);
    EXPECT_NE(report.find(R"("MOD0","DeviceName": "","VornModuleID": 0,)"), std::string::npos) << report;
    EXPECT_NE(report.find(R"(\"A\"","DeviceName": "","VornModuleID": 0,)"), std::string::npos) << report;
    EXPECT_NE(report.find(R"("NodeName": "","VornModuleID": 3004,)"), std::string::npos) << report;
    EXPECT_NE(report.find(R"("ConnectionNb": 4,)"), std::string::npos)
        << report;  // also a page link to a jump
}

TEST_F(NetworkReportTest, PageLinksJoinAllThatMeetsAtAJump) {
    ProjectJsonAdd("JUMPS");
    // Jump 5 leads to jump 6, and back; jump 8 leads nowhere. The jumps 21 and 22 are a line, 30 and 31 a
    // ring.
    Link("JUMPS",
         "2 1 1 1 1 3 5 0 0; 0 3 5 1 0 1 2 0 1; 0 2 3 8 0 3 5 1 0; 0 3 5 2 0 3 6 0 0;"
         "0 3 6 1 0 2 4 0 0; 0 3 6 2 0 3 5 0 0; 0 1 7 1 1 3 8 0 0;"
         "0 1 9 1 1 3 20 0 0; 0 3 20 1 0 3 21 0 0; 0 3 20 2 0 2 11 0 0; 0 3 21 1 0 3 22 0 0; 0 3 22 1 0 2 9 "
         "0 0; 0 1 8 1 1 3 21 0 "
         "0;"
         "0 1 10 1 1 3 30 0 0; 0 3 30 1 0 3 31 0 0; 0 3 31 1 0 3 30 0 0");
    vorn::SnapshotLoad(Own, 0);
    std::string links;
    for (int row = 0; row < Own.ProjectCheck.PageLinkNb; ++row) {
        const LinkSxCache& link = Own.ProjectCheck.PageLinkSx[row];
        for (int number : {link.Type, link.F_Sx, link.F_Nb, link.F_PortNb, int{link.F_Type2}, link.S_Sx,
                           link.S_Nb, link.S_PortNb, int{link.S_Type2}}) {
            links += std::to_string(number) + " ";
        }
        links += "\n";
    }
    EXPECT_EQ(links,
              "2 1 1 1 1 1 2 0 1 \n2 1 1 1 1 2 4 0 0 \n0 2 3 8 0 1 2 0 1 \n0 2 3 8 0 2 4 0 0 \n"
              "0 1 9 1 1 2 11 0 0 \n0 1 9 1 1 2 9 0 0 \n0 1 8 1 1 2 9 0 0 \n");

    // 200 rows into a jump and 200 out of it are more connections than there is room for.
    ProjectJsonAdd("FULL");
    for (int row = 0; row < 200; ++row) {
        const std::string number = std::to_string(row);
        Link("FULL", "1 1 " + number + " 1 1 3 1 0 0; 1 3 1 0 0 1 " + number + " 0 1");
    }
    vorn::SnapshotLoad(Own, 1);
    EXPECT_EQ(Own.ProjectCheck.PageLinkNb, PageLinkCapacity);
    EXPECT_TRUE(vorn::SnapshotAnalyse(Own, 1));
    vorn::TopologyReport(Own);  // larger than what is gathered at a time
    rapidjson::Document report;
    report.Parse(Own.ReportText.c_str());
    ASSERT_TRUE(report.IsObject());
    EXPECT_EQ(report["ConnectionNb"].GetInt(), PageLinkCapacity);
    EXPECT_EQ(report["ConnectionInfo"].Size(), static_cast<unsigned>(PageLinkCapacity));
}

TEST_F(NetworkReportTest, AsksForTheNameOfATypeOnce) {
    ProjectJsonAdd("TYPES");
    for (int module = 0; module < 3; ++module) ProjectAddModule("TYPES", module, 7, 0, 0, 0);
    const auto calls = CallsOf("PjtInfoChk", "TYPES");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "ModuleNameGet(7)"), 1);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "ModuleOneID_Get(7)"), 3);
}

TEST_F(NetworkReportTest, VacantModulesHaveNoAisles) {
    const auto aisleOf = [](int module) { return ModulePortInfo(0, module, 0, 5).AisleNb; };
    PlantMake();
    EXPECT_EQ(aisleOf(0), -1);  // an end port
    EXPECT_EQ(aisleOf(1), -1);  // deleted
    EXPECT_EQ(aisleOf(2), 0);
    EXPECT_EQ(ModuleAisleSx(0, 3, 1, 2).OutPortNb, 3);
    EXPECT_EQ(ModuleAisleSx(0, 1, 0, 2).OutPortNb, -1);
    Pipe_ProjectInfoClear(0);
    EXPECT_EQ(aisleOf(2), -1);
    ProjectAddModule("PLANT", 2, 0, 0, 0, 0);
    EXPECT_EQ(aisleOf(2), 0);
    ProjectDBWrite("PLANT");
    ProjectInfoRemove("PLANT");
    EXPECT_EQ(aisleOf(2), -1);
    ASSERT_EQ(ProjectInfoRead("PLANT"), 1);
    ProjectDBRead("PLANT");
    EXPECT_EQ(aisleOf(2), 0);
}

}  // namespace
