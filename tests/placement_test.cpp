// AddModule, AddNode and AddLink: which failure a client is told of, what is placed, and the engine calls in
// order.

#include <algorithm>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "tests/support/service_test.h"
#include "tests/support/test_locale.h"
#include "text/ansi_to_utf8.h"

namespace {

using std::string;

constexpr const char* ModuleNotFound = "找不到VornModuleID对应的模块,请核查VornModuleID";
constexpr const char* NodeNotFound = "找不到VornModuleID对应的节点,请核查VornModuleID";
constexpr const char* ModuleName = "DeviceName与VornModuleID对应不上,请重新核查";
constexpr const char* NodeName = "NodeName与VornModuleID对应不上,请重新核查";
constexpr const char* Refused = "出现莫名错误,请联系技术支持";

/// A project P in slot 0.
class PlacementTest : public ServiceTest {
  protected:
    PlacementTest() { Send("Create", "P"); }
};

constexpr const char* NotInt = "PageNb的格式错误,应该是int的整数";

const string NotDouble = "的格式错误,应该是double";
const string NotText = "的格式错误,应该是string";

TEST_F(PlacementTest, TellsTheFailureThatCounts) {
    for (const char* messages :
         {"", "no json", "[]", R"({"VornModuleID":1})", R"({"VornModuleID":1,"PageNb":"x"})",
          R"({"VornModuleID":"2601010000012","DeviceName":"阀门"})",
          R"({"VornModuleID":2601010000012.0,"DeviceName":"阀门"})"}) {
        EXPECT_EQ(Send("AddModule", "P", messages), ModuleNotFound) << messages;
    }
    EXPECT_EQ(Send("AddNode", "P", "no json"), NodeNotFound);
    for (const string number : {"2999", "3004", "-2147483648", "3000.0"}) {
        EXPECT_EQ(Send("AddNode", "P", R"({"VornModuleID":)" + number + R"(,"NodeName":"FLUID"})"),
                  NodeNotFound);
    }
    ExpectReplies({
        {"AddModule", "P", Valve(R"(,"PageNb":1.0)"), NotInt},
        {"AddModule", "P", Valve(R"(,"PositionX":3000000000)"), "PositionX" + NotDouble},
        {"AddModule", "P", Valve(R"(,"PositionZ":43000000.0)"), "PositionZ" + NotDouble},
        {"AddModule", "P", Valve(R"(,"RoomID":1,"ModelID":1,"PageNb":"x")"), "RoomID" + NotText},
        {"AddModule", "P", R"({"VornModuleID":2601010000012,"DeviceName":5,"RoomID":5})",
         "DeviceName" + NotText},
        {"AddModule", "P", R"({"VornModuleID":2601010000012})", ModuleName},
        {"AddModule", "P", R"({"VornModuleID":2601010000012,"DeviceName":"水泵"})", ModuleName},
        {"AddNode", "P", R"({"VornModuleID":3001,"NodeName":"info"})", NodeName},
        {"AddNode", "P", R"({"VornModuleID":3001})", NodeName},
        {"AddNode", "P", Fluid(R"(,"PositionX":"1","PositionZ":"1")"), "PositionZ" + NotDouble},
        {"AddModule", "P", Valve(), "MOD0"},
        {"AddNode", "P", R"({"VornModuleID":3003,"NodeName":"MECH"})", "NOD0"},
    });
}

TEST_F(PlacementTest, TakesADeviceNameInUtf8OrInTheSystemCodePage) {
    const TestLocale chinese(LC_CTYPE, "POSIX", "GBK");
    if (!chinese.Set())
        GTEST_SKIP()
            << "no locale of another code page: localedef or its sources (package locales) are missing";
    const string raw = ModuleNameGet(12);
    EXPECT_EQ(raw, "\xB7\xA7\xC3\xC5");
    EXPECT_EQ(Send("AddModule", "P", Valve()), "MOD0");
    EXPECT_EQ(Send("AddModule", "P", R"({"VornModuleID":2601010000012,"DeviceName":")" + raw + "\"}"),
              "MOD1");
    EXPECT_STREQ(vorn::AnsiToUtf8((raw + "\xFF").c_str()), "阀门\uFFFD");
}

