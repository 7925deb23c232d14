// The commands that run, empty and close a whole project, and that copy all of its values.

#include <string>

#include "commands/cache_set.h"
#include "commands/handlers.h"
#include "commands/run_steps.h"
#include "elements/view_refresh.h"
#include "engine/vorn_core.h"
#include "platform/sleep.h"

namespace vorn {

namespace {

/// What the engine gets to look at a start and to take it back.
constexpr int StartMilliseconds = 2000;

}  // namespace

std::string PjtRun(const Request& request) {
    const int pjtnb = request.pjtnb;
    if (PjtStartGet(pjtnb)) return "OK";
    RunStart(pjtnb);
    SleepMilliseconds(StartMilliseconds);
    const bool refused = PeojectAccess_ToServerRefGet(pjtnb) && !PjtStartGet(pjtnb);
    return refused ? PeojectAccessParsingReturn_ToServerGet(pjtnb) : "OK";
}

std::string PjtPause(const Request& request) {
    RunPauseToggle(request.pjtnb);
    return "OK";
}

std::string PjtStep(const Request& request) {
    RunStep(request.pjtnb);
    return "OK";
}

std::string PjtStop(const Request& request) {
    RunStop(request.pjtnb);
    return "OK";
}

std::string PjtClose(const Request& request) {
    RunStopToClose(request.pjtnb);
    ProjectInfoRemove(ProjectNameGet(request.pjtnb));
    Pipe_PjtListRef();
    return "OK";
}

std::string PjtClear(const Request& request) {
    Pipe_ProjectInfoClear(request.pjtnb);
    PjtRefWait(request.pjtnb);
    return "OK";
}

std::string PjtCacheToRun(const Request& request) {
    int set = 0;
    if (!CacheSetRead(request.messages, set)) return "shibai";
    ProjectAllCacheInToRun(request.pjtnb, set);
    return "OK";
}

std::string PjtRunToCache(const Request& request) {
    int set = 0;
    if (!CacheSetRead(request.messages, set)) return "shibai";
    ProjectAllRunInToCache(request.pjtnb, set);
    Pipe_PjtVarValueRef(request.pjtnb);
    return "OK";
}

}  // namespace vorn
