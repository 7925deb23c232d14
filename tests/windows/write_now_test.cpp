// Standard error as a pipe that nobody reads for a while.

#include "platform/write_now.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

/// Standard error is a pipe while the test runs.
class WriteNowTest : public testing::Test {
  protected:
    WriteNowTest() {
        CreatePipe(&reader_, &writer_, nullptr, 4096);
        SetStdHandle(STD_ERROR_HANDLE, writer_);
    }
    ~WriteNowTest() override {
        SetStdHandle(STD_ERROR_HANDLE, before_);
        CloseHandle(reader_);
        CloseHandle(writer_);
    }
    std::string Read() {
        std::string bytes(65536, '\0');
        DWORD count = 0;
        PeekNamedPipe(reader_, nullptr, 0, nullptr, &count, nullptr);
        if (count > 0) ReadFile(reader_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
        bytes.resize(count);
        return bytes;
    }
    HANDLE before_ = GetStdHandle(STD_ERROR_HANDLE);
    HANDLE reader_ = nullptr;
    HANDLE writer_ = nullptr;
};

TEST_F(WriteNowTest, WaitsForNoReaderLosesNothingAndLeavesTheModeAsItWas) {
    std::string text;
    for (int line = 0; line < 20000; ++line) text += "line " + std::to_string(line) + '\n';
    std::string left = text;
    left.erase(0, vorn::WriteNow(vorn::StandardStream::Error, left));
    ASSERT_FALSE(left.empty()) << "the pipe is full";
    DWORD mode = PIPE_NOWAIT;
    ASSERT_NE(GetNamedPipeHandleStateW(writer_, &mode, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(mode & PIPE_NOWAIT, 0U);
    std::string read;
    while (!left.empty()) {
        read += Read();
        left.erase(0, vorn::WriteNow(vorn::StandardStream::Error, left));
    }
    while (read.size() < text.size()) read += Read();
    EXPECT_EQ(read, text);
}

}  // namespace
