// The commands on the values and places of one element, project variables, and the performance report.

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

/// A project P with the room MOD0, the valve MOD1, the node NOD0 and the link LNK0 between the last two.
class ValuesTest : public ServiceTest {
  protected:
    ValuesTest() {
        Send("Create", "P");
        Send("AddModule", "P", Room);
        Send("AddModule", "P", Valve());
        Send("AddNode", "P", Fluid());
        Send("AddLink", "P", R"({"F_InstanceID":"MOD1","F_PortNb":1,"S_InstanceID":"NOD0"})");
    }
};

constexpr const char* BadColumn = "仅有1、2、3套库值，您调用的column编号不可用";
constexpr const char* Ref = "Pipe_PjtVarValueRef(0)";
constexpr const char* ZeroRoom = R"({"InsideTemperature":0.0,"OutsideTemperature":0.0,"InsideHumidity":0.0,)"
                                 R"("OutsideHumidity":0.0,"InsidePm25":0.0,"OutsidePm25":0.0})";

TEST_F(ValuesTest, ServesEachKindInItsWay) {
    const string full(255, 'v');
    const string fits = R"({"Value":")" + full + "\"}";
    const string overlong = R"({"Column":9,"Value":"v)" + full + "\"}";
    const string overlongInCache = R"({"Column":3,"Value":"v)" + full + "\"}";
    const string node = "ProjectNodeItemValueSet(0,0,";
    const string valve = "ProjectModuleItemValueSet(0,1,";
    const string read = "ProjectNameGet(0); NameParsing(\"P_MOD1_IM0_";
    const string andRef = string("; ") + Ref;
    const struct {
        string command, element, messages, reply, calls;
    } rows[] = {
        {"PreGet", "MOD1", "", "0.000000", read + "PRE\"); ModPortGet(0,1,0,0)"},
        {"TempGet", "MOD1", "", "0.000000", read + "TEMP\"); ModPortGet(0,1,0,1)"},
        {"FlowGet", "MOD1", "", "0.000000", read + "FLOW\"); ModPortGet(0,1,0,2)"},
        {"PreGet", "NOD0", "", "0.00", ""},
        {"FlowGet", "LNK0", "", "0.00", ""},
        {"PreGet", "MOD7", "", NoVariable, "ProjectNameGet(0); NameParsing(\"P_MOD7_IM0_PRE\")"},
        {"RoomGet", "NOD0", "", ZeroRoom, ""},
        {"VarInfoGet", "LNK0", "", "[]", "Pipe_ModuleVarValueGet(0,4,0)"},
        {"VarCacheGet", "JMP3", "", "[]", "Pipe_ModuleVarCacheGet(0,3,3)"},
        {"RunValueGet", "MOD7", "", "[]", "Pipe_ModuleRunValueGet(0,1,7)"},
        {"VarValueSet", "MOD1", R"({"Row":0,"Column":7,"Value":"x"})", "OK", valve + "0,7,\"x\")" + andRef},
        {"VarValueSet", "NOD0", R"({"Row":2,"Column":-1,"Value":"x"})", "OK", node + "2,-1,\"x\")" + andRef},
        {"VarValueSet", "LNK0", R"({"Row":2,"Column":1,"Value":"x"})", "OK", Ref},
        {"VarValueSet", "MOD1", R"({"Row":1.5,"Column":"2","Value":3})", "OK", valve + "0,0,\"\")" + andRef},
        {"VarValueSet", "MOD1", "no object", "OK", valve + "0,0,\"\")" + andRef},
        {"VarValueSet", "MOD1", fits, "OK", valve + "0,0,\"" + full + "\")" + andRef},
        {"VarValueSet", "MOD1", overlong, "shibai", ""},
        {"VarCacheSet", "MOD1", R"({"Row":1,"Column":1,"Value":"x"})", "OK", valve + "1,2,\"x\")" + andRef},
        {"VarCacheSet", "NOD0", R"({"Column":3})", "OK", node + "0,4,\"\")" + andRef},
        {"VarCacheSet", "JMP3", R"({"Column":2})", "OK", Ref},
        {"VarCacheSet", "MOD1", R"({"Column":4,"Value":"x"})", BadColumn, Ref},
        {"VarCacheSet", "LNK0", R"({"Column":0})", BadColumn, Ref},
        {"VarCacheSet", "MOD1", "", BadColumn, Ref},
        {"VarCacheSet", "MOD1", overlong, BadColumn, Ref},
        {"VarCacheSet", "MOD1", overlongInCache, "shibai", ""},
        {"RunValueSet", "MOD1", R"({"Row":1,"Column":3,"Value":"x"})", "OK", valve + "1,1,\"x\")"},
        {"RunValueSet", "NOD0", "[]", "OK", node + "0,1,\"\")"},
        {"RunValueSet", "LNK0", "{}", "OK", ""},
        {"RunValueSet", "LNK0", overlong, "shibai", ""},
        {"CacheToRun", "MOD1", "", "OK", "Pjt_Modu_PchToRun(0,1,0)"},
        {"CacheToRun", "NOD0", " +2x", "OK", "Pjt_Node_PchToRun(0,0,2)"},
        {"CacheToRun", "MOD1", "3", "shibai", ""},
        {"CacheToRun", "MOD1", "-1", "shibai", ""},
        {"CacheToRun", "LNK0", "0", "shibai", ""},
        {"RunToCache", "MOD1", "1", "OK", "Pjt_Modu_RunToPch(0,1,1)" + andRef},
        {"RunToCache", "NOD0", "x", "OK", "Pjt_Node_RunToPch(0,0,0)" + andRef},
        {"RunToCache", "MOD1", "3", "shibai", ""},
        {"RunToCache", "LNK0", "2", "shibai", Ref},
        {"ImportantSet", "MOD1", " a\"b", "OK", "Pipe_ImportantSet(0,1,\" a\"b\")"},
        {"ImportantSet", "NOD0", "a", "shibai", ""},
        {"ImportantGet", "", "", R"([{"InstanceID":"MOD1","Important":" a\"b"}])", "Pipe_ImportantGet(0)"},
    };
    for (const auto& row : rows) {
        const string name = "P_" + row.element;
        ExpectExchange(row.command, name, row.messages, row.reply,
                       "NameParsing_ModNod(\"" + name + "\"); " + row.calls);
    }
}

