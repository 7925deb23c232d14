// The dispatcher and the command frame: which words lead where, project names, addresses, the two logs.

#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "service/api_envelope.h"
#include "service/server_root.h"
#include "tests/support/service_test.h"

namespace {

using FrameTest = ServiceTest;
using std::string;

constexpr const char* NoHeader = "the header is none";
constexpr const char* BadName = "项目名称仅支持英文字母与数字";
constexpr const char* BadEnvelope = "API调用格式错误";

string Envelope(const string& body) {
    string reply;
    vorn::ApiEnvelope(body, reply);
    return reply;
}

TEST_F(FrameTest, RoutesWordsAndAddresses) {
    Send("Create", "P");
    Send("AddModule", "P", Valve());
    ModuleInstanceIDSet(0, 0, "A_B");
    const auto expect = [](const string& word, const string& names, const string& reply) {
        for (const string& name : Split(names, ' '))
            EXPECT_EQ(Send(word, name), reply) << word << ' ' << name;
    };
    expect("nothing", "Q PX_MOD0", NoProject);
    expect("nothing", "P P_ P_MOD P_MOD1a P_MOD00 P_MOD99999999999 P_B", NoElement);
    expect("nothing", "P_MOD0 p_LNK77 P_A_B", NoHeader);
    ExpectReplies({{"", "", "", NoProject},
                   {"create", "R", "", NoProject},
                   {"get", "P_GTemp", "", NoElement},
                   {"MoveModNod", "P_MOD0", "", NoHeader}});
    EXPECT_EQ(Send("AddNode", "P_whatever"), "找不到VornModuleID对应的节点,请核查VornModuleID");
    EXPECT_EQ(Send("Fdp", "p") + Send("Fdp", "Q") + Send("Fdp", ""), "100");
    // Only numbers without leading zeros are addresses, so an identity can look like one with them.
    EXPECT_EQ(Send("Get", "P_MOD00_Opening") + Send("Get", "P_MOD0_Opening"),
              string(NoVariable) + "0.000000");
    // A module comes before a node of the same identity.
    ProjectAddNode("P", 0, 0, 0, 0, 0);
    NodeInstanceIDSet(0, 0, "A_B");
    ExpectExchange("nothing", "P_A_B", "", NoHeader,
                   R"(NameParsing_ModNod("P_A_B"); Module_FindInstanceID(0,"A_B"))");
    NodeInstanceIDSet(0, 0, "NOD00");
    expect("nothing", "P_NOD00", NoHeader);
    ExpectExchange("nothing", "P_MOD0", "", NoHeader, R"(NameParsing_ModNod("P_MOD0"))");
}

TEST_F(FrameTest, TakesOnlyLettersAndDigitsInProjectNames) {
    for (int byte = 1; byte < 256; ++byte) {
        const auto character = static_cast<char>(byte);
        const bool allowed = byte < 128 && std::isalnum(byte) != 0;
        standin::EngineReset();
        EXPECT_EQ(Send("Create", string("A") + character), allowed ? "OK" : BadName) << byte;
    }
    standin::EngineReset();
    EXPECT_EQ(Send("Create", string("A\0B", 3)), BadName);
    EXPECT_EQ(Send("Create", string(64, 'x')), "OK");
    EXPECT_EQ(Send("Open", string(65, 'x')), BadName);
    EXPECT_EQ(Send("Create", ""), "Shibai");
}

TEST_F(FrameTest, CreatesAndOpensOnce) {
    ExpectExchange("Create", "abc1", "", "OK", R"(ProjectNameToID("ABC1"); ProjectJsonAdd("ABC1");
        Pipe_PjtListRef(); PeojectListRef_CliSet("ABC1"))");
    EXPECT_EQ(Send("Open", "ABC1"), "项目已打开");
    ExpectExchange("Open", "none", "", "OK", R"(ProjectNameToID("NONE"); ProjectInfoRead("NONE");
        ProjectJsonAdd("NONE"); Pipe_PjtListRef(); PeojectListRef_CliSet("NONE"))");
    for (int project = 2; project < 8; ++project)
        EXPECT_EQ(Send("Create", "P" + std::to_string(project)), "OK");
    EXPECT_EQ(Send("Fdp", "P7"), "1");
    // A ninth project finds no slot, and the list is not refreshed.
    EXPECT_EQ(Send("Create", "P8"), "Shibai");
    EXPECT_EQ(CallsOf("Open", "P8").back(), "ProjectJsonAdd(\"P8\")");
}

TEST_F(FrameTest, ComparesDirectoriesAtTheirBoundary) {
    for (const string text : {"D:_Plant_", "D:_Plant_Sub_"})
        EXPECT_TRUE(vorn::DirectoryHolds("D:_Plant_", text));
    for (const string text : {"D:_Plan", "D:_Other_", "", "D:_Plantx"}) {
        EXPECT_FALSE(vorn::DirectoryHolds("D:_Plant_", text)) << text;
    }
    EXPECT_TRUE(vorn::DirectoryHolds("host", "host"));
    EXPECT_FALSE(vorn::DirectoryHolds("host", "hostx"));
    EXPECT_FALSE(vorn::DirectoryHolds("", "") || vorn::DirectoryHolds("", "_"));
    EXPECT_TRUE(vorn::DirectoryHolds(string(256, 'x'), string(256, 'x')));
    EXPECT_FALSE(vorn::DirectoryHolds(string(257, 'x'), string(257, 'x')));
    const string own = vorn::DirectoryText(vorn::ServerRootGet());
    ASSERT_TRUE(own.ends_with('_'));
    EXPECT_EQ(Send("Fph", own), "1");
    EXPECT_EQ(Send("Fph", own + "bin_"), "1");
    EXPECT_EQ(Send("Fph", own.substr(0, own.size() - 1)), "0");
    EXPECT_EQ(Send("Fph", "_elsewhere" + own), "0");
}

TEST_F(FrameTest, LogsWritesApartFromReads) {
    const string writes =
        "Set Put Create Open AddModule AddNode AddLink DeleteMNL MoveModNod NetAccess PjtRun PjtPause "
        "PjtStep "
        "PjtStop PjtClose PjtSent LuaSent PjtCacheToRun PjtRunToCache VarValueSet CacheToRun RunToCache "
        "ImportantSet";
    const string reads =
        "Get Fdp Fph MoveMN RunValueSet VarCacheSet PjtAddVar PjtDleVar PjtClear PjtInfoChk ImportantGet "
        "PjtPngGet "
        "PjtChartGet PjtCerGet PreGet TempGet FlowGet RoomGet VarInfoGet VarCacheGet RunValueGet set "
        "anything";
    RtnGet_SxGet();
    RtnSet_SxGet();
    for (const string& word : Split(writes, ' ')) {
        Send(word, "no project");
        EXPECT_TRUE(RtnSet_SxGet() && !RtnGet_SxGet()) << word;
    }
    for (const string& word : Split(reads, ' ')) {
        Send(word, "no project");
        EXPECT_TRUE(RtnGet_SxGet() && !RtnSet_SxGet()) << word;
    }
}

TEST_F(FrameTest, TakesTheEnvelopeApart) {
    const string deep(1000000, '[');
    const auto nested = [](int depth) {
        return R"({"command":"Fdp","x":)" + string(static_cast<std::size_t>(depth), '[') +
               string(static_cast<std::size_t>(depth), ']') + "}";
    };
    Send("Create", "P");
    for (const string& body : {string(), string("[1,2]"), string("\"text\""), string(R"({"command":"Get")"),
                               string(R"({"command":"Fdp"} x)"), deep, nested(256)}) {
        EXPECT_EQ(Envelope(body), BadEnvelope) << body.substr(0, 80);
    }
    EXPECT_EQ(Envelope(nested(255)), "0");
    EXPECT_EQ(Envelope("{}"), NoProject);
    EXPECT_EQ(Envelope(string("{}\0[", 4)), NoProject);
    EXPECT_EQ(Envelope(R"({"command":7,"name":"P"})"), NoElement);
    EXPECT_EQ(Envelope(R"({"command":"Fdp","name":["P"]})"), "0");
    EXPECT_EQ(Envelope(R"({"command":"Fdp","name":"P","more":{}})"), "1");
    EXPECT_EQ(Envelope("{\"command\":\"Fdp\",\"name\":\"\xff\xfe\"}"), "0");
}

TEST_F(FrameTest, HandsMessagesOnAsTextOrAsCompactJson) {
    const std::pair<string, string> rows[] = {
        {R"("{\"a\": 1}")", R"({"a": 1})"},
        {R"({"a": [1, "x\n"]})", R"({"a":[1,"x\n"]})"},
        {R"({"a":["é","\u0001\/", {}, []],"b":null})", R"({"a":["é","\u0001/",{},[]],"b":null})"},
        {R"({"a b":[true,false,null,""],"c":{"d":{}}})", R"({"a b":[true,false,null,""],"c":{"d":{}}})"},
        {R"(["x",-0,1e2,1.50])", R"(["x",0,100.0,1.5])"},
        {R"(["first"],"messages":["second"])", R"(["first"])"},
        {R"(1,"messages":{"second":[]})", "1"},
        {"21.50", "21.5"},
        {"true", "true"},
        {"null", "null"},
        {"5", "5"},
        {R"("")", ""}};
    Rtn_Get_Get();
    for (const auto& [messages, text] : rows) {
        Envelope(R"({"command":"Fdp","name":"N","messages":)" + messages + "}");
        EXPECT_EQ(Rtn_Get_Get(), "Fdp N " + text + " 0");
    }
}

}  // namespace
