// A fixture for tests that send requests to the dispatcher over a fresh stand-in.

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "service/dispatcher.h"
#include "service/service_locks.h"
#include "standin/levers/levers.h"
#include "standin/levers/trace_record.h"
#include "tests/support/trace_sleep.h"
#include "tests/support/working_folder.h"

/// The reply to one request.
inline std::string Send(const std::string& command, const std::string& name,
                        const std::string& messages = "") {
    std::string reply;
    const std::lock_guard guard(vorn::DispatchLock);
    vorn::ServerDispatch(command, name, messages, reply);
    return reply;
}

/// The engine calls and sleeps that one request makes, in order.
inline std::vector<std::string> CallsOf(const std::string& command, const std::string& name,
                                        const std::string& messages = "") {
    standin::TraceStart();
    Send(command, name, messages);
    return standin::TraceStop();
}

/// The parts of a text, each with `end` behind it or the text's end; the white space before a part is none of
/// it.
inline std::vector<std::string> Split(const std::string& text, char end = ';') {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream >> std::ws, part, end);) parts.push_back(part);
    return parts;
}

/// A row of a table that is told as text: what is given, and behind `->` what comes of it.
struct Row {
    std::string given, wanted;
};

inline std::vector<Row> RowsOf(const std::string& text) {
    std::vector<Row> rows;
    for (const std::string& row : Split(text)) {
        const std::size_t arrow = std::min(row.find("->"), row.size());
        rows.push_back({row.substr(0, arrow), row.substr(std::min(arrow + 2, row.size()))});
    }
    return rows;
}

/// Sends one request and holds its reply and its calls, told in one text, against what is expected.
inline void ExpectExchange(const std::string& command, const std::string& name, const std::string& messages,
                           const std::string& reply, const std::string& calls) {
    SCOPED_TRACE(command + ' ' + name + ' ' + messages);
    standin::TraceStart();
    EXPECT_EQ(Send(command, name, messages), reply);
    EXPECT_EQ(standin::TraceStop(), Split(calls));
}

struct Exchange {
    std::string command, name, messages, reply;
};

inline void ExpectReplies(const std::vector<Exchange>& rows) {
    for (const auto& [command, name, messages, reply] : rows) {
        EXPECT_EQ(Send(command, name, messages), reply) << command << ' ' << name << ' ' << messages;
    }
}

inline constexpr const char* NoProject = "项目名称找不到(project Char error)";
inline constexpr const char* NoElement = "无法识别name中的InstanceID或ConnectionID，请核对一下";
inline constexpr const char* NoVariable = "none varname 找不到变量名称";

/// What places a valve (type 12, ports 0 in and 1 out), a room (type 7) or a node of kind FLUID, with further
/// members.
inline std::string Valve(const std::string& more = "") {
    return R"({"VornModuleID":2601010000012,"DeviceName":"阀门")" + more + "}";
}
inline constexpr const char* Room = R"({"VornModuleID":25092208120526336,"DeviceName":"房间"})";
inline std::string Fluid(const std::string& more = "") {
    return R"({"VornModuleID":3000,"NodeName":"FLUID")" + more + "}";
}

/// Each test begins with no open project, an engine that refuses nothing and a folder of its own.
class ServiceTest : public testing::Test {
  protected:
    ServiceTest() { standin::EngineReset(); }
    ~ServiceTest() override {
        AtSleep({});
        standin::EngineReset();
    }
    WorkingFolder folder_;
};
