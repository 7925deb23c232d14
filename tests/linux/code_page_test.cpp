// The system code page, which is the process's locale here.

#include <gtest/gtest.h>

#include "platform/code_page.h"
#include "text/ansi_to_utf8.h"

namespace {

using std::string;

TEST(CodePageTest, TakesTheCLocaleAsUtf8AndReplacesWhatIsNone) {
    EXPECT_STREQ(vorn::AnsiToUtf8("水泵"), "水泵");
    EXPECT_STREQ(vorn::AnsiToUtf8("a\xff水\xe6\xb0"), "a\uFFFD水\uFFFD\uFFFD");
    EXPECT_EQ(vorn::CodePageFromUtf8("水\xff-"), "水?-");
    const string large(100000, 'x');
    EXPECT_EQ(vorn::Utf8FromCodePage(large), large);
}

}  // namespace
