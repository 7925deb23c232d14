// A host program as a user writes it: it loads the library at run time, starts the two entries on threads of
// their own and fetches the log of exchanges. Its arguments: the library's file.

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

HMODULE library = nullptr;

template <typename Function>
Function* Entry(const char* name) {
    const FARPROC entry = GetProcAddress(library, name);
    if (entry == nullptr) {
        std::printf("no entry %s\n", name);
        std::exit(2);
    }
    Function* function = nullptr;
    static_assert(sizeof function == sizeof entry);
    std::memcpy(&function, &entry, sizeof function);
    return function;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    library = count == 2 ? LoadLibraryW(arguments[1]) : nullptr;
    if (library == nullptr) {
        std::printf("the library cannot be loaded: error %lu\n", GetLastError());
        return 1;
    }
    auto* const http = Entry<void(const char*)>("HttpServerThread");
    auto* const pipe = Entry<void(const char*)>("PipeServerThread");
    auto* const line = Entry<void(const char*, char*)>("ChuanKouServerThread");
    auto* const readNews = Entry<bool()>("RtnGet_SxGet");
    auto* const reads = Entry<const char*()>("Rtn_Get_Get");
    auto* const writeNews = Entry<bool()>("RtnSet_SxGet");
    auto* const writes = Entry<const char*()>("Rtn_Set_Get");
    auto* const access = Entry<bool(int)>("Net_Access");
    auto* const topology = Entry<const char*(int)>("Net_InfoToAI");
    char reply[192];
    line("Get/NONE", reply);
    std::printf("line: %s\naccess: %d\ntopology: %s\n", reply, access(0) ? 1 : 0,
                topology(8) == nullptr ? "none" : "one");
    std::thread([http] { http(nullptr); }).detach();
    std::thread([pipe] { pipe(nullptr); }).detach();
    std::puts("started");
    for (;;) {
        std::fflush(stdout);
        if (readNews()) std::printf("read: %s\n", reads());
        if (writeNews()) std::printf("write: %s\n", writes());
        Sleep(20);
    }
}
