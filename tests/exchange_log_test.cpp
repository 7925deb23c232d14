// The log of exchanges: its lines, its limits, its drains and its flags; and how the host shows it.

#include "service/exchange_log.h"

#include <gtest/gtest.h>

#include "host/exchange_print.h"
#include "include/vorn_server.h"

namespace {

using std::string;

/// Both sides, so that each case runs on each.
struct Side {
    bool if_Set;
    const char* (*drain)();
    bool (*news)();
};

class ExchangeLogTest : public testing::TestWithParam<Side> {
  protected:
    ExchangeLogTest() {
        for (const auto& clear : {Rtn_Get_Get, Rtn_Set_Get}) clear();
        for (const auto& clear : {RtnGet_SxGet, RtnSet_SxGet}) clear();
    }
    static void Log(const string& header, const string& name, const string& messages, const string& reply) {
        vorn::RtnLogRequest(GetParam().if_Set, header, name);
        vorn::RtnLogResult(GetParam().if_Set, messages, reply);
    }
    static string Drain() { return GetParam().drain(); }
    static bool News() { return GetParam().news(); }
};

TEST_P(ExchangeLogTest, GivesLinesAndOneFlag) {
    EXPECT_EQ(Drain(), "");
    EXPECT_FALSE(News());
    Log("Get", "PLANT1_GTemp", "", "21.500000");
    Log("Get", "json", R"({"VarName":["A"]})", R"(["1.000000"])");
    EXPECT_TRUE(News());
    EXPECT_FALSE(News());
    EXPECT_EQ(Drain(), "Get PLANT1_GTemp  21.500000\nGet json {\"VarName\":[\"A\"]} [\"1.000000\"]");
    EXPECT_EQ(Drain(), "");
    EXPECT_EQ(string(GetParam().if_Set ? Rtn_Get_Get() : Rtn_Set_Get()), "") << "the other side";
    EXPECT_FALSE(GetParam().if_Set ? RtnGet_SxGet() : RtnSet_SxGet()) << "the other side";
}

TEST_P(ExchangeLogTest, TakesOneLineEndOffTheLastExchange) {
    Log("A", "b", "", "x\r");
    EXPECT_EQ(Drain(), "A b  x");
    Log("A", "b", "", "x\r");
    Log("A", "b", "", "y\n\r");
    EXPECT_EQ(Drain(), "A b  x\r\nA b  y\n");
    Log("A", "b", "", "x\r\r");
    EXPECT_EQ(Drain(), "A b  x\r");
    Log("A", "b", "", "x\n");
    EXPECT_EQ(Drain(), "A b  x\n");
}

TEST_P(ExchangeLogTest, DrainsBetweenTheHalves) {
    vorn::RtnLogRequest(GetParam().if_Set, "Get", "X");
    EXPECT_FALSE(News());
    EXPECT_EQ(Drain(), "Get X ");
    vorn::RtnLogResult(GetParam().if_Set, "m", "r");
    EXPECT_EQ(Drain(), "m r");
}

TEST_P(ExchangeLogTest, KeepsTheLast2000BytesOfMoreThan20000) {
    struct Case {
        size_t header, name, messages, reply;  ///< lengths; four more bytes separate and end them
    };
    const Case cases[] = {
        {3, 3, 0, 19990}, {3, 3, 0, 19991}, {3, 3, 19991, 0},    {19991, 3, 3, 0},
        {3, 19991, 0, 3}, {3, 3, 3, 50000}, {3, 3, 50000, 1999}, {3, 3, 1500, 18600},
    };
    for (const Case& each : cases) {
        const string header(each.header, 'h');
        const string name(each.name, 'n');
        const string messages(each.messages, 'm');
        string reply(each.reply, 'r');
        for (size_t at = 0; at < reply.size(); at += 7) reply[at] = static_cast<char>('a' + at % 26);
        string expected = header + " " + name + " " + messages + " " + reply + "\n";
        if (expected.size() > 20000) expected.erase(0, expected.size() - 2000);
        Log(header, name, messages, reply);
        EXPECT_TRUE(News());
        expected.pop_back();
        EXPECT_EQ(Drain(), expected) << each.header << " " << each.name << " " << each.messages;
    }
    // What earlier exchanges left counts too.
    for (int exchange = 0; exchange < 3; ++exchange) Log("Get", "a", "", string(7000, 'x'));
    Log("Get", "b", "", "y");
    EXPECT_EQ(Drain(), string(1999, 'x') + "\nGet b  y");
}

INSTANTIATE_TEST_SUITE_P(Sides, ExchangeLogTest,
                         testing::Values(Side{false, Rtn_Get_Get, RtnGet_SxGet},
                                         Side{true, Rtn_Set_Get, RtnSet_SxGet}),
                         [](const auto& side) { return side.param.if_Set ? "Writes" : "Reads"; });

TEST(ExchangePrintTest, ShowsWhatATerminalWouldActOn) {
    const struct {
        string text, visible;
    } cases[] = {
        {"Get 房间_X é😀", "Get 房间_X é😀"},
        {"\x1B[2J\t\r\x7F", "\\x1B[2J\\x09\\x0D\\x7F"},
        {"\xC2\x9B", "\\xC2\\x9B"},
        {"\xE6\x88", "\\xE6\\x88"},
        {"\x88房", "\\x88房"},
        {"\xC0\x8A\xE0\x80\x8A\xFF", "\\xC0\\x8A\\xE0\\x80\\x8A\\xFF"},
    };
    for (const auto& each : cases) EXPECT_EQ(Visible(each.text), each.visible);
}

TEST(ExchangePrintTest, JoinsAnExchangeThatWasFetchedInHalves) {
    ExchangeLines lines("read ");
    EXPECT_EQ(lines.Take("Get A  1\nGet B "), "read Get A  1\n");
    EXPECT_EQ(lines.Take("m 2\nGet C  "), "read Get B m 2\nread Get C  \n");
    EXPECT_EQ(lines.Take("Get D "), "");
    EXPECT_EQ(lines.Take(" 3"), "read Get D  3\n");
}

}  // namespace
