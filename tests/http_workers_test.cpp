// The workers of an HTTP server where memory runs out.

#include "transport/http_workers.h"

#include <gtest/gtest.h>

#include <atomic>

#include "tests/support/failing_new.h"

namespace {

TEST(MemoryThreadsTest, KeepsAConnectionUntilThereIsRoomForIt) {
    for (const int failing : {1, 2, 3}) {
        FailNew(0, failing);
        vorn::HttpWorkers workers;
        std::atomic<bool> served{false};
        FailNew(0, failing);
        workers.enqueue([&served] { served = true; });
        EXPECT_TRUE(NewFailed());
        FailNew(-1);
        workers.shutdown();
        EXPECT_TRUE(served);
    }
}

}  // namespace
