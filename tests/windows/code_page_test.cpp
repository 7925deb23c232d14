// The system code page: 936, as on the machines of the library's users.

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/code_page.h"
#include "text/ansi_to_utf8.h"

namespace {

using std::string;

TEST(CodePageTest, ConvertsBothWaysAndReplacesWhatIsNone) {
    if (GetACP() != 936) GTEST_SKIP() << "the system code page is not 936";
    EXPECT_STREQ(vorn::AnsiToUtf8("a\xCB\xAE\xB1\xC3"), "a水泵");
    // A byte that begins no character, and a first half at the end.
    EXPECT_STREQ(vorn::AnsiToUtf8("\xCB\xAE\xFF-\xCB"), "水\uFFFD-\uFFFD");
    EXPECT_STREQ(vorn::AnsiToUtf8(""), "");
    EXPECT_EQ(vorn::CodePageFromUtf8("水泵-ü😀"), "\xCB\xAE\xB1\xC3-\xA8\xB9??");
    const string large(100000, 'x');
    EXPECT_EQ(vorn::Utf8FromCodePage(large), large);
}

}  // namespace
