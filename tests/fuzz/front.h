// What the fuzz fronts share. A front is a program that takes one input at a time from the fuzzer, or from
// the files named on its command line, and ends with a message where the code does not keep a promise.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "service/dispatcher.h"
#include "service/service_locks.h"
#include "standin/levers/levers.h"
#include "tests/fuzz/memory_files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

/// Ends the program, so that the fuzzer keeps the input.
[[noreturn]] inline void Fail(const char* promise, std::string_view seen) {
    std::fprintf(stderr, "broken promise: %s\n%.*s\n", promise, static_cast<int>(seen.size()), seen.data());
    std::abort();
}

inline void Require(bool kept, const char* promise, std::string_view seen) {
    if (!kept) Fail(promise, seen);
}

inline std::string_view Text(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

/// Cuts the first part off `text`, up to a line feed, which is dropped.
inline std::string NextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string line(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

/// The reply to one request.
inline std::string Ask(const std::string& command, const std::string& name,
                       const std::string& messages = "") {
    std::string reply;
    const std::lock_guard guard(vorn::DispatchLock);
    vorn::ServerDispatch(command, name, messages, reply);
    return reply;
}

/// An engine without projects, open or stored.
inline void BeginFresh() {
    FilesForget();
    standin::EngineReset();
    standin::SimulationKeepOff(true);
}

/// A project P with a module, a node and a link between them, so that inputs meet something.
inline void BeginWithProject() {
    BeginFresh();
    Ask("Create", "P");
    Ask("PjtSent", "P",
        R"({"DeviceInfo":[{"InstanceID":"a","DeviceID":2601010000012},{"InstanceID":"n","DeviceID":3000,)"
        R"("FluidType":0},{"InstanceID":"r","DeviceID":25092208120526336}],"ConnectionInfo":[{"ConnectionID":)"
        R"("c","StartDeviceInstanceID":"a","StartPortID":"1","EndDeviceInstanceID":"n","EndPortID":"0"}]})");
}
