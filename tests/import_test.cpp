#include <algorithm>

#include "engine/vorn_core.h"
#include "import/import_lists.h"
#include "platform/file_text.h"
#include "standin/project.h"
#include "tests/support/service_test.h"

using standin::ProjectFind;

namespace {

using Lines = std::vector<std::string>;

class ImportTest : public ServiceTest {
  protected:
    ImportTest() { Send("Create", "P"); }
    const standin::Project& Project() { return *ProjectFind(0); }
};

std::string Document(const std::string& devices, const std::string& connections = "") {
    return R"({"DeviceInfo":[)" + devices + R"(],"ConnectionInfo":[)" + connections + "]}";
}

/// One connection between two nodes, with more fields.
std::string Connected(const std::string& fields) {
    return Document(R"({"InstanceID":"A","DeviceID":3000},{"InstanceID":"B","DeviceID":3000})",
                    R"({"StartDeviceInstanceID":"A","EndDeviceInstanceID":"B",)" + fields + "}");
}

std::string OneDevice(const std::string& fields) {
    return Document("{" + fields + "}");
}

std::string Example(const std::string& name) {
    std::string text;
    std::error_code fault;
    EXPECT_TRUE(vorn::FileRead(VORN_SOURCE_DIR "/examples/" + name + ".json", 1 << 20, text, fault));
    return text;
}

/// Some line begins with `start`.
bool Holds(const Lines& lines, const std::string& start) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.starts_with(start); });
}

/// Each case is a text that stands for `@` in the fields, `->`, and what then stands for `@` in the call;
/// `none` where no call begins as the part before `@`.
void ExpectEach(std::string (*document)(const std::string&), const std::string& fields,
                const std::string& call, const std::string& cases) {
    const std::size_t in = fields.find('@');
    const std::size_t out = call.find('@');
    for (const Row& row : RowsOf(cases)) {
        const std::string given = fields.substr(0, in) + row.given + fields.substr(in + 1);
        std::string made = call.substr(0, out);
        if (row.wanted != "none") made += row.wanted + call.substr(out + 1);
        EXPECT_EQ(Holds(CallsOf("PjtSent", "P", document(given)), made), row.wanted != "none") << row.given;
    }
}

}  // namespace

TEST_F(ImportTest, ReadsTheFieldsOfADevice) {
    const std::string node = R"("VornModuleID":3000)";
    const std::string coil = R"("DeviceID":25092117291321127,"InstanceID":"F",)";
    ExpectEach(OneDevice, node + ",@", R"(NodeInstanceIDSet(0,0,"@"))", R"("InstanceID":"Ä_1"->Ä_1;
        "InstanceID":17->17; "InstanceID":4294967296->; "InstanceID":true->; "Other":1->;)");
    ExpectEach(OneDevice, "@", "ModuleOneID_ToID(@)", R"("DeviceID":5001,"VornModuleID":3000->5001;
        "VornModuleID":9223372036854775807->9223372036854775807; "VornModuleID":9223372036854775808->none;
        "DeviceID":1.5,"VornModuleID":5001->none; "VornModuleID":5000->none; "VornModuleID":4500->none;)");
    ExpectEach(OneDevice, R"("VornModuleID":@)", R"(ProjectAddNode("P",0,1@))",
               "3000->,0,120,0; 3999->,0,120,0; 4000->none; 2999->none; 5001->none;");
    ExpectEach(OneDevice, node + R"(,"FluidType":@)", R"(ProjectAddNode("P",0,@,0,)",
               R"(0->0; 3->3; "2"->1; 2.0->1; 4->none; -1->none;)");
    ExpectEach(OneDevice, node + R"(,"PositionX":@)", R"(ProjectAddNode("P",0,1,0,@))",
               R"(2.0,"PositionZ":3->220,150; -3,"PositionZ":"3"->270,0; 0.0199,"PositionZ":-0.99->120,49;
        42949672.9,"PositionZ":1e300->2147483647,2147483647;)");
    ExpectEach(OneDevice, coil + "@", R"(Module_FindInstanceID(0,"@"))",
               R"("RoomID":"R"->R; "RoomID":7->7; "Other":1->0;)");
    ExpectEach(OneDevice, coil + "@", R"(Module_FindInstanceID(0,"")@)", R"("RoomID":true->none;)");
    ExpectEach(OneDevice, R"("RoomID":"R","DeviceID":@)", R"(Module_FindInstanceID(0,"R")@)",
               "25092117291321127->; 25092119192771617->; 25092119192766817->; 2601010000012->none;");
    const std::string inANode = R"({"InstanceID":"R","DeviceID":3000},{"RoomID":"R",)" + coil + R"("X":0})";
    EXPECT_FALSE(Holds(CallsOf("PjtSent", "P", Document(inANode)), "Pipe_RoomLinkAnalysis"));
    ExpectEach(OneDevice, coil + "@", R"(Model_DB_Read(8,"@"))",
               R"("ModelID":"M"->M; "ModelID":5->; "Other":1->;)");
}

