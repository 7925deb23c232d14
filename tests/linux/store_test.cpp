// Why a project cannot be read or stored, in this system's words.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/file_lock.h"
#include "standin/project_store.h"
#include "tests/support/store_test.h"

using namespace standin;
namespace fs = std::filesystem;

TEST_F(StoreTest, TellsWhyItCannotReadOrWrite) {
    const std::string cannotStore = "project store: P: the project cannot be stored: ";
    const std::string file = ": ../AlgProject/P/P.json\n";
    Send("Create", "P");
    Send("PjtSent", "P", Nodes(3));
    const std::string whole = Read(FileOf("P"));
    testing::internal::CaptureStderr();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit standard{.rlim_cur = 3, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &standard);
    EXPECT_FALSE(StoreRead(*ProjectFind(0)) || StoreWrite(*ProjectFind(0)));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "project store: P: the stored file cannot be read: Too many open files" + file + cannotStore +
                  "Too many open files" + file);
    EXPECT_EQ(Read(FileOf("P")), whole);
    EXPECT_EQ(FilesOf("P"), "P.json ");

    fs::remove(FileOf("P"));
    fs::create_directory(FileOf("P"));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(StoreWrite(*ProjectFind(0)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), cannotStore + "Is a directory" + file);
    // Nor can a project be stored where a file stands in the place of its folder.
    fs::remove_all(Folder("P"));
    Write(Folder("").string() + "P", "a file");
    testing::internal::CaptureStderr();
    EXPECT_EQ(Send("PjtSent", "P", Nodes(1)), "OK");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), cannotStore + "Not a directory: ../AlgProject/P/\n");
}

TEST_F(StoreTest, KeepsAProjectFromServersOfOtherUsersToo) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root, to become another user";
    Send("Create", "P");
    Send("PjtSent", "P", Nodes(1));
    const pid_t child = fork();
    if (child == 0) {
        vorn::FileLock lock;
        std::string holder;
        if (setuid(65534) != 0) _exit(99);
        _exit(lock.Take("../AlgProject/P.lock", "another user", holder) == vorn::LockResult::Held ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}
