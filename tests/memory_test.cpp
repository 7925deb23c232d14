// Memory that runs out in the midst of a request: that request fails, and the service goes on.

#include <functional>

#include "include/vorn_server.h"
#include "standin/plant_step.h"
#include "standin/simulation.h"
#include "tests/support/failing_new.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

/// Runs `request` again and again, each time with a later `new` failing, alone or with the one behind it,
/// until none fails any more; `look` is then asked after each.
void FailEach(const std::function<void()>& request, const std::function<void()>& look) {
    for (const int failing : {2, 1}) {
        int count = 0;
        for (bool fails = true; fails; ++count) {
            FailNew(count, failing);
            request();
            fails = NewFailed();
            FailNew(-1);
            look();
        }
        EXPECT_GT(count, 1) << "the request asks for no memory";
    }
}

class MemoryTest : public ServiceTest {
  protected:
    MemoryTest() { Rtn_Get_Get(); }
    /// The log holds whole lines only: the next exchange has one of its own. Behind that both of its texts
    /// are left with little room, so that the next request makes them ask for more.
    static void ExpectWholeLines() {
        Send("Fdp", "P");
        const string log = Rtn_Get_Get();
        EXPECT_TRUE(log == "Fdp P  0" || log.ends_with("\nFdp P  0")) << log.substr(0, 100);
        for (int text = 0; text < 2; ++text) {
            Send("Fdp", "P", string(30000, 'm'));
            Rtn_Get_Get();
        }
    }
};

TEST_F(MemoryTest, LetsARequestFailAndNotTheDispatcher) {
    string reply;
    const struct {
        size_t nameBytes, messagesBytes;
    } cases[] = {{50, 300}, {50, 15000}, {50, 30000}, {60000, 1}};
    for (const auto& [nameBytes, messagesBytes] : cases) {
        const string name(nameBytes, 'n');
        const string messages(messagesBytes, 'm');
        FailEach(
            [&] {
                const std::lock_guard guard(vorn::DispatchLock);
                vorn::ServerDispatch("Get", name, messages, reply);
            },
            ExpectWholeLines);
    }
    EXPECT_EQ(reply, NoVariable);
}

/// A stored project P, opened again for each request: a tank, a pump, a pipe between them, and a node.
class MemoryProjectTest : public MemoryTest {
  protected:
    MemoryProjectTest() {
        standin::SimulationKeepOff(true);
        Send("Create", "P");
        EXPECT_EQ(Send("PjtSent", "P", Document), "OK");
    }
    /// What is there can be used, whatever it is, and what is stored is opened as it was.
    static void ExpectWhole() {
        for (const string element :
             {"MOD0", "MOD1", "MOD2", "MOD3", "NOD0", "NOD1", "pipe 12345678901234567"})
            for (const char* command : {"VarInfoGet", "VarCacheGet", "RunValueGet", "PreGet"})
                Send(command, "P_" + element);
        for (const char* command : {"PjtInfoChk", "ImportantGet", "PjtRunToCache"}) Send(command, "P");
        standin::PlantStep(0, 0.1);
        if (Send("Fdp", "STORED") == "1") ExpectPipe("STORED");
        Send("Put", "", "Close");
        EXPECT_EQ(Send("Open", "P"), "OK");
        ExpectPipe("P");
        Send("AddNode", "P", Fluid());
    }
    static void ExpectPipe(const string& project) {
        EXPECT_TRUE(Send("RunValueGet", project + "_pipe 12345678901234567").starts_with(R"([{"Row":0,)"));
    }
    const string Document = R"({"DeviceInfo":[{"InstanceID":"tank","VornModuleID":2601010000014},
        {"InstanceID":"pump","VornModuleID":2601010000011}],"ConnectionInfo":[{"StartPortID":"1",
        "StartDeviceInstanceID":"tank","EndDeviceInstanceID":"pump","ConnectionID":"pipe 12345678901234567"}]})";
};

TEST_F(MemoryProjectTest, LetsACommandFailAndNotTheProject) {
    const string text(40, 't');
    const struct {
        string command, name, messages{};
    } requests[] = {
        {"AddModule", "P", Valve()},
        {"AddNode", "P", Fluid()},
        {"AddLink", "P", R"({"F_InstanceID":"NOD0","S_InstanceID":"NOD0"})"},
        {"PjtSent", "P", Document},
        {"VarValueSet", "P_MOD0", R"({"Column":1,"Value":")" + text + "\"}"},
        {"Set", "P_MOD0_IM1_ARY", "1,2"},
        {"ImportantSet", "P_MOD0", text},
        {"PjtAddVar", "P", text},
        {"LuaSent", "P", text},
        {"PjtInfoChk", "P"},
        {"Create", text},
        {"Open", "STORED"},
        {"Put", "STORED", "Run"},
    };
    Send("Create", "STORED");
    Send("PjtSent", "STORED", Document);
    ExpectWhole();
    for (const auto& [command, name, messages] : requests) {
        SCOPED_TRACE(command + ' ' + name);
        FailEach([&] { Send(command, name, messages); }, ExpectWhole);
    }
    FailEach(
        [] {
            try {
                standin::PlantStep(0, 0.1);
            } catch (const std::bad_alloc&) {
                // The simulation's thread goes on too.
            }
        },
        ExpectWhole);
}

TEST_F(MemoryProjectTest, KeepsTheProjectUntilADocumentIsReadWhole) {
    // Each of the connections gets a device, and each of these asks for memory.
    constexpr int Connections = 100;
    string document = R"({"ConnectionInfo":[{})";
    for (int number = 0; number < Connections; ++number)
        document += R"(,{"ConnectionID":"c)" + std::to_string(number) + "\"}";
    document += "]}";
    for (int count = 0; count < Connections; ++count) {
        FailNew(count);
        Send("PjtSent", "P", document);
        EXPECT_TRUE(NewFailed());
        FailNew(-1);
        ASSERT_EQ(Send("VarInfoGet", "P_tank").substr(0, 1), "[") << count;
    }
}

}  // namespace