TEST_F(ImportTest, ReadsTheFieldsOfAConnection) {
    ExpectEach(Connected, R"("ConnectionID":@)", R"(ModuleInstanceIDSet(0,0,"@"))", R"("c"->c; 5->;)");
    ExpectEach(Connected, "@", "Pipe_PipeLinkAnalysis(0,0,@)", R"("Other":1->1,2,0,0,2,1,0;
        "ConnectionType":2->2,2,0,0,2,1,0; "ConnectionType":"2"->0,2,0,0,2,1,0;
        "StartPortID":"2.9","EndPortID":" +3x"->1,2,0,2,2,1,3; "StartPortID":2,"EndPortID":"x"->1,2,0,0,2,1,0;
        "StartPortID":"inf","EndPortID":"0x5"->1,2,0,0,2,1,0; "StartPortID":"-1.9","EndPortID":"1e99"->1,2,0,-1,2,1,2147483647;
        "StartPortID":".9e1","EndPortID":"\\t-.9e1"->1,2,0,0,2,1,0; "StartPortID":"+0.9e1","EndPortID":"+-7"->1,2,0,9,2,1,0;)");
    ExpectEach(Connected, "@", "ProjectModuleItemValueSet(0,0,0,@", R"("Length":12.5->1,"12.500000";
        "Length":-3.5->3,"3.500000"; "Length":3->2,"0.000000"; "Other":1->1,"0.000000"; "Length":1e300->none;)");
    // 248 digits and seven more characters just fit.
    const std::string longest = "1" + std::string(247, '0');
    for (const bool fits : {true, false}) {
        const auto calls =
            CallsOf("PjtSent", "P", Connected("\"Length\":" + longest + (fits ? ".0" : "0.0")));
        EXPECT_EQ(Holds(calls, "ProjectModuleItemValueSet(0,0,0,1"), fits);
    }
    ExpectEach(Connected, "@", "ProjectModuleItemValueSet(0,0,1,@", R"("RdcNumber":3->1,"3";
        "RdcNumber":-3,"Length":1e300->3,"-3"; "RdcNumber":"3"->2,"0"; "Other":1->1,"0";)");
    ExpectEach(Connected, "@", "ProjectModuleItemValueSet(0,0,1,4@", R"("RdcNumber":3->none;)");
    ExpectEach(Connected, R"("StartPortSize":@)", "Model_DB_Read(@)", R"(
        {"x":-0.25,"y":0.12},"EndPortSize":{"y":-0.12,"x":0.25}->2,"250_120风管";
        {"x":1,"y":1},"EndPortSize":{"x":1,"y":1.0}->2,"1000_1000风管";
        {"x":0.1,"y":0.1},"EndPortSize":{"x":0.08,"y":0.08}->4,"100_80RDC";
        {"x":0.1,"y":"0.1"},"EndPortSize":{"x":0.1,"y":0.1}->0,"DN50铸铁管道";
        [0.1,0.1],"EndPortSize":0.1->0,"DN50铸铁管道";)");
    for (const char* end : {"StartDeviceInstanceID", "EndDeviceInstanceID"}) {
        std::string document = Connected(R"("ConnectionID":"c")");
        document.replace(document.find(end), std::string_view(end).size(), "Other");
        EXPECT_FALSE(Holds(CallsOf("PjtSent", "P", document), "Pipe_PipeLinkAnalysis"));
    }
}

