// A fixture for tests that send requests to the dispatcher over a fresh stand-in.

#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "service/dispatcher.h"
#include "service/service_locks.h"
#include "standin/control.h"
#include "standin/trace.h"
#include "tests/support/trace_sleep.h"

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

/// Each test begins with no open project and an engine that refuses nothing.
class ServiceTest : public testing::Test {
  protected:
    ServiceTest() { standin::EngineReset(); }
    ~ServiceTest() override {
        AtSleep({});
        standin::EngineReset();
    }
};
