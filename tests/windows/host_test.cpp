// The programs and what only this system has for them: consoles and serial ports.

#include <windows.h>

#include "host/serial_port.h"
#include "include/vorn_contract.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

/// What the console of this process shows from its beginning.
std::wstring Shown() {
    const HANDLE screen = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    std::wstring text(2000, L' ');
    DWORD count = 0;
    ReadConsoleOutputCharacterW(screen, text.data(), static_cast<DWORD>(text.size()), {0, 0}, &count);
    CloseHandle(screen);
    text.resize(count);
    return text;
}

/// Runs a program at the console of this process and waits for its end.
void RunAtConsole(const std::filesystem::path& program, std::wstring line) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &start, &process));
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

TEST(SendThreadsTest, TakesAndShowsUnicodeAtAConsoleAndLeavesItAsItWas) {
    HostProcess host(std::vector<string>{});
    // The host has a console, which nobody sees.
    FreeConsole();
    ASSERT_TRUE(AttachConsole(host.Number()));
    SetConsoleOutputCP(437);
    RunAtConsole(ProgramBeside("vorn-send"),
                 L"vorn-send --port " + std::to_wstring(host.Port()) + L" Get 房*");
    EXPECT_NE(Shown().find(L"none varname 找不到变量名称"), std::wstring::npos);
    EXPECT_EQ(GetConsoleOutputCP(), 437U);
    FreeConsole();
    EXPECT_EQ(host.WaitFor("read   http/127.0.0.1 Get '房*' "), "'' '" + string(NoVariable) + "'");
}

TEST(SerialPortTest, IsSetAsItIsAskedFor) {
    const SerialLink terminal;
    if (!terminal.Made()) GTEST_SKIP() << terminal.Lacks();
    for (const unsigned baud : {1200U, 57600U, 115200U}) {
        string fault;
        const std::intptr_t device = SerialOpen({terminal.Device(), baud}, fault);
        ASSERT_NE(device, -1) << fault;
        DCB settings{};
        settings.DCBlength = sizeof settings;
        EXPECT_TRUE(GetCommState(reinterpret_cast<HANDLE>(device), &settings));
        EXPECT_EQ(settings.BaudRate, baud);
        EXPECT_EQ(settings.ByteSize, 8);
        EXPECT_EQ(settings.Parity, NOPARITY);
        EXPECT_FALSE(settings.fOutX || settings.fInX || settings.fOutxCtsFlow);
        SerialClose(device);
    }
}

}  // namespace
