// The log of exchanges: its lines, its limits, its drains and its flags.

#include "service/exchange_log.h"

#include <gtest/gtest.h>

#include "include/vorn_server.h"

namespace {

using std::string;

void Log(const string& header, const string& name, const string& messages, const string& reply) {
    vorn::RtnLogRequest(false, header, name);
    vorn::RtnLogResult(false, messages, reply);
}

TEST(ExchangeLogTest, GivesLinesAndOneFlagOnEachSide) {
    for (const auto& drain : {Rtn_Get_Get, Rtn_Set_Get, Rtn_Get_Get, Rtn_Set_Get}) drain();
    for (const auto& news : {RtnGet_SxGet, RtnSet_SxGet}) news();
    EXPECT_STREQ(Rtn_Get_Get(), "");
    vorn::RtnLogRequest(false, "Get", "A");
    EXPECT_FALSE(RtnGet_SxGet());
    EXPECT_STREQ(Rtn_Get_Get(), "Get A ") << "drained between the halves";
    vorn::RtnLogResult(false, "", "21.5");
    Log("Get", "json", R"({"VarName":["A"]})", R"(["1"])");
    EXPECT_FALSE(RtnSet_SxGet());
    vorn::RtnLogRequest(true, "Set", "A");
    vorn::RtnLogResult(true, "1", "OK");
    EXPECT_TRUE(RtnGet_SxGet() && RtnSet_SxGet());
    EXPECT_FALSE(RtnGet_SxGet() || RtnSet_SxGet());
    EXPECT_STREQ(Rtn_Get_Get(), " 21.5\nGet json {\"VarName\":[\"A\"]} [\"1\"]");
    EXPECT_STREQ(Rtn_Set_Get(), "Set A 1 OK");
    for (const auto& drain : {Rtn_Get_Get, Rtn_Set_Get}) EXPECT_STREQ(drain(), "");
}

TEST(ExchangeLogTest, HidesNothingBehindAZeroByte) {
    Rtn_Get_Get();
    Log(string("Get\0x", 5), string("A\0", 2), string("\0m", 2), string("1\0", 2));
    Log("Get", "B", "", "2");
    EXPECT_STREQ(Rtn_Get_Get(), "Get A  1\nGet B  2");
}

TEST(ExchangeLogTest, TakesOneLineEndOffTheLastExchange) {
    Log("A", "b", "", "x\r");
    Log("A", "b", "", "y\n\r");
    EXPECT_STREQ(Rtn_Get_Get(), "A b  x\r\nA b  y\n");
    Log("A", "b", "", "x\r\r");
    EXPECT_STREQ(Rtn_Get_Get(), "A b  x\r");
    Log("A", "b", "", "x\n");
    EXPECT_STREQ(Rtn_Get_Get(), "A b  x\n");
}

TEST(ExchangeLogTest, KeepsTheLast2000BytesOfMoreThan20000) {
    const struct {
        size_t name, messages, reply;  ///< lengths; four more bytes separate and end them
    } cases[] = {{6, 0, 19990}, {6, 0, 19991},    {6, 19991, 0},   {19994, 3, 0},
                 {6, 3, 50000}, {6, 50000, 1999}, {6, 1500, 18600}};
    for (const auto& each : cases) {
        const string name(each.name, 'n'), messages(each.messages, 'm'), reply(each.reply, 'r');
        string expected = ' ' + name + ' ' + messages + ' ' + reply + '\n';
        if (expected.size() > 20000) expected.erase(0, expected.size() - 2000);
        RtnGet_SxGet();
        Log("", name, messages, reply);
        EXPECT_TRUE(RtnGet_SxGet());
        expected.pop_back();
        EXPECT_EQ(Rtn_Get_Get(), expected) << each.name << " " << each.messages;
    }
    // What earlier exchanges left counts too.
    for (int exchange = 0; exchange < 3; ++exchange) Log("Get", "a", "", string(7000, 'x'));
    Log("Get", "b", "", "y");
    EXPECT_EQ(Rtn_Get_Get(), string(1999, 'x') + "\nGet b  y");
}

}  // namespace