TEST_F(PlacementTest, TellsOfAFullTableAndOfARefusal) {
    standin::CapacitySet(standin::ModuleTable, 1);
    standin::CapacitySet(standin::NodeTable, 0);
    standin::RefuseNextAddition();
    ExpectReplies({
        {"AddModule", "P", Valve(), Refused},
        {"AddModule", "P", Valve(), "MOD0"},
        {"AddModule", "P", Valve(R"(,"PageNb":"x")"), "模块数量已达到上限"},
        {"AddModule", "P", R"({"VornModuleID":1})", ModuleNotFound},
        {"AddNode", "P", Fluid(), "节点数量已达到上限"},
        {"AddNode", "P", "{}", NodeNotFound},
    });
}

TEST_F(PlacementTest, PlacesOnTheGridInTheGivenOrder) {
    ExpectExchange("AddModule", "P_x", Valve(R"(,"PageNb":2,"PositionX":1.99,"PositionZ":-3)"), "MOD0",
                   R"(NameParsing_ModNod("P_x"); ProjectModuleNbCheck(0); ModuleOneID_ToID(2601010000012);
        ModuleNameGet(12); GuiRef_Get(0); ProjectNameGet(0); ProjectAddModule("P",0,12,2,99,-150);
        Pipe_PjtRef(0); sleep 300; ModuleInstanceIDSet(0,0,"MOD0");)");
    ExpectExchange("AddNode", "P", Fluid(R"(,"PositionX":3.0,"PositionZ":-0.01)"), "NOD0",
                   R"(NameParsing_ModNod("P"); ProjectNodeNbCheck(0); GuiRef_Get(0); ProjectNameGet(0);
        ProjectAddNode("P",0,0,0,150,0); Pipe_PjtRef(0); sleep 300; NodeInstanceIDSet(0,0,"NOD0");)");
}

TEST_F(PlacementTest, WaitsForABusyViewAndThenGoesAhead) {
    for (const auto& [busy, waits] : {std::pair{3, 3}, {-1, 300}}) {
        standin::ViewBusySet(busy);
        const auto calls = CallsOf("AddNode", "P", Fluid());
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "sleep 1"), waits);
    }
    EXPECT_NE(standin::ProjectFind(0)->nodes.Find(1), nullptr);
}

/// The plant of the link tests: valves MOD0 and MOD1 (ports 0 in and 1 out, through), tanks MOD2 and MOD3 (0
/// in and 1 out, end ports), nodes NOD0 and NOD1.
class LinkTest : public PlacementTest {
  protected:
    LinkTest() {
        for (int valve = 0; valve < 2; ++valve) ProjectAddModule("P", valve, 12, 0, 0, 0);
        for (int tank = 2; tank < 4; ++tank) ProjectAddModule("P", tank, 14, 0, 0, 0);
        for (int node = 0; node < 2; ++node) ProjectAddNode("P", node, 0, 0, 0, 0);
    }

    /// A request such as `"MOD2 1 > NOD0 0"`, with further members.
    static string Ends(const string& text, const string& more = "") {
        const auto words = Split(text, ' ');
        return R"({"F_InstanceID":")" + words[0] + R"(","F_PortNb":)" + words[1] + R"(,"S_InstanceID":")" +
               words[3] + R"(","S_PortNb":)" + words[4] + more + "}";
    }
    static string Link(const string& text, const string& more = "") {
        return Send("AddLink", "P", Ends(text, more));
    }

    const string Between = "OK,但是新增了一个模块、链接了两条线:";

    static LinkSxCache Row(int number) { return *standin::ProjectFind(0)->links.Find(number); }
};

