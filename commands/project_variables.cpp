// PjtAddVar and PjtDleVar: the variables that clients add to a project.

#include "commands/handlers.h"
#include "engine/vorn_core.h"

namespace vorn {

std::string PjtAddVar(const Request& request) {
    if (ProjectVarAdd(ProjectNameGet(request.pjtnb), 0, request.messages.c_str()) == 0) {
        return "重名或变量数量达到上限";
    }
    Pipe_PjtVarValueRef(request.pjtnb);
    return "OK";
}

std::string PjtDleVar(const Request& request) {
    if (ProjectVarDle(ProjectNameGet(request.pjtnb), request.messages.c_str()) == 0) return "找不到变量名";
    Pipe_PjtVarValueRef(request.pjtnb);
    return "OK";
}

}  // namespace vorn
