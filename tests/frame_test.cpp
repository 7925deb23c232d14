#include "tests/support/service_test.h"
using FrameTest = ServiceTest;
TEST_F(FrameTest, Smoke) {
    EXPECT_EQ(Send("Create", "abc1"), "OK");
    EXPECT_EQ(Send("AddNode", "ABC1", R"({"VornModuleID":3000,"NodeName":"FLUID"})"), "NOD0");
}