TEST_F(ValuesTest, ShowsARoomAsTexts) {
    const auto items = Split(
        "InsideTemperature OutsideTemperature InsideHumidity OutsideHumidity InsidePm25 OutsidePm25", ' ');
    string room;
    string none;
    for (size_t row = 0; row < 6; ++row) {
        const string value = std::to_string(row) + ".5";
        Send("Set", "P_MOD0_" + items[row], value);
        room += ",\"" + items[row] + "\":\"" + value + "00000\"";
        none += ",\"" + items[row] + "\":\"" + NoVariable + '"';
    }
    EXPECT_EQ(Send("RoomGet", "P_MOD0"), '{' + room.substr(1) + '}');
    EXPECT_EQ(Send("RoomGet", "P_MOD1"), '{' + none.substr(1) + '}');
}

TEST_F(ValuesTest, MovesValuesBetweenTheLayers) {
    ModuleInstanceIDSet(0, 1, "valve");  // a free identity leads to the element too
    for (const string set : {"1", "2", "3"}) {
        Send("VarCacheSet", "P_valve", R"({"Column":)" + set + R"(,"Value":"1)" + set + "\"}");
        Send("VarCacheSet", "P_NOD0", R"({"Row":1,"Column":)" + set + R"(,"Value":"2)" + set + "\"}");
    }
    EXPECT_EQ(Send("VarCacheGet", "P_MOD1"), R"([{"Row":0,"Item":"Opening","Sets":[11.0,12.0,13.0]}])");
    EXPECT_EQ(Send("Get", "P_MOD1_Opening"), "0.000000");
    Send("CacheToRun", "P_MOD1", "1");
    Send("CacheToRun", "P_NOD0", "2");
    EXPECT_EQ(Send("Get", "P_MOD1_Opening"), "12.000000");
    EXPECT_EQ(Send("RunValueGet", "P_NOD0"),
              R"([{"Row":0,"Item":"Pressure","Value":0.0},{"Row":1,"Item":"Temperature","Value":23.0},)"
              R"({"Row":2,"Item":"Flow","Value":0.0}])");

    Send("RunValueSet", "P_MOD1", R"({"Value":"99"})");
    Send("Set", "P_MOD1_IM1_TEMP", "4.5");
    Send("Set", "P_NOD0_Temperature", "77");
    Send("RunToCache", "P_MOD1", "0");
    Send("RunToCache", "P_NOD0", "0");
    EXPECT_EQ(Send("VarCacheGet", "P_MOD1"), R"([{"Row":0,"Item":"Opening","Sets":[99.0,12.0,13.0]}])");
    EXPECT_NE(Send("VarCacheGet", "P_NOD0").find(R"("Temperature","Sets":[77.0,22.0,23.0])"), string::npos);
    Send("CacheToRun", "P_MOD1", "1");
    EXPECT_EQ(Send("Get", "P_MOD1_IM1_TEMP"), "0.000000");
    Send("CacheToRun", "P_MOD1", "0");
    EXPECT_EQ(Send("Get", "P_MOD1_IM1_TEMP"), "4.500000");
}

