// Servers that share a store: here the other server is a lock that this process takes by itself.

#include <filesystem>
#include <fstream>

#include "platform/file_lock.h"
#include "tests/support/service_test.h"

namespace {

constexpr const char* Document = R"({"DeviceInfo":[{"InstanceID":"n","DeviceID":3000}]})";

class LockTest : public ServiceTest {
  protected:
    std::filesystem::path LockOf(const std::string& name) { return folder_.Projects() / (name + ".lock"); }
    /// Another server opens the project.
    void TakeElsewhere(vorn::FileLock& lock, const std::string& name) {
        std::string holder;
        EXPECT_EQ(lock.Take(LockOf(name).string(), "another one", holder), vorn::LockResult::Taken) << holder;
    }
    /// The lines of standard error while `work` runs.
    template <typename Work>
    std::string FaultsOf(Work work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(LockTest, KeepsAnOpenProjectFromTheOtherServers) {
    Send("Create", "P");
    EXPECT_EQ(Send("PjtSent", "P", Document), "OK");
    vorn::FileLock other;
    std::string holder;
    EXPECT_EQ(other.Take(LockOf("P").string(), "another one", holder), vorn::LockResult::Held);
    EXPECT_EQ(holder, vorn::ProcessTitle());
    EXPECT_EQ(Send("PjtClose", "P"), "OK");
    EXPECT_FALSE(std::filesystem::exists(LockOf("P")));
    TakeElsewhere(other, "P");

    const std::string faults = FaultsOf([] {
        ExpectReplies(
            {{"Open", "p", "", "Shibai"}, {"Create", "P", "", "Shibai"}, {"Put", "P", "Run", "找不到项目"}});
    });
    EXPECT_EQ(faults, "store: P is open in another server, another one\n") << "told once";
    other.Release();
    EXPECT_EQ(Send("Open", "P"), "OK");
    EXPECT_EQ(Send("MoveMN", "P_n", R"({"PositionX":1.0,"PositionZ":2.0})"), "OK") << "with what was stored";
}

TEST_F(LockTest, RefusesAProjectThatAnotherServerMadeFirstAlsoInANewStore) {
    // The lock of the first project of a store is there before anything is stored.
    EXPECT_EQ(Send("Create", "P"), "OK");
    vorn::FileLock other;
    std::string holder;
    EXPECT_EQ(other.Take(LockOf("P").string(), "another one", holder), vorn::LockResult::Held);
    TakeElsewhere(other, "Q");
    const std::string faults = FaultsOf([] {
        ExpectReplies({{"Create", "q", "", "Shibai"},
                       {"PjtSent", "Q", Document, "项目名称找不到(project Char error)"}});
    });
    EXPECT_EQ(faults, "store: Q is open in another server, another one\n");
}

TEST_F(LockTest, LocksAProjectAtItsFirstStoreWhereThatCouldNotBeBefore) {
    std::ofstream(folder_.Projects()) << "a file in the way of the store";
    EXPECT_EQ(Send("Create", "P"), "OK");
    std::filesystem::remove(folder_.Projects());
    std::filesystem::create_directory(folder_.Projects());
    vorn::FileLock other;
    TakeElsewhere(other, "P");
    const std::string faults = FaultsOf([] { Send("PjtSent", "P", Document); });
    EXPECT_NE(faults.find("P is open in another server"), std::string::npos) << faults;
    EXPECT_FALSE(std::filesystem::exists(folder_.Projects() / "P" / "P.json")) << "what is not ours";
    other.Release();
    Send("PjtSent", "P", Document);
    EXPECT_TRUE(std::filesystem::exists(LockOf("P")));
    EXPECT_TRUE(std::filesystem::exists(folder_.Projects() / "P" / "P.json"));
}

TEST_F(LockTest, PassesOverAFileThatNobodyHolds) {
    std::filesystem::create_directory(folder_.Projects());
    std::ofstream(LockOf("P")) << "process 1 on a machine that went down";
    EXPECT_EQ(Send("Create", "P"), "OK");
    // A file that cannot be made keeps no project from being opened.
    std::filesystem::create_directory(LockOf("Q"));
    EXPECT_EQ(Send("Create", "Q"), "OK");
}

}  // namespace
