// The serial entry and the host's side of it: lines, replies of bounded size, a terminal end to end.

#include <utility>

#include "host/serial_line.h"
#include "include/vorn_server.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;
using Event = LineAssembler::Event;

constexpr const char* NoHeader = "the header is none";

using SerialTest = ServiceTest;

/// The reply in a buffer of just the size that the entry may fill.
string Answer(const char* line) {
    const auto reply = std::make_unique<char[]>(192);
    std::fill_n(reply.get(), 192, 'x');
    ChuanKouServerThread(line, reply.get());
    return reply.get();
}

TEST_F(SerialTest, ServesOnlyReadsAndWrites) {
    Send("Create", "PLANT1");
    const std::pair<const char*, const char*> served[] = {{"Set/PLANT1_GTemp/21.5", "OK"},
                                                          {"Get/PLANT1_GTemp", "21.500000"},
                                                          {"Get/PLANT1_GTemp\n", NoVariable},
                                                          {"Get/", NoProject},
                                                          {"Set/", NoProject}};
    Rtn_Get_Get();
    Rtn_Set_Get();
    const auto logged = [] { return *Rtn_Get_Get() != '\0' || *Rtn_Set_Get() != '\0'; };
    for (const auto& [line, reply] : served) {
        EXPECT_EQ(Answer(line), reply) << line;
        EXPECT_TRUE(logged()) << line;
    }
    for (const char* line :
         {"", "Get", "get/X", "Put/X", "Fdp/PLANT1", "PjtRun", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(Answer(line), NoHeader);
        EXPECT_FALSE(logged());
    }
}

TEST_F(SerialTest, CutsLongRepliesBetweenCharacters) {
    // Each unknown name is answered by the same text, so the batch is long and mostly Chinese.
    Send("Create", "PLANT1");
    for (const char* first : {"", R"("PLANT1_GStep",)", R"("PLANT1_GTemp",)"}) {
        const string messages = string(R"({"VarName":[)") + first + R"("NO","NO","NO","NO","NO","NO","NO"]})";
        const string whole = Send("Get", "json", messages);
        ASSERT_GT(whole.size(), 200U);
        size_t end = 191;
        while ((static_cast<unsigned char>(whole[end]) & 0xC0U) == 0x80U) --end;
        EXPECT_EQ(Answer(("Get/json/" + messages).c_str()), whole.substr(0, end));
    }
}

TEST(SerialLineTest, EndsLinesAtReturnFeedAndBoth) {
    const string longest(SerialLineBytesAtMost, 'x');
    const struct {
        string bytes;
        std::vector<std::pair<Event, string>> lines;
    } cases[] = {
        {"a\rb\nc\r\nd", {{Event::Line, "a"}, {Event::Line, "b"}, {Event::Line, "c"}}},
        {"\r\n\r\n\n\r\r", {5, {Event::Line, ""}}},
        {string("a\0b\r\0\n", 6), {{Event::Line, "ab"}, {Event::Line, ""}}},
        {longest + "\rb\n", {{Event::Line, longest}, {Event::Line, "b"}}},
        {longest + "xyz\r\nb\n", {{Event::Overlong, longest}, {Event::Line, "b"}}},
    };
    for (const auto& each : cases) {
        LineAssembler assembler;
        std::vector<std::pair<Event, string>> lines;
        for (const char byte : each.bytes) {
            const Event event = assembler.Take(byte);
            if (event != Event::None) lines.emplace_back(event, assembler.Line());
        }
        EXPECT_TRUE(lines == each.lines) << lines.size() << " lines of " << each.bytes.substr(0, 20);
    }
    EXPECT_EQ(SerialReply(Event::Overlong, ""), "the line is too long\r\n");
    EXPECT_EQ(SerialReply(Event::Line, "x"), "the header is none\r\n");
}

TEST(SerialLineTest, ReadsDeviceAndSpeed) {
    const auto read = [](const string& text) {
        SerialPort port;
        string fault;
        return SerialPortRead(text, port, fault) ? port.device + ' ' + std::to_string(port.baud) : "refused";
    };
    EXPECT_EQ(read("/dev/ttyS0"), "/dev/ttyS0 115200");
    EXPECT_EQ(read("/dev/ttyS0:9600"), "/dev/ttyS0 9600");
    EXPECT_EQ(read("/dev/pci-0:1.0-port0"), "/dev/pci-0:1.0-port0 115200");
    EXPECT_EQ(read("COM12:9600"), "COM12 9600");
    EXPECT_EQ(read("/dev/ttyS0:9601"), "refused");
    string fault;
    EXPECT_FALSE(SerialStart({.device = NullDevice}, fault));
    EXPECT_EQ(fault, string(NullDevice) + " is no serial port");
}

TEST(SerialThreadsTest, AnswersATerminal) {
    const SerialLink terminal;
    if (!terminal.Made()) GTEST_SKIP() << terminal.Lacks();
    HostProcess host({"--quiet", "--serial", terminal.Device() + ":9600"});
    ASSERT_GT(host.Port(), 0) << host.Output();
    host.Client().Post("/api", R"({"command":"Create","name":"P"})", "application/json");
    terminal.Write("Set/P_GTemp/21.5\rGet/P_GTemp\r\nget/x\n" + string(SerialLineBytesAtMost + 1, 'x') +
                   "\rGet/NO\r");
    for (const char* reply : {"OK", "21.500000", NoHeader, "the line is too long", NoVariable}) {
        EXPECT_EQ(terminal.ReadLine(), reply);
    }
}

}  // namespace