TEST_F(ValuesTest, TellsTheVariablesOfAnElement) {
    Send("Set", "P_MOD1_Opening", "nan");
    Send("Set", "P_MOD1_IM1_FLOW", "1.25");
    Send("Set", "P_MOD1_IM1_ARY", "1,2,-inf");
    const string valve = Send("VarInfoGet", "P_MOD1");
    for (const string part : {R"([{"Row":0,"Item":"Opening","Name":"P_MOD1_Opening","Value":0.0},{"Port":0,)",
                              R"(,{"Port":1,"Name":"P_MOD1_IM1_FLOW","Value":1.25},)",
                              R"(_IM1_ARY","Value":[1.0,2.0,0.0,0.0,0.0,0.0,0.0,0.0]}])"}) {
        EXPECT_NE(valve.find(part), string::npos) << valve;
    }
    const string node = Send("VarInfoGet", "P_NOD0");
    EXPECT_NE(node.find(R"({"Port":0,"Name":"P_NOD0_IM0_PRE","Value":0.0})"), string::npos);
    EXPECT_EQ(node.find("IM1_"), string::npos);
}

constexpr const char* NotAdded = "重名或变量数量达到上限";
constexpr const char* NotDeleted = "找不到变量名";

TEST_F(ValuesTest, AddsAndDeletesProjectVariables) {
    const auto expect = [](const string& command, const string& variable, const string& reply) {
        const bool adds = command == "PjtAddVar";
        const string call =
            string(adds ? "ProjectVarAdd(\"P\",0,\"" : "ProjectVarDle(\"P\",\"") + variable + "\")";
        ExpectExchange(command, "P", variable, reply,
                       R"(NameParsing_ModNod("P"); ProjectNameGet(0); )" + call +
                           (reply == "OK" ? string("; ") + Ref : ""));
    };
    expect("PjtAddVar", "Q_1", "OK");
    expect("PjtAddVar", "Q_1", NotAdded);
    expect("PjtAddVar", "GTemp", NotAdded);
    expect("PjtDleVar", "Q_1", "OK");
    expect("PjtDleVar", "Q_1", NotDeleted);
    for (const string& bad : {string(), string("a b"), string("a/b"), string("变量"), string("MOD7_PL"),
                              string("NOD0_x"), string("xx\""), string(64, 'x')}) {
        EXPECT_EQ(Send("PjtAddVar", "P", bad), NotAdded) << bad;
    }
    for (const string& good : Split("q Q MOD7 MODE_x 7 _ " + string(63, 'x'), ' ')) {
        EXPECT_EQ(Send("PjtAddVar", "P", good), "OK") << good;
        EXPECT_EQ(Send("Get", "P_" + good), "0.000000") << good;
    }
    EXPECT_EQ(Send("PjtDleVar", "P", "GTemp"), NotDeleted);
    EXPECT_EQ(Send("PjtDleVar", "P", ""), NotDeleted);
}

TEST_F(ValuesTest, FillsTheTableOfProjectVariables) {
    int added = 0;
    while (Send("PjtAddVar", "P", "v" + std::to_string(added)) == "OK") {
        Send("Set", "P_v" + std::to_string(added), std::to_string(added));
        ++added;
    }
    EXPECT_EQ(added, 256 - static_cast<int>(standin::StandardVariableCount));
    EXPECT_EQ(Send("PjtDleVar", "P", "v100"), "OK");
    EXPECT_EQ(Send("PjtAddVar", "P", "w"), "OK");
    EXPECT_EQ(Send("Get", "P_w"), "0.000000");
    EXPECT_EQ(Send("Get", "P_v100"), NoVariable);
    EXPECT_EQ(Send("Get", "P_v240"), "240.000000");
}

