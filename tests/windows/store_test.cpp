// Stored projects and what is peculiar to this system's files.

#include <utf8.h>
#include <windows.h>

#include "standin/project_store.h"
#include "tests/support/store_test.h"

using namespace standin;

TEST_F(StoreTest, StoresProjectsThatBearTheNamesOfDevices) {
    for (const std::string name : {"CON", "NUL", "AUX", "COM1"}) {
        Send("Create", name);
        EXPECT_TRUE(StoreWrite(*ProjectFind(0)) && StoreRead(*ProjectFind(0))) << name;
        Send("Put", "", "Close");
        EngineReset();
    }
}

TEST_F(StoreTest, StoresProjectsInFoldersWithLongPaths) {
    // 260 characters are the system's limit for paths of the usual form.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::path deep = before;
    while (deep.native().size() < 230) deep /= "folder of a long name";
    std::filesystem::create_directories(deep);
    std::filesystem::current_path(deep);
    const std::string name(60, 'P');
    Send("Create", name);
    EXPECT_TRUE(StoreWrite(*ProjectFind(0)) && StoreRead(*ProjectFind(0)));
    std::filesystem::current_path(before);
}

TEST_F(StoreTest, TellsThatAnotherProgramHoldsTheFile) {
    Send("Create", "P");
    ASSERT_TRUE(StoreWrite(*ProjectFind(0)));
    const std::string whole = Read(FileOf("P"));
    const HANDLE held = CreateFileW(std::filesystem::path(FileOf("P")).c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(StoreRead(*ProjectFind(0)) || StoreWrite(*ProjectFind(0)));
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(Holds(lines, "P: the stored file cannot be read: ")) << lines;
    EXPECT_TRUE(Holds(lines, "P: the project cannot be stored: ")) << lines;
    EXPECT_EQ(Split(lines, '\n').size(), 2U) << lines;
    EXPECT_TRUE(utf8::is_valid(lines)) << lines;
    CloseHandle(held);
    EXPECT_EQ(Read(FileOf("P")), whole);
    EXPECT_EQ(FilesOf("P").find(".new"), std::string::npos);
}