TEST_F(LinkTest, TellsTheLastFailureOfTheFirstFailedStage) {
    const string unknown = "InstanceID不识别,请重新核查InstanceID";
    const string upstreamRange = "F_PortNb端口号超出范围,仅支持编号0~15共16个端口";
    const string downstreamRange = "S_PortNb端口号超出范围,仅支持编号0~15共16个端口";
    ProjectAddLink("P", 0, {.InUse = true, .F_Sx = 1, .F_Nb = 0, .F_PortNb = 1, .S_Sx = 1, .S_Nb = 1});
    const struct {
        string messages, reply;
    } rows[] = {
        {"", "API调用json格式错误,无法解析"},
        {"[]", "API调用json格式错误,无法解析"},
        {R"({"Type":"0","PageNb":1.5})", NotInt},
        {R"({"F_InstanceID":1,"PageNb":"x"})", "F_InstanceID" + NotText},
        {R"({"F_PortNb":16,"S_InstanceID":1})", upstreamRange},
        {R"({"F_PortNb":-1,"S_PortNb":16})", downstreamRange},
        {Ends("NOD0 16 > MOD1 0"), upstreamRange},
        {Ends("MOD2 0 > NOD0 0"), "连线错误,上游端口只能是出口性质"},
        {Ends("NOD0 0 > MOD2 1"), "连线错误,下游端口只能是入口性质"},
        {Ends("MOD0 1 > NOD0 0"), "连线错误,上游端口已连接:1"},
        {Ends("NOD0 0 > MOD1 0"), "连线错误,下游端口已连接0"},
        {Ends("NOD0 0 > MOD1 5"), "连线错误,下游端口已连接5"},
        {Ends("NOD0 0 > MOD9 0"), "连线错误,下游端口已连接0"},
        {Ends("MOD0 0 > MOD1 1"), "连线错误,下游端口只能是入口性质"},
        {Ends("MOD0 1 > MOD1 0"), "连线错误,下游端口已连接0"},
        {Ends("XYZ1 1 > MOD1 1"), "连线错误,下游端口只能是入口性质"},
        {Ends("MOD0 0 > NOD9 0"), "连线错误,此节点的入口已被占满"},
        {Ends("MOD9 1 > NOD0 0"), "连线错误,上游端口只能是出口性质"},
    };
    for (const auto& row : rows) EXPECT_EQ(Send("AddLink", "P", row.messages), row.reply) << row.messages;
    EXPECT_EQ(Send("AddLink", "P", "{}"), unknown);
    for (const string& ends : Split("MOD 1 > NOD0 0; mod1 1 > NOD0 0; XYZ1 1 > NOD0 0; MOD1a 1 > NOD0 0;"
                                    "MOD4294967296 1 > NOD0 0; NOD0 0 > MOD1b 0")) {
        EXPECT_EQ(Link(ends), unknown) << ends;
    }
    EXPECT_EQ(standin::ProjectFind(0)->links.NextNumber(), 1);
}

TEST_F(LinkTest, LinksDirectlyWhereAPortIsFlaggedOrTheTypeHasNoModule) {
    ExpectExchange("AddLink", "P", Ends("MOD0 1 > MOD1 0", R"(,"Type":0,"PageNb":3)"), "LNK0",
                   R"(NameParsing_ModNod("P");
        ProjectModulePortInOutGet(0,0,1); ProjectModulePortCanBeLink(0,0,1); ProjectModulePortType_2_Get(0,0,1);
        ProjectModulePortInOutGet(0,1,0); ProjectModulePortCanBeLink(0,1,0); ProjectModulePortType_2_Get(0,1,0);
        GuiRef_Get(0); ProjectLinkNbCheck(0); ProjectNameGet(0);
        ProjectAddLink("P",0,{0 3 1 0 1 1 1 1 0 1}); Pipe_PjtRef(0); sleep 300;)");
    EXPECT_EQ(Link("MOD2 1 > MOD3 0", R"(,"Type":1)"), "LNK1");
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":3)"), "LNK2");
    EXPECT_EQ(Link("JMP4 5 > LNK2 6", R"(,"Type":7)"), "LNK3");
    const auto jump = Row(3);
    EXPECT_TRUE(jump.F_Sx == 3 && jump.F_Nb == 4 && jump.F_PortNb == 5 && jump.S_Sx == 4 &&
                jump.S_PortNb == 6);
}

