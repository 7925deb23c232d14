#include "tests/support/system.h"

#include <windows.h>
#include <winsock2.h>

#include <array>
#include <cstdlib>

#include "host/serial_port.h"
#include "platform/listen_socket.h"

namespace {

constexpr DWORD PatienceMilliseconds = 20000;

HANDLE HandleOf(std::intptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}
std::intptr_t NumberOf(HANDLE handle) {
    return reinterpret_cast<std::intptr_t>(handle);
}

std::wstring Wide(const std::string& utf8) {
    return std::filesystem::path(reinterpret_cast<const char8_t*>(utf8.c_str())).wstring();
}

/// A word of a command line, so written that the program gets it as it is.
std::wstring Quoted(const std::wstring& word) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : word) {
        if (character == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

/// Sockets can be used from here on.
void SocketsStart() {
    static const int started = [] {
        WSADATA facts;
        return WSAStartup(MAKEWORD(2, 2), &facts);
    }();
    static_cast<void>(started);
}

std::intptr_t SocketMake() {
    SocketsStart();
    // Not inherited by the programs that a test starts.
    return static_cast<std::intptr_t>(WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                                 WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
}

sockaddr_in LoopbackAddress(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Waits for an operation on a pipe that was just begun. False when it failed, also for want of time.
bool Finish(HANDLE pipe, OVERLAPPED& operation, BOOL begun, DWORD& bytes) {
    if (begun == FALSE && GetLastError() != ERROR_IO_PENDING) return false;
    if (WaitForSingleObject(operation.hEvent, PatienceMilliseconds) != WAIT_OBJECT_0)
        CancelIoEx(pipe, &operation);
    return GetOverlappedResult(pipe, &operation, &bytes, TRUE) != FALSE;
}

/// An operation on a pipe with its event.
struct Operation : OVERLAPPED {
    Operation() : OVERLAPPED() { hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }
    ~Operation() { CloseHandle(hEvent); }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
};

BOOL WINAPI PassOver(DWORD /*kind*/) {
    return TRUE;
}

/// The two ends of a null modem, `COM20,COM21`: a host opens the first, the test the second.
std::string SerialEnds() {
    const char* const ends = std::getenv("VORN_TEST_PORTS");
    return ends == nullptr ? "" : ends;
}

}  // namespace

const char* const NullDevice = "NUL";

unsigned ProcessNumber() {
    return GetCurrentProcessId();
}

std::filesystem::path TestProgram() {
    std::array<wchar_t, 32768> path{};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return path.data();
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           const std::filesystem::path& folder, const std::string& input) {
    std::wstring line = Quoted(program.wstring());
    for (const std::string& argument : arguments) line += L' ' + Quoted(Wide(argument));
    HANDLE outputEnd = nullptr;
    HANDLE childsOutput = nullptr;
    HANDLE inputEnd = nullptr;
    HANDLE childsInput = nullptr;
    if (!CreatePipe(&outputEnd, &childsOutput, nullptr, 0)) return;
    if (!CreatePipe(&childsInput, &inputEnd, nullptr, static_cast<DWORD>(input.size()))) return;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = childsInput;
    start.hStdOutput = childsOutput;
    start.hStdError = childsOutput;
    for (HANDLE each : {childsInput, childsOutput})
        SetHandleInformation(each, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    PROCESS_INFORMATION process{};
    // With a console of its own, at which it can be asked to end.
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                       folder.c_str(), &start, &process)) {
        CloseHandle(process.hThread);
        process_ = NumberOf(process.hProcess);
    }
    DWORD written = 0;
    WriteFile(inputEnd, input.data(), static_cast<DWORD>(input.size()), &written, nullptr);
    for (HANDLE each : {childsInput, childsOutput, inputEnd}) CloseHandle(each);
    output_ = NumberOf(outputEnd);
}

ChildProcess::~ChildProcess() {
    Kill();
    Wait();
    CloseHandle(HandleOf(output_));
}

bool ChildProcess::Read(std::string& output) {
    std::array<char, 4096> bytes{};
    DWORD waiting = 0;
    for (const ULONGLONG end = GetTickCount64() + PatienceMilliseconds; waiting == 0;
         Sleep(waiting == 0 ? 5 : 0)) {
        // The one kind of pipe that the system cannot wait for with a time limit.
        if (!PeekNamedPipe(HandleOf(output_), nullptr, 0, nullptr, &waiting, nullptr)) return false;
        if (waiting == 0 && GetTickCount64() > end) return false;
    }
    DWORD read = 0;
    ReadFile(HandleOf(output_), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    output.append(bytes.data(), read);
    return read > 0;
}

unsigned ChildProcess::Number() const {
    return GetProcessId(HandleOf(process_));
}

void ChildProcess::AskToEnd() {
    if (process_ == 0) return;
    FreeConsole();
    if (!AttachConsole(GetProcessId(HandleOf(process_)))) return;
    // This process is asked as well for the moment. A handler, unlike the refusal of all, is not inherited.
    SetConsoleCtrlHandler(PassOver, TRUE);
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    FreeConsole();
}

void ChildProcess::Kill() {
    if (process_ != 0) TerminateProcess(HandleOf(process_), static_cast<UINT>(-1));
}

int ChildProcess::Wait() {
    if (process_ == 0) return -1;
    DWORD status = 0;
    WaitForSingleObject(HandleOf(process_), INFINITE);
    GetExitCodeProcess(HandleOf(process_), &status);
    CloseHandle(HandleOf(process_));
    process_ = 0;
    return static_cast<int>(status);
}

RawClient::RawClient(const std::string& pipe) : ofPipe_(true) {
    const std::wstring name = LR"(\\.\pipe\)" + Wide(pipe);
    HANDLE handle = INVALID_HANDLE_VALUE;
    do {
        handle = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                             FILE_FLAG_OVERLAPPED, nullptr);
        // Between the two calls another client may come first.
    } while (handle == INVALID_HANDLE_VALUE && WaitNamedPipeW(name.c_str(), PatienceMilliseconds));
    handle_ = NumberOf(handle);
    connected_ = handle != INVALID_HANDLE_VALUE;
}

RawClient::RawClient(int port) : handle_(SocketMake()), ofPipe_(false) {
    const sockaddr_in address = LoopbackAddress(port);
    const DWORD wait = 1000;
    const auto socket = static_cast<SOCKET>(handle_);
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&wait), sizeof wait);
    connected_ = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

RawClient::~RawClient() {
    if (ofPipe_) {
        CloseHandle(HandleOf(handle_));
    } else {
        closesocket(static_cast<SOCKET>(handle_));
    }
}

bool RawClient::Send(const std::string& text) const {
    if (ofPipe_) {
        Operation operation;
        DWORD sent = 0;
        const BOOL begun =
            WriteFile(HandleOf(handle_), text.data(), static_cast<DWORD>(text.size()), nullptr, &operation);
        return Finish(HandleOf(handle_), operation, begun, sent) && sent == text.size();
    }
    for (std::size_t done = 0; done < text.size();) {
        const int sent =
            send(static_cast<SOCKET>(handle_), text.data() + done, static_cast<int>(text.size() - done), 0);
        if (sent <= 0) return false;
        done += static_cast<std::size_t>(sent);
    }
    return true;
}

void RawClient::EndSending() const {
    if (!ofPipe_) shutdown(static_cast<SOCKET>(handle_), SD_SEND);
}

std::string RawClient::Receive() const {
    std::string text;
    std::array<char, 65536> bytes{};
    if (!ofPipe_) {
        int count = 0;
        while ((count = recv(static_cast<SOCKET>(handle_), bytes.data(), static_cast<int>(bytes.size()), 0)) >
               0) {
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return count == 0 ? text : text + "error";
    }
    Operation operation;
    for (DWORD count = 0;; text.append(bytes.data(), count)) {
        const BOOL begun =
            ReadFile(HandleOf(handle_), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
        if (Finish(HandleOf(handle_), operation, begun, count)) continue;
        const DWORD why = GetLastError();
        return why == ERROR_BROKEN_PIPE || why == ERROR_PIPE_NOT_CONNECTED ? text : text + "error";
    }
}

HeldPort::HeldPort(int port) : socket_(SocketMake()) {
    vorn::ListenSocketOptions(socket_);
    sockaddr_in address = LoopbackAddress(port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    const auto socket = static_cast<SOCKET>(socket_);
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) listen(socket, 1);
}

HeldPort::~HeldPort() {
    closesocket(static_cast<SOCKET>(socket_));
}

SerialLink::SerialLink() : end_(-1) {
    const std::string ends = SerialEnds();
    std::string fault;
    if (!ends.empty()) end_ = SerialOpen({.device = ends.substr(ends.find(',') + 1), .baud = 9600}, fault);
}

SerialLink::~SerialLink() {
    SerialClose(end_);
}

const char* SerialLink::Lacks() {
    return "no pair of serial ports is told by VORN_TEST_PORTS";
}

std::string SerialLink::Device() const {
    const std::string ends = SerialEnds();
    return ends.substr(0, ends.find(','));
}

void SerialLink::Write(const std::string& text) const {
    SerialWrite(end_, text);
}

std::string SerialLink::ReadLine() const {
    COMMTIMEOUTS waits{};
    waits.ReadTotalTimeoutConstant = PatienceMilliseconds;
    SetCommTimeouts(HandleOf(end_), &waits);
    std::string line;
    DWORD read = 0;
    for (char byte = 0; ReadFile(HandleOf(end_), &byte, 1, &read, nullptr) && read == 1;) {
        if (byte == '\n' && line.ends_with('\r')) return line.substr(0, line.size() - 1);
        line += byte;
    }
    return line + "timeout";
}
