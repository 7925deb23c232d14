// Numbers, bounded texts, JSON and the system code page.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include "elements/grid.h"
#include "tests/support/service_test.h"
#include "text/fixed_text.h"
#include "text/number_text.h"

namespace {

using std::string;

constexpr int IntMax = std::numeric_limits<int>::max();
constexpr int IntMin = std::numeric_limits<int>::min();

TEST(TextTest, ReadsIntegersAsFarAsTheyGo) {
    for (const Row& row : RowsOf("->0; +-4->0; --4->0; abc->0; - 1->0; 0x10->0; -3x->-3; +4->4; 1.9->1;"
                                 "2147483647->2147483647; 99999999999->2147483647;"
                                 "-2147483648->-2147483648; -99999999999->-2147483648")) {
        EXPECT_EQ(std::to_string(vorn::IntFromText(" \t\n" + row.given)), row.wanted) << row.given;
    }
}

TEST(TextTest, ReadsRealsAsTheCLibraryDoes) {
    std::vector<string> texts = Split(
        ". -. +-4 --4 -2.5e1x .5. 5.e+1 1e 1e+ e5 -0 0x -0X 0x. 0x.8 0xp1 0x1.8P1z -0x1p-2 0x-1 0xg1 0xinf "
        "0xnan "
        "0x1p+-2 0x1.fffffffffffff8 inf -INFINITY infx nan nan(12) 1e308 1.7976931348623159e308 -1e400 "
        "5e-324 "
        "2e-324 -1e-400 0e99999999999 1e99999999999 1e-99999999999 0x1p1023 0x1p1024 -0x1p-1074 0x1p-1080 "
        "0x1p99999999999 0x.000000000000000000000000001p-1000 0.1000000000000000055511151231257828",
        ' ');
    texts.emplace_back();
    for (const string& number : texts) {
        const string text = " \t\n\v\f\r" + number;
        char* end = nullptr;
        const double read = std::strtod(text.c_str(), &end);
        const double expected = end == text.c_str() ? 0.0 : read;  // where it reads none, some give -0
        const double value = vorn::RealFromText(text);
        EXPECT_TRUE(std::isnan(expected) ? std::isnan(value) : value == expected) << text << ' ' << value;
        EXPECT_EQ(std::signbit(value), std::signbit(expected)) << text;
    }
    const string zeros(400, '0');
    EXPECT_EQ(vorn::RealFromText("1" + zeros + "e-400"), 1.0);
    EXPECT_EQ(vorn::RealFromText("1" + zeros + "e-1000"), 0.0);
    EXPECT_EQ(vorn::RealFromText("0." + zeros + "1e1000"), HUGE_VAL);
    EXPECT_EQ(vorn::RealFromText("0x0." + zeros + "1p500"), 0.0);
}

TEST(TextTest, WritesRealsAsTheCLibraryDoes) {
    std::mt19937_64 random(1);
    const auto check = [](double value) {
        char expected[400];
        std::snprintf(expected, sizeof expected, "%.6f", value);
        std::string text;
        vorn::AppendReal(text, value);
        ASSERT_EQ(text, expected);
    };
    for (const double value :
         {0.0, -0.0, 0x1p-11, 0x1.fffffffffffffp-12, 0x1p53, 0x1.fffffffffffffp52, 0.9999995,
          0.99999949999999995, 4503599627370495.5, 5e-7, HUGE_VAL, 1e300, 5e-324}) {
        check(value);
        check(-value);
    }
    for (int part = 0; part < 2000; ++part) check(part / 128.0);  // each second one lies between two texts
    for (int count = 0; count < 100000; ++count) {
        const int exponent = static_cast<int>(random() % 80) - 20;
        check(std::ldexp(static_cast<double>(random() >> 11U), exponent - 53));
        check(static_cast<double>(random() % 2000000001) / 1e6 + 5e-7);
    }
}

TEST(TextTest, CutsRealsToThirtyTwoBits) {
    EXPECT_EQ(vorn::IntFromReal(-1.99), -1);
    EXPECT_EQ(vorn::IntFromReal(3e9), IntMax);
    EXPECT_EQ(vorn::IntFromReal(-HUGE_VAL), IntMin);
    EXPECT_EQ(vorn::IntFromReal(std::nan("")), 0);
    EXPECT_TRUE(vorn::GridFits(42949672.959));
    EXPECT_FALSE(vorn::GridFits(42949672.96));
    EXPECT_FALSE(vorn::GridFits(-HUGE_VAL));
    EXPECT_EQ(vorn::GridFromPosition(1e300), IntMax);
}

TEST(TextTest, CutsTextsBetweenCharacters) {
    EXPECT_EQ(vorn::TextCut("abc", 3), "abc");
    EXPECT_EQ(vorn::TextCut("水泵", 5), "水");
    EXPECT_EQ(vorn::TextCut("水泵", 3), "水");
    EXPECT_EQ(vorn::TextCut("水泵", 2), "");
    EXPECT_EQ(vorn::TextCut("\xF0\x9F\x98\x80x", 3), "");
    // What is no UTF-8 is cut where the bytes end.
    EXPECT_EQ(vorn::TextCut("a\x80\x80\x80\x80\x80", 5), "a\x80\x80\x80\x80");
    char field[4] = {'x', 'x', 'x', 'x'};
    vorn::TextCopy(field, "ab水");
    EXPECT_EQ(string(field, 4), string("ab\0\0", 4));
}

}  // namespace
