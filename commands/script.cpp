// LuaSent: hands a project's script to the engine.

#include <string>

#include "commands/handlers.h"
#include "engine/vorn_core.h"

namespace vorn {

std::string LuaSent(const Request& request) {
    const std::string midpjtname = ProjectNameGet(request.pjtnb);
    ProjectLuaPreWrite(midpjtname.c_str(), request.messages.c_str());
    ProjectLuaAnalysis(midpjtname.c_str());
    return LuaAnalysisGet();
}

}  // namespace vorn