TEST_F(ImportTest, GoesThroughItsPhasesInOrder) {
    const std::string document = Document(
        R"({"InstanceID":"N","VornModuleID":3000,"FluidType":0,"PositionX":2.0,"PositionZ":3.0},)"
        R"({"InstanceID":"R","DeviceID":25092208120526336},)"
        R"({"InstanceID":"F","DeviceID":25092117291321127,"RoomID":"R","PositionX":1.0,"PositionZ":1.0},)"
        R"({"InstanceID":"F","DeviceID":12,"RoomID":"R"})",
        R"({"ConnectionID":"c","Length":2.5,"RdcNumber":1,"StartDeviceInstanceID":"N","StartPortID":"8",)"
        R"("EndDeviceInstanceID":"F","EndPortID":"0"})");
    // Placing, the pipe's ends, rooms, models, length and elbows, the store and the view.
    const std::string expected = R"(
PjtStartGet(0); Pipe_ProjectInfoClear(0);
ProjectNodeNbCheck(0); ProjectNameGet(0); ProjectAddNode("P",0,0,0,220,150); NodeInstanceIDSet(0,0,"N");
ProjectModuleNbCheck(0); ModuleOneID_ToID(25092208120526336); ProjectNameGet(0);
ProjectAddModule("P",0,7,0,0,0); ModuleInstanceIDSet(0,0,"R");
ProjectModuleNbCheck(0); ModuleOneID_ToID(25092117291321127); ProjectNameGet(0);
ProjectAddModule("P",1,8,0,180,60); ModuleInstanceIDSet(0,1,"F");
ProjectModuleNbCheck(0); ModuleOneID_ToID(24032022192805856); ProjectNameGet(0);
ProjectAddModule("P",2,0,0,140,20); ModuleInstanceIDSet(0,2,"c");
Module_FindInstanceID(0,"c"); Module_FindInstanceID(0,"N"); Node_FindInstanceID(0,"N");
Module_FindInstanceID(0,"F"); Pipe_PipeLinkAnalysis(0,2,1,2,0,8,1,1,0);
Module_FindInstanceID(0,"N"); Module_FindInstanceID(0,"R");
Module_FindInstanceID(0,"F"); Module_FindInstanceID(0,"R"); Pipe_RoomLinkAnalysis(0,1,0);
Module_FindInstanceID(0,"F"); Module_FindInstanceID(0,"R"); Pipe_FengKouLinkAnaysis(0,1,0);
Module_FindInstanceID(0,"c");
Module_FindInstanceID(0,"N");
Module_FindInstanceID(0,"R"); ModuleOneID_ToID(25092208120526336); Model_DB_Read(7,""); Pjt_Modu_ModelToPch(0,7,0,0);
Module_FindInstanceID(0,"F"); ModuleOneID_ToID(25092117291321127); Model_DB_Read(8,""); Pjt_Modu_ModelToPch(0,8,1,0);
Module_FindInstanceID(0,"F"); ModuleOneID_ToID(12);
Module_FindInstanceID(0,"c"); ModuleOneID_ToID(24032022192805856); Model_DB_Read(0,"DN50铸铁管道");
Pjt_Modu_ModelToPch(0,0,2,0);
Pipe_ModuleVarRowGet(0,2,"PL"); ProjectModuleItemValueSet(0,2,0,1,"2.500000");
ProjectModuleItemValueSet(0,2,0,2,"2.500000"); ProjectModuleItemValueSet(0,2,0,3,"2.500000");
Pipe_ModuleVarRowGet(0,2,"ElbowNb"); ProjectModuleItemValueSet(0,2,1,1,"1");
ProjectModuleItemValueSet(0,2,1,2,"1"); ProjectModuleItemValueSet(0,2,1,3,"1");
ProjectNameGet(0); ProjectInfoWrite("P"); ProjectNameGet(0); ProjectDBWrite("P"); Pipe_PjtRef(0); sleep 300;
)";
    Lines calls = CallsOf("PjtSent", "P", document);
    calls.erase(calls.begin());  // the address of the request
    EXPECT_EQ(calls, Split(expected));
    EXPECT_EQ(Project().modules.rows[1].room, 0);
}

