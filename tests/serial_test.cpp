// The serial entry and the host's side of it: lines, replies of bounded size, a terminal end to end.

#include <utility>

#include "host/serial_line.h"
#include "include/vorn_server.h"
#include "tests/support/host_process.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/service_test.h"

namespace {

using std::string;
using Event = LineAssembler::Event;

constexpr const char* NoHeader = "the header is none";
constexpr const char* NoProject = "项目名称找不到(project Char error)";

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
    const struct {
        const char *line, *reply;
    } cases[] = {
        {"Set/PLANT1_GTemp/21.5", "OK"},
        {"Get/PLANT1_GTemp", "21.500000"},
        {"Get/PLANT1_GTemp\n", "none varname 找不到变量名称"},
        {"Get/NOSUCH", "none varname 找不到变量名称"},
        {R"(Get/json/{"VarName":["PLANT1_GTemp"]})", R"(["21.500000"])"},
        {"Get/", NoProject},
        {"Set/", NoProject},
        {"", NoHeader},
        {"Get", NoHeader},
        {"get/X", NoHeader},
        {"Put/X", NoHeader},
        {"Fdp/PLANT1", NoHeader},
        {"PjtRun", NoHeader},
        {nullptr, NoHeader},
    };
    for (const auto& each : cases) {
        Rtn_Get_Get();
        Rtn_Set_Get();
        EXPECT_EQ(Answer(each.line), each.reply) << (each.line == nullptr ? "null" : each.line);
        const bool logged = *Rtn_Get_Get() != '\0' || *Rtn_Set_Get() != '\0';
        EXPECT_EQ(logged, each.reply != NoHeader);
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
        string line;
        for (const char byte : each.bytes) {
            const Event event = assembler.Take(byte, line);
            if (event != Event::None) lines.emplace_back(event, line);
        }
        EXPECT_TRUE(lines == each.lines) << lines.size() << " lines of " << each.bytes.substr(0, 20);
    }
    EXPECT_EQ(SerialReply(Event::Overlong, ""), "the line is too long\r\n");
    EXPECT_EQ(SerialReply(Event::Line, "x"), "the header is none\r\n");
}

TEST(SerialLineTest, ReadsDeviceAndSpeed) {
    const struct {
        const char *text, *device;
        unsigned baud;  ///< 0 for a text that is refused
    } cases[] = {{"/dev/ttyS0", "/dev/ttyS0", 115200},
                 {"/dev/ttyS0:9600", "/dev/ttyS0", 9600},
                 {"/dev/pci-0:1.0-port0", "/dev/pci-0:1.0-port0", 115200},
                 {"/dev/ttyS0:9601", "/dev/ttyS0", 0}};
    for (const auto& each : cases) {
        SerialPort port;
        string fault;
        const bool read = SerialPortRead(each.text, port, fault);
        EXPECT_EQ(read ? port.baud : 0, each.baud) << each.text;
        EXPECT_EQ(port.device, each.device);
    }
    string fault;
    EXPECT_FALSE(SerialStart({.device = "/dev/null"}, fault));
    EXPECT_EQ(fault, "/dev/null is no serial port");
}

TEST(SerialThreadsTest, AnswersATerminal) {
    const PseudoTerminal terminal;
    HostProcess host({"--quiet", "--serial", terminal.Device() + ":9600"});
    ASSERT_GT(host.Port(), 0) << host.Output();
    host.Client().Post("/api", R"({"command":"Create","name":"P"})", "application/json");
    terminal.Write("Set/P_GTemp/21.5\rGet/P_GTemp\r\nget/x\n" + string(SerialLineBytesAtMost + 1, 'x') +
                   "\rGet/NO\r");
    EXPECT_EQ(terminal.ReadLine(), "OK");
    EXPECT_EQ(terminal.ReadLine(), "21.500000");
    EXPECT_EQ(terminal.ReadLine(), NoHeader);
    EXPECT_EQ(terminal.ReadLine(), "the line is too long");
    EXPECT_EQ(terminal.ReadLine(), "none varname 找不到变量名称");
}

}  // namespace
