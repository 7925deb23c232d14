// Variables by name: the store's calls, the texts of values, the names of the stand-in, batches, locales.

#include <algorithm>
#include <cstdio>
#include <thread>

#include "engine/vorn_core.h"
#include "service/api_envelope.h"
#include "tests/support/service_test.h"
#include "tests/support/test_locale.h"
#include "variables/var_read.h"

namespace {

using std::string;

/// A project P with the pipe MOD0 and the node NOD0.
class VariablesTest : public ServiceTest {
  protected:
    VariablesTest() {
        Send("Create", "P");
        Send("AddModule", "P", R"({"VornModuleID":24032022192805856,"DeviceName":"铸铁管道"})");
        Send("AddNode", "P", Fluid());
    }
};

/// The reply to a batch that stands as an object in the body of an HTTP request.
string SendInEnvelope(const string& verb, const string& batch) {
    string reply;
    vorn::ApiEnvelope(R"({"command":")" + verb + R"(","name":"json","messages":)" + batch + "}", reply);
    return reply;
}

/// An array's text that begins so and has zeros for the rest.
string Padded(string text, const string& zero) {
    const auto commas = std::count(text.begin(), text.end(), ',');
    for (auto count = text.empty() ? 0 : commas + 1; count < 8; ++count)
        text += (text.empty() ? "" : ",") + zero;
    return text;
}

string Reals(const string& text) {
    return Padded(text, "0.00000000");
}
string Integers(const string& text) {
    return Padded(text, "0");
}

/// What is written of the text 7.25,8 for each kind of value, as the trace shows it.
const string Written[] = {"7.250000)", "7)",
                          "[7.250000 8.000000 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000])",
                          "[7 8 0 0 0 0 0 0])"};

TEST_F(VariablesTest, CallsTheStoreAsTheKindAndPlaceSay) {
    const string held[] = {"7.250000", "7", Reals("7.25000000,8.00000000"), "7,8,0,0,0,0,0,0"};
    const string zero[] = {"0.000000", "0", Reals(""), "0,0,0,0,0,0,0,0"};
    // Type, scope and port of a name; the store's places that are read and written, `-` for none; and whether
    // what was written is read.
    const auto rows = Split(R"(
        0 0 -1 GloGet(0,2) w_GloSet(0,2, held;          0 0 5 GloGet(0,2) w_GloSet(0,2, held;
        0 1 -1 ModGet(0,0,2) w_ModSet(0,0,2, held;      0 1 0 ModPortGet(0,0,0,2) w_ModPortSet(0,0,0,2, held;
        0 2 -1 NodGet(0,0,2) w_NodSet(0,0,2, held;      0 9 15 NodPortGet(0,0,15,2) w_NodPortSet(0,0,15,2, held;
        1 0 5 GloIntGet(0,3) w_GloIntSet(0,3, held;     1 1 -1 ModIntGet(0,0,3) w_ModIntSet(0,0,3, zero;
        1 1 5 ModIntGet(0,0,3) w_ModIntSet(0,0,3, zero; 1 2 -1 NodIntGet(0,0,3) w_NodIntSet(0,0,3, zero;
        1 2 0 - w_NodIntSet(0,0,3, zero;                2 0 5 GloAryGet(0,4) w_GloArySet(0,4, held;
        2 1 -1 ModAryGet(0,0,4) w_ModArySet(0,0,4, zero; 2 1 1 ModPortAryGet(0,0,1) w_ModPortArySet(0,0,1, held;
        2 -1 -1 NodAryGet(0,0,4) w_NodArySet(0,0,4, zero; 2 2 0 NodPortAryGet(0,0,0) w_NodPortArySet(0,0,0, held;
        3 0 5 GloIntAryGet(0,5) w_GloIntArySet(0,5, held; 3 1 -1 ModIntAryGet(0,0,5) w_ModIntArySet(0,0,5, zero;
        3 1 5 ModIntAryGet(0,0,5) w_ModIntArySet(0,0,5, zero; 3 2 -1 NodIntAryGet(0,0,5) w_NodIntArySet(0,0,5, zero;
        3 2 5 - w_NodIntArySet(0,0,5, zero;)");
    for (const string& row : rows) {
        const auto words = Split(row, ' ');
        const int type = std::stoi(words[0]);
        standin::NameDefine("X", {std::stoi(words[1]), type, 0, 0, std::stoi(words[2]), type + 2});
        const string read = words[3] == "-" ? "" : words[3];
        ExpectExchange("Set", "X", "7.25,8", "OK", "NameParsing(\"X\"); " + words[4] + Written[type]);
        ExpectExchange("Get", "X", "", (words[5] == "held" ? held : zero)[type],
                       "NameParsing(\"X\"); " + read);
    }
}

TEST_F(VariablesTest, TouchesNothingWithoutAKnownNameOrKind) {
    for (const int type : {-1, 4}) {
        standin::NameDefine("X", {.type = type});
        ExpectExchange("Get", "X", "", "变量类型错误,请联系技术支持", "NameParsing(\"X\")");
        ExpectExchange("Set", "X", "1", "OK", "NameParsing(\"X\")");
    }
    ExpectExchange("Set", "Y", "1", NoVariable, "NameParsing(\"Y\")");
}

TEST_F(VariablesTest, ReadsValueTexts) {
    string oneToEight;
    for (const char digit : string("12345678"))
        oneToEight += (digit == '1' ? "" : ",") + string{digit} + ".00000000";
    const struct {
        string value, real, integer, reals, integers;
    } rows[] = {
        {"", "0.000000", "0", "", ""},
        {"3.7x", "3.700000", "3", "3.70000000", "3"},
        {"-3", "-3.000000", "-2", "-3.00000000", "-2"},
        {"2.998", "2.998000", "2", "2.99800000", "3"},
        {"2.999", "2.999000", "3", "2.99900000", "3"},
        {"1,2,", "1.000000", "1", "1.00000000,2.00000000", "1,2"},
        {",5", "0.000000", "0", "0.00000000,5.00000000", "0,5"},
        {" \t1, 2 ,\n3", "1.000000", "1", "1.00000000,2.00000000,3.00000000", "1,2,3"},
        {"1,2,3,4,5,6,7,8,9", "1.000000", "1", oneToEight, "1,2,3,4,5,6,7,8"},
        {string(190, '0') + "12,7", "12.000000", "12", "1.00000000,7.00000000", "1,7"},
        {"1e400,2", "0.000000", "2147483647", "0.00000000,2.00000000", "2147483640,2"},
        {"-1e400,2", "0.000000", "-2147483648", "0.00000000,2.00000000", "-2147483640,2"},
        {"nan,2", "0.000000", "0", "0.00000000,2.00000000", "0,2"},
        {"1e14", "100000000000000.000000", "2147483647", "9999999999999.00000000", "2147483640"},
        {"2147483647", "2147483647.000000", "2147483647", "2147483647.00000000", "2147483640"},
        {"-2147483648", "-2147483648.000000", "-2147483647", "-2147483648.00000000", "-2147483640"},
        {"0x10,0x1p3", "16.000000", "16", "16.00000000,8.00000000", "16,8"},
    };
    for (const auto& row : rows) {
        const auto check = [&](const string& name, const string& text) {
            Send("Set", name, "9,9,9,9,9,9,9,9");
            EXPECT_EQ(Send("Set", name, row.value), "OK");
            EXPECT_EQ(Send("Get", name), text) << name << ' ' << row.value;
        };
        check("P_GTemp", row.real);
        check("P_GStep", row.integer);
        check("P_GSeries", Reals(row.reals));
        check("P_GCounts", Integers(row.integers));
    }
}

TEST_F(VariablesTest, WritesTheLongestTexts) {
    Send("Set", "P_GSeries", "-1e20,-1e20,-1e20,-1e20,-1e20,-1e20,-1e20,-1e20");
    const string longest = Send("Get", "P_GSeries");
    EXPECT_EQ(longest.size(), 191U);
    EXPECT_EQ(longest.substr(168), "-9999999999999.00000000");
    Send("Set", "P_MOD0_IM3_ARY", longest);
    EXPECT_EQ(Send("Get", "P_MOD0_IM3_ARY"), longest);
    Send("Set", "P_GTemp", "-1.7976931348623157e308");
    EXPECT_EQ(Send("Get", "P_GTemp").size(), 1U + 309 + 7);
}

TEST_F(VariablesTest, KnowsItsNames) {
    for (const string& name :
         Split("p_GTemp P_MOD0_D P_NOD0_Flow P_MOD0_IM0_PRE P_MOD0_IM15_FLOW P_NOD0_IM9_TEMP", ' ')) {
        EXPECT_EQ(Send("Set", name, "3.5"), "OK") << name;
        EXPECT_EQ(Send("Get", name), "3.500000") << name;
    }
    std::vector<string> unknown = Split(
        "P_gtemp P_MOD0_d P_NOD0_D P_MOD0_IM16_PRE P_MOD0_IM0_XXX P_MOD0_IM0 P_MOD0_IM-1_PRE P_MOD0_IM_PRE "
        "P_MOD1_D "
        "P_MOD-1_D P_MOD_D P_MOD99999999999_D P_MOD0_IM9999999999_PRE P_LNK0_D P_MOD0_ P_MOD0 P_ P _GTemp "
        "Q_GTemp",
        ' ');
    unknown.emplace_back();
    for (const string& name : unknown) {
        EXPECT_EQ(Send("Set", name, "3.5"), NoVariable) << name;
        EXPECT_EQ(Send("Get", name), NoVariable) << name;
    }
    Pipe_DeleteModule(0, 0);
    EXPECT_EQ(Send("Get", "P_MOD0_D"), NoVariable);
}

/// Names that were decoded before are decoded anew once something came or went.
TEST_F(VariablesTest, ForgetsWhatNamesWere) {
    const struct {
        string change, name, project{}, messages{};  ///< the name is unknown behind the change
    } rows[] = {
        {"PjtDleVar", "P_Reading1", "P", "Reading1"},
        {"DeleteMNL", "P_MOD0_D", "P_MOD0"},
        {"DeleteMNL", "P_NOD0_IM9_TEMP", "P_NOD0"},
        {"PjtClear", "P_MOD0_IM1_ARY", "P"},
        {"PjtClose", "P_GSeries", "P"},
    };
    for (const auto& row : rows) {
        Send("Create", "P");
        Send("AddModule", "P", R"({"VornModuleID":24032022192805856,"DeviceName":"铸铁管道"})");
        Send("AddNode", "P", Fluid());
        Send("PjtAddVar", "P", "Reading1");
        EXPECT_NE(Send("Get", row.name), NoVariable) << row.name;
        Send(row.change, row.project, row.messages);
        EXPECT_EQ(Send("Get", row.name), NoVariable) << row.change << ' ' << row.name;
    }
    Send("Create", "Q");  // in the slot that P had
    EXPECT_EQ(Send("Set", "Q_GCounts", "7"), "OK");
    Send("Create", "P");
    EXPECT_EQ(Send("Get", "P_GCounts"), Integers("0"));
    EXPECT_EQ(Send("Get", "Q_GCounts"), Integers("7"));
}

TEST_F(VariablesTest, AnswersBatches) {
    const struct {
        string verb, names, values, reply;  ///< `?` in a reply is the text of an unknown name
        double first, second;               ///< what GTemp and WAll hold afterwards, from 5 and 6 before
    } rows[] = {
        {"Get", R"("P_GTemp","X","P_WAll")", R"(["1"])", R"(["5.000000","?","6.000000"])", 5, 6},
        {"Get", R"(7,null,["P_GTemp"],"P_GTemp","a\"b")", "[]", R"(["?","?","?","5.000000","?"])", 5, 6},
        {"Get", R"("P_GTemp\u0000x")", "[]", R"(["5.000000"])", 5, 6},
        {"Set", R"("P_GTemp","P_WAll")", R"(["1"])", R"(["OK"])", 1, 6},
        {"Set", R"("P_GTemp")", R"(["1","2"])", R"(["OK"])", 1, 6},
        {"Set", R"("X","P_WAll")", R"(["1","2"])", R"(["?","OK"])", 5, 2},
        {"Set", R"("P_GTemp","P_GTemp")", R"(["1","2"])", R"(["OK","OK"])", 2, 6},
        {"Set", R"("P_GTemp","P_WAll")", "", R"(["OK","OK"])", 0, 0},
        {"Set", R"("P_GTemp","P_WAll")", "{}", R"(["OK","OK"])", 0, 0},
        {"Set", R"("P_GTemp")", "[]", "[]", 5, 6},
        {"Set", R"("P_GTemp","P_WAll")", "[true,-2.50]", R"(["shibai","OK"])", 5, -2.5},
        {"Set", R"("P_GTemp","P_WAll")", R"([["1"],1e2])", R"(["shibai","OK"])", 5, 100},
        {"Set", R"(1,"P_WAll")", R"(["1","2"])", R"(["?","OK"])", 5, 2},
    };
    for (const auto& row : rows) {
        const string values = row.values.empty() ? "" : ",\"VarValue\":" + row.values;
        const string batch = R"({"VarName":[)" + row.names + "]" + values + "}";
        string reply = row.reply;
        for (size_t at = 0; (at = reply.find('?')) != string::npos;) reply.replace(at, 1, NoVariable);
        for (const bool parsed : {false, true}) {
            Send("Set", "P_GTemp", "5");
            Send("Set", "P_WAll", "6");
            EXPECT_EQ(parsed ? SendInEnvelope(row.verb, batch) : Send(row.verb, "json", batch), reply)
                << batch;
            EXPECT_EQ(std::stod(Send("Get", "P_GTemp")), row.first) << batch;
            EXPECT_EQ(std::stod(Send("Get", "P_WAll")), row.second) << batch;
        }
    }
    for (const string request : {R"({"VarName":[]})", R"({"VarName":"X"})", "{}", "[]", "", "{", "7",
                                 R"({"VarName":["P_GTemp"]}x)", R"({"VarValue":["1"]})"}) {
        EXPECT_EQ(Send("Get", "json", request), "[]") << request;
        EXPECT_EQ(Send("Set", "json", request), "[]") << request;
    }
    EXPECT_EQ(Send("Get", "json", R"({"VarName":)" + string(100000, '[')), "[]");
}

TEST_F(VariablesTest, KeepsTheTextsOfThreadsApart) {
    double reals[8] = {1};
    int integers[8] = {1};
    const char* const texts[] = {vorn::DoubleAryText(reals), vorn::IntAryText(integers)};
    std::jthread([] {
        double other[8] = {2};
        int others[8] = {2};
        vorn::DoubleAryText(other);
        vorn::IntAryText(others);
    }).join();
    EXPECT_EQ(texts[0], Reals("1.00000000"));
    EXPECT_EQ(texts[1], Integers("1"));
}

TEST_F(VariablesTest, KeepsTheDecimalPointInAnyLocale) {
    const TestLocale german(LC_ALL, "de_DE", "UTF-8");
    if (!german.Set())
        GTEST_SKIP() << "no German locale: localedef or its sources (package locales) are missing";
    char comma[8];
    std::snprintf(comma, sizeof comma, "%.1f", 0.5);
    EXPECT_STREQ(comma, "0,5");

    const string batch = R"({"VarName":["P_GTemp","P_WAll"],"VarValue":["21.5",-2.75]})";
    EXPECT_EQ(Send("Set", "json", batch), R"(["OK","OK"])");
    EXPECT_EQ(Send("Get", "json", batch), R"(["21.500000","-2.750000"])");
    Send("Set", "P_GSeries", "1234567.25,0x1.8p1,1e400");
    EXPECT_EQ(Send("Get", "P_GSeries"), Reals("1234567.25000000,3.00000000"));
}

}  // namespace