TEST_F(ImportTest, LetsTheFirstOfEqualIdentitiesWin) {
    // Two nodes A; a device c that two connections take over, and its double; a record that is no object,
    // which the connection without an identity takes over; two connections d.
    Send("PjtSent", "P",
         Document(R"({"InstanceID":"A","DeviceID":3000},{"InstanceID":"A","DeviceID":3000},7,)"
                  R"({"InstanceID":"c","DeviceID":3000,"PositionX":9.0},{"InstanceID":"c"})",
                  R"({"ConnectionID":"c","StartPortSize":{"x":0.1,"y":0.1},"EndPortSize":{"x":0.1,"y":0.1}},)"
                  R"({"ConnectionID":"d"},{},{"ConnectionID":"c","StartPortSize":{"x":0.2,"y":0.2},)"
                  R"("EndPortSize":{"x":0.2,"y":0.2}},)"
                  R"({"ConnectionID":"d","StartDeviceInstanceID":"A","EndDeviceInstanceID":"c"},)"
                  R"({"ConnectionID":"b","StartDeviceInstanceID":"none"})"));
    const auto& modules = Project().modules.rows;
    ASSERT_EQ(modules.size(), 4U);
    EXPECT_EQ(modules[0].x, 2 * 5 + 120);
    EXPECT_EQ(modules[1].modelId, "DN200铸铁管道");
    EXPECT_EQ(modules[1].x, 9 * 50 + 3 * 5 + 120);
    EXPECT_EQ(modules[2].instanceId + modules[3].instanceId, "db");
    EXPECT_EQ(Project().nodes.rows.size(), 2U);
    EXPECT_EQ(Project().nodes.rows[0].linksAtPort[8], 1);
    EXPECT_EQ(Project().links.rows.size(), 2U);
}

TEST_F(ImportTest, SetsRoomsAlongTheEdge) {
    std::string devices;
    for (int room = 0; room < 33; ++room) devices += R"({"DeviceID":25092208120526336,"PositionX":9.0},)";
    Send("PjtSent", "P", Document(devices + "null"));
    const auto& rows = Project().modules.rows;
    for (const auto& [row, x, z] :
         {std::array{0, 0, 0}, {1, 0, 80}, {30, 0, 2400}, {31, 0, 2480}, {32, 120, 2480}}) {
        EXPECT_EQ(std::pair(rows[std::size_t(row)].x, rows[std::size_t(row)].z), std::pair(x, z)) << row;
    }
}

TEST_F(ImportTest, PassesOverWhatTheEngineHasNoRoomFor) {
    standin::CapacitySet(standin::ModuleTable, 0);
    standin::CapacitySet(standin::NodeTable, 2);
    standin::TraceStart();
    EXPECT_EQ(Send("PjtSent", "P", Connected(R"("ConnectionID":"c")")), "OK");
    const Lines calls = standin::TraceStop();
    EXPECT_TRUE(Holds(calls, "Pipe_PipeLinkAnalysis(0,-1,1,2,0,0,2,1,0)"));
    EXPECT_TRUE(Holds(calls, R"(Pipe_ModuleVarRowGet(0,-1,"PL"))"));
    EXPECT_FALSE(Holds(calls, "ProjectModuleItemValueSet"));
    EXPECT_TRUE(Project().links.rows.empty());
}

TEST_F(ImportTest, RefusesBeforeItTouchesTheProject) {
    const std::string plant = Connected(R"("ConnectionID":"c")");
    ASSERT_EQ(Send("PjtSent", "P", plant), "OK");
    const std::string fits(37, 'x');
    const std::string deep = R"({"a":)" + std::string(300, '[') + std::string(300, ']') + "}";
    Lines refused{"", "[]", "5", "{", "{} {}", "{\"DeviceInfo\":[1e999]}", deep};
    for (const std::string field : {"InstanceID", "RoomID", "ModelID", "ConnectionID",
                                    "StartDeviceInstanceID", "EndDeviceInstanceID"}) {
        const std::string entry = "{\"" + field + "\":\"" + fits + "x\"}";
        refused.push_back(Document(entry, entry));
    }
    std::string entries = "0";
    for (int entry = 0; entry < 1'000'000; ++entry) entries += ",0";
    refused.push_back(Document(entries));
    refused.push_back(Document("", entries));
    for (const std::string& document : refused) {
        standin::TraceStart();
        EXPECT_EQ(Send("PjtSent", "P", document), "Shibai") << document.substr(0, 99);
        EXPECT_EQ(standin::TraceStop(), (Lines{R"(NameParsing_ModNod("P"))", "PjtStartGet(0)"}))
            << document.substr(0, 99);
    }
    EXPECT_EQ(Project().links.rows.size(), 2U);
    EXPECT_EQ(Send("PjtSent", "P", Document(R"({"DeviceID":3000,"InstanceID":")" + fits + "\"}")), "OK");
    EXPECT_EQ(Node_FindInstanceID(0, fits.c_str()), 0);
    EXPECT_EQ(Send("PjtSent", "P", "{}"), "OK");
    EXPECT_TRUE(Project().nodes.rows.empty());
    ProjectFind(0)->started = true;
    EXPECT_EQ(Send("PjtSent", "P", "no JSON"), "project is runing");
}