TEST_F(ValuesTest, ReportsThePerformance) {
    Send("Set", "P_COP", "3.25");
    Send("Set", "P_WAll", "100");
    Send("Set", "P_GTemp", "-10");
    const auto report = [](const string& store) {
        return R"({"data":"效率值:3.250000(COP)\n总能耗:100.000000(KW)\n库温:)" + store +
               R"~((摄氏度)\n蒸发温度:-10.000000(摄氏度)"})~";
    };
    EXPECT_EQ(Send("PjtCerGet", "P"), report(NoVariable));
    ProjectAddModule("P", 145, ModuleOneID_ToID(2601010000022), 0, 0, 0);
    Send("Set", "P_MOD145_BKT_TEMP", "-18.5");
    EXPECT_EQ(Send("PjtCerGet", "P"), report("-18.500000"));

    string reads;
    for (const string& call : CallsOf("PjtCerGet", "P")) {
        if (call.starts_with("Glo") || call.starts_with("Mod")) reads += call + ' ';
    }
    EXPECT_EQ(reads, "GloGet(0,0) ModGet(0,145,0) GloGet(0,1) GloGet(0,2) ");
}

TEST_F(ValuesTest, MovesModulesAndNodesOnly) {
    ModuleInstanceIDSet(0, 1, "valve-7");
    const string notDouble = "的格式错误,应该是double";
    const string notMovable = "连线或跳转不可被移动,会跟随所连接的设备、节点移动";
    const struct {
        string name, messages, reply, call{};  // the call that moves
    } rows[] = {
        {"P_MOD0", R"({"PositionX":1.99,"PositionZ":-3.5})", "OK", R"(ProjectModuleXYSet("P",0,99,-175))"},
        {"P_valve-7", R"({"PositionX":2.0,"PositionZ":1e1})", "OK", R"(ProjectModuleXYSet("P",1,100,500))"},
        {"p_NOD0", "{}", "OK", R"(ProjectNodeXYSet("P",0,0,0))"},
        {"P_MOD77", R"({"PositionX":3.0})", "OK", R"(ProjectModuleXYSet("P",77,150,0))"},
        {"P_MOD0", R"({"PositionX":3})", "PositionX" + notDouble},
        {"P_MOD0", R"({"PositionX":3,"PositionZ":"a"})", "PositionZ" + notDouble},
        {"P_NOD0", R"({"PositionX":"a","PositionZ":1.0})", "PositionX" + notDouble},
        {"P_MOD0", R"({"PositionX":5e7})", "PositionX" + notDouble},
        {"P_LNK0", R"({"PositionZ":3})", "PositionZ" + notDouble},
        {"P_LNK0", "{}", notMovable},
        {"P_JMP3", R"({"PositionX":3.0})", notMovable},
        {"P_LNK0", "[]", "API调用json格式错误,无法解析"},
    };
    for (const auto& row : rows) {
        string calls = "NameParsing_ModNod(\"" + row.name + "\"); ";
        if (row.name == "P_valve-7") calls += R"(Module_FindInstanceID(0,"valve-7"); )";
        if (!row.call.empty()) calls += "ProjectNameGet(0); " + row.call + "; Pipe_PjtRef(0); sleep 300";
        ExpectExchange("MoveMN", row.name, row.messages, row.reply, calls);
    }
}

TEST_F(ValuesTest, DeletesAllButJumps) {
    ModuleInstanceIDSet(0, 1, "valve-7");
    const std::pair<string, string> rows[] = {
        {"LNK0", "Pipe_DeleteLink(0,0)"},
        {"MOD0", "Pipe_DeleteModule(0,0)"},
        {"valve-7", R"(Module_FindInstanceID(0,"valve-7"); Pipe_DeleteModule(0,1))"},
        {"NOD0", "Pipe_DeleteNode(0,0)"},
        {"NOD0", "Pipe_DeleteNode(0,0)"},  // vacant by now
        {"JMP3", ""}};
    for (const auto& [name, calls] : rows) {
        ExpectExchange("DeleteMNL", "P_" + name, "", name == "JMP3" ? "跳转不可被删除" : "OK",
                       "NameParsing_ModNod(\"P_" + name + "\"); " + calls);
    }
    EXPECT_EQ(Send("DeleteMNL", "P_valve-7"), NoElement);
    EXPECT_EQ(ProjectModuleNbCheck(0), 0);
    EXPECT_EQ(ProjectNodeNbCheck(0), 0);
    EXPECT_EQ(ProjectLinkNbCheck(0), 0);
}

}  // namespace
