// The dispatcher and the command frame: which words lead where, project names, addresses, the two logs.

#include <string>
#include <vector>

#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "service/api_envelope.h"
#include "service/server_root.h"
#include "tests/support/service_test.h"

namespace {

using FrameTest = ServiceTest;
using std::string;

constexpr const char* NoProject = "项目名称找不到(project Char error)";
constexpr const char* NoElement = "无法识别name中的InstanceID或ConnectionID，请核对一下";
constexpr const char* BadName = "项目名称仅支持英文字母与数字";
constexpr const char* BadEnvelope = "API调用格式错误";

string Envelope(const string& body) {
    string reply;
    vorn::ApiEnvelope(body, reply);
    return reply;
}

TEST_F(FrameTest, RoutesWordsAndAddresses) {
    Send("Create", "P");
    Send("AddModule", "P", R"({"VornModuleID":26010100000000012,"DeviceName":"阀门"})");
    ModuleInstanceIDSet(0, 0, "A_B");
    const struct {
        string word, name, reply;
    } rows[] = {
        {"", "", NoProject},
        {"nothing", "Q", NoProject},
        {"nothing", "P", NoElement},
        {"nothing", "P_", NoElement},
        {"nothing", "P_MOD0", "the header is none"},
        {"nothing", "p_LNK77", "the header is none"},
        {"nothing", "P_MOD", NoElement},
        {"nothing", "P_MOD1a", NoElement},
        {"nothing", "P_MOD99999999999", NoElement},
        {"nothing", "P_A_B", "the header is none"},
        {"nothing", "P_B", NoElement},
        {"nothing", "PX_MOD0", NoProject},
        {"create", "R", NoProject},
        {"get", "P_GTemp", NoElement},
        {"MoveModNod", "P_MOD0", "the header is none"},
        {"AddNode", "P_whatever", "找不到VornModuleID对应的节点,请核查VornModuleID"},
        {"Fdp", "p", "1"},
        {"Fdp", "Q", "0"},
        {"Fdp", "", "0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Send(row.word, row.name), row.reply) << row.word << ' ' << row.name;
}

TEST_F(FrameTest, FindsAModuleBeforeANodeOfTheSameIdentity) {
    Send("Create", "P");
    ProjectAddModule("P", 0, 12, 0, 0, 0);
    ProjectAddNode("P", 0, 0, 0, 0, 0);
    ModuleInstanceIDSet(0, 0, "both");
    NodeInstanceIDSet(0, 0, "both");
    const std::vector<string> search{"NameParsing_ModNod(\"P_both\")", "Module_FindInstanceID(0,\"both\")"};
    EXPECT_EQ(CallsOf("nothing", "P_both"), search);
    EXPECT_EQ(CallsOf("nothing", "P_MOD0"), std::vector<string>{"NameParsing_ModNod(\"P_MOD0\")"});
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
    EXPECT_EQ(CallsOf("Create", "abc1"),
              (std::vector<string>{"ProjectNameToID(\"ABC1\")", "ProjectJsonAdd(\"ABC1\")",
                                   "Pipe_PjtListRef()", "PeojectListRef_CliSet(\"ABC1\")"}));
    EXPECT_EQ(Send("Open", "ABC1"), "项目已打开");
    EXPECT_EQ(CallsOf("Open", "notstored"),
              (std::vector<string>{"ProjectNameToID(\"NOTSTORED\")", "ProjectInfoRead(\"NOTSTORED\")",
                                   "ProjectJsonAdd(\"NOTSTORED\")", "Pipe_PjtListRef()",
                                   "PeojectListRef_CliSet(\"NOTSTORED\")"}));
    for (int project = 2; project < 8; ++project)
        EXPECT_EQ(Send("Create", "P" + std::to_string(project)), "OK");
    EXPECT_EQ(Send("Fdp", "P7"), "1");
    // A ninth project finds no slot, and the list is not refreshed.
    EXPECT_EQ(Send("Create", "P8"), "Shibai");
    EXPECT_EQ(CallsOf("Open", "P8").back(), "ProjectJsonAdd(\"P8\")");
}

TEST_F(FrameTest, ComparesDirectoriesAtTheirBoundary) {
    const struct {
        string server, text;
        bool holds;
    } rows[] = {
        {"D:_Plant_", "D:_Plant_", true},
        {"D:_Plant_", "D:_Plant_Sub_", true},
        {"D:_Plant_", "D:_Plan", false},
        {"D:_Plant_", "D:_Other_", false},
        {"D:_Plant_", "", false},
        {"D:_Plant_", "D:_Plantx", false},
        {"host", "host", true},
        {"host", "hostx", false},
        {"", "", false},
        {"", "_", false},
        {string(256, 'x'), string(256, 'x'), true},
        {string(257, 'x'), string(257, 'x'), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(vorn::DirectoryHolds(row.server, row.text), row.holds) << row.server << ' ' << row.text;
    }
    const string own = vorn::DirectoryText(vorn::ServerRootGet());
    ASSERT_TRUE(own.ends_with('_'));
    EXPECT_EQ(Send("Fph", own), "1");
    EXPECT_EQ(Send("Fph", own + "bin_"), "1");
    EXPECT_EQ(Send("Fph", own.substr(0, own.size() - 1)), "0");
    EXPECT_EQ(Send("Fph", "_elsewhere" + own), "0");
}

TEST_F(FrameTest, LogsWritesApartFromReads) {
    const string writes[] = {"Set",        "Put",        "Create",        "Open",          "AddModule",
                             "AddNode",    "AddLink",    "DeleteMNL",     "MoveModNod",    "NetAccess",
                             "PjtRun",     "PjtPause",   "PjtStep",       "PjtStop",       "PjtClose",
                             "PjtSent",    "LuaSent",    "PjtCacheToRun", "PjtRunToCache", "VarValueSet",
                             "CacheToRun", "RunToCache", "ImportantSet"};
    const string reads[] = {
        "Get",       "Fdp",      "Fph",        "MoveMN",       "RunValueSet", "VarCacheSet", "PjtAddVar",
        "PjtDleVar", "PjtClear", "PjtInfoChk", "ImportantGet", "PjtPngGet",   "PjtChartGet", "PjtCerGet",
        "PreGet",    "TempGet",  "FlowGet",    "RoomGet",      "VarInfoGet",  "VarCacheGet", "RunValueGet",
        "set",       "",         "anything"};
    RtnGet_SxGet();
    RtnSet_SxGet();
    for (const string& word : writes) {
        Send(word, "no project");
        EXPECT_TRUE(RtnSet_SxGet() && !RtnGet_SxGet()) << word;
    }
    for (const string& word : reads) {
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
    const struct {
        string body, reply;
    } rows[] = {
        {"", BadEnvelope},
        {"[1,2]", BadEnvelope},
        {"\"text\"", BadEnvelope},
        {R"({"command":"Get")", BadEnvelope},
        {R"({"command":"Fdp"} x)", BadEnvelope},
        {deep, BadEnvelope},
        {nested(256), BadEnvelope},
        {nested(255), "0"},
        {"{}", NoProject},
        {string("{}\0[", 4), NoProject},
        {R"({"command":7,"name":"P"})", NoElement},
        {R"({"command":"Fdp","name":["P"]})", "0"},
        {R"({"command":"Fdp","name":"P","more":{}})", "1"},
        {"{\"command\":\"Fdp\",\"name\":\"\xff\xfe\"}", "0"},
    };
    Send("Create", "P");
    for (const auto& row : rows) EXPECT_EQ(Envelope(row.body), row.reply) << row.body.substr(0, 80);
}

TEST_F(FrameTest, HandsMessagesOnAsTextOrAsCompactJson) {
    const struct {
        string messages, text;
    } rows[] = {
        {R"("{\"a\": 1}")", R"({"a": 1})"},
        {R"({"a": [1, "x\n"]})", R"({"a":[1,"x\n"]})"},
        {"21.50", "21.5"},
        {"true", "true"},
        {"null", "null"},
        {"5", "5"},
        {R"("")", ""},
    };
    Rtn_Get_Get();
    for (const auto& row : rows) {
        Envelope(R"({"command":"Fdp","name":"N","messages":)" + row.messages + "}");
        EXPECT_EQ(Rtn_Get_Get(), "Fdp N " + row.text + " 0");
    }
}

}  // namespace