TEST_F(LinkTest, PutsAPipeOrAWireBetweenUnflaggedEnds) {
    standin::ViewBusySet(1);
    ExpectExchange("AddLink", "P", Ends("MOD2 1 > NOD0 9", R"(,"PageNb":2)"), Between + "MOD4、LNK0、LNK1",
                   R"(NameParsing_ModNod("P");
        ProjectModulePortInOutGet(0,2,1); ProjectModulePortCanBeLink(0,2,1); ProjectModulePortType_2_Get(0,2,1);
        ProjectNodePortCanBeLink(0,0,0); GuiRef_Get(0); sleep 1; GuiRef_Get(0);
        ModuleOneID_ToID(24032022192805856); ProjectModuleNbCheck(0); ProjectNameGet(0);
        ProjectAddModule("P",4,0,2,50,50); ModuleInstanceIDSet(0,4,"MOD4");
        ProjectLinkNbCheck(0); ProjectNameGet(0); ProjectAddLink("P",0,{0 2 1 2 1 0 1 4 0 1});
        ProjectLinkNbCheck(0); ProjectNameGet(0); ProjectAddLink("P",1,{0 2 1 4 1 1 2 0 0 0});
        Pipe_PjtRef(0); sleep 300;)");
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":2)"), Between + "MOD5、LNK2、LNK3");
    EXPECT_EQ(standin::ProjectFind(0)->modules.Find(5)->type, 1);
}

TEST_F(LinkTest, TakesTheLowestFreeNodePorts) {
    for (int link = 0; link < 8; ++link)
        EXPECT_EQ(Link("NOD0 3 > NOD1 9", R"(,"Type":1)"), "LNK" + std::to_string(link));
    EXPECT_TRUE(Row(0).F_PortNb == 8 && Row(0).S_PortNb == 0 && Row(7).F_PortNb == 15 &&
                Row(7).S_PortNb == 7);
    EXPECT_EQ(Link("NOD0 0 > NOD0 0", R"(,"Type":1)"), "连线错误,此节点的出口已被占满");
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":1)"), "连线错误,此节点的入口已被占满");
    Pipe_DeleteLink(0, 2);
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":1)"), "LNK2");
    EXPECT_TRUE(Row(2).F_PortNb == 10 && Row(2).S_PortNb == 2);
}

TEST_F(LinkTest, TellsWhatHasNoRoom) {
    const string noRoom = "请暂停,连线数量、模块数量已达到上限。或者缺少管道、导线模块,请联系技术支持";
    standin::RefuseNextAddition();
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), Refused);
    EXPECT_EQ(standin::ProjectFind(0)->links.NextNumber(), 0);
    standin::CapacitySet(standin::ModuleTable, 4);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), noRoom);
    standin::CapacitySet(standin::LinkTable, 0);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0", R"(,"Type":1)"), noRoom);
    EXPECT_EQ(Link("MOD0 1 > NOD0 0"), "Nb To Be Max");
    // The link table is asked for only after the module stands.
    standin::CapacitySet(standin::ModuleTable, 6);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), Between + "MOD4");
    standin::CapacitySet(standin::LinkTable, 1);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), Between + "MOD5、LNK0");
}

TEST_F(LinkTest, DeletesTheLinksOfADeletedElementAndReusesItsNumber) {
    Link("MOD0 1 > MOD1 0");
    Link("NOD0 0 > MOD0 0");
    Pipe_DeleteModule(0, 0);
    EXPECT_EQ(standin::ProjectFind(0)->links.Find(0), nullptr);
    EXPECT_EQ(standin::ProjectFind(0)->links.Find(1), nullptr);
    EXPECT_FALSE(ProjectModulePortCanBeLink(0, 1, 0));
    EXPECT_EQ(Send("AddModule", "P", Valve()), "MOD0");
    EXPECT_EQ(Link("NOD0 0 > MOD0 0"), "LNK0");
}

TEST_F(LinkTest, TakesADeletedRoomFromThoseThatStandInIt) {
    for (int room = 4; room < 6; ++room)
        EXPECT_EQ(Send("AddModule", "P", Room), "MOD" + std::to_string(room));
    Pipe_RoomLinkAnalysis(0, 0, 4);
    Pipe_RoomLinkAnalysis(0, 1, 5);
    Pipe_FengKouLinkAnaysis(0, 2, 4);
    Send("DeleteMNL", "P_MOD4");
    EXPECT_EQ(Send("AddModule", "P", Room), "MOD4");
    const int rooms[] = {-1, 5, -1, -1};
    for (int module = 0; module < 4; ++module) {
        EXPECT_EQ(standin::ProjectFind(0)->modules.Find(module)->room, rooms[module]) << module;
    }
}

}  // namespace