TEST_F(ImportTest, TiesPipesToTheirEnds) {
    // Modules: pump 0, pipes from 1 on. Nodes: 0 and 1.
    ASSERT_TRUE(ProjectAddModule("P", 0, 11, 0, 0, 0));
    for (const int number : {0, 1}) ASSERT_TRUE(ProjectAddNode("P", number, 0, 0, 0, 0));
    // Connection type; kind, number and port of start and end; the links that come of it, each with its type,
    // then kind, number, port and flag of its ends. A node's port that is taken, on the other side or none
    // gives the lowest free one; a module's port that is taken or missing, or an end that is none, gives no
    // link.
    const Lines cases = Split(R"(
        1 1 0 1 2 0 3 0:1.0.1.1-1.1.0.1 0:1.1.1.1-2.0.3.0; 2 2 0 9 2 1 0 2:2.0.9.0-1.2.0.1 2:1.2.1.1-2.1.0.0;
        0 2 0 9 2 1 0 0:2.0.8.0-1.3.0.1 0:1.3.1.1-2.1.1.0; 3 2 0 2 2 1 12 0:2.0.10.0-1.4.0.1 0:1.4.1.1-2.1.2.0;
        1 2 1 -1 2 0 99 0:2.1.8.0-1.5.0.1 0:1.5.1.1-2.0.0.0; 1 1 0 1 2 1 0; 1 2 0 15 1 0 3; 1 2 0 15 1 99 0;
        1 3 0 0 2 1 0; 1 1 10 1 1 10 0; 1 2 0 15 1 0 2 0:2.0.15.0-1.11.0.1 0:1.11.1.1-1.0.2.0;)");
    int pipe = 0;
    for (const std::string& line : cases) {
        ASSERT_TRUE(ProjectAddModule("P", ++pipe, 0, 0, 0, 0));
        const auto before = static_cast<std::size_t>(ProjectLinkNbCheck(0));
        std::istringstream given(line);
        int type = 0, kind = 0, number = 0, port = 0, endKind = 0, endNumber = 0, endPort = 0;
        given >> type >> kind >> number >> port >> endKind >> endNumber >> endPort;
        Pipe_PipeLinkAnalysis(0, pipe, type, kind, number, port, endKind, endNumber, endPort);
        std::ostringstream made;
        for (auto row = before; row < static_cast<std::size_t>(ProjectLinkNbCheck(0)); ++row) {
            const LinkSxCache& link = Project().links.rows[row];
            made << ' ' << link.Type << ':' << link.F_Sx << '.' << link.F_Nb << '.' << link.F_PortNb << '.'
                 << link.F_Type2 << '-' << link.S_Sx << '.' << link.S_Nb << '.' << link.S_PortNb << '.'
                 << link.S_Type2;
        }
        std::string links;
        std::getline(given, links);
        EXPECT_EQ(made.str(), links) << line;
    }
}

TEST_F(ImportTest, TakesInTheExamplesWhole) {
    for (const std::string name :
         {"chilled_water_plant", "cold_store", "air_handling_system", "cold_store_faulty"}) {
        const char* verdict = name == "cold_store_faulty" ? "出错啦,此支路号:2不完整" : "OK";
        const std::string document = Example(name);
        EXPECT_EQ(Send("PjtSent", "P", document), "OK") << name;
        EXPECT_TRUE(Send("NetAccess", "P").starts_with(verdict)) << name;
        std::size_t connections = 0;
        for (std::size_t at = 0; (at = document.find("ConnectionID", at)) != std::string::npos; ++at)
            ++connections;
        EXPECT_EQ(Project().links.rows.size(), 2 * connections) << name;
    }
}
