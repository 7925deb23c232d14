// DeleteMNL and MoveMN: take one element away, or put it elsewhere on its page.

#include <string>

#include "commands/handlers.h"
#include "commands/request_fields.h"
#include "elements/view_refresh.h"
#include "engine/vorn_core.h"

namespace vorn {

std::string DeleteMNL(const Request& request) {
    switch (request.midstate) {
        case ModuleKind:
            Pipe_DeleteModule(request.pjtnb, request.midnb);
            return "OK";
        case NodeKind:
            Pipe_DeleteNode(request.pjtnb, request.midnb);
            return "OK";
        case LinkKind:
            Pipe_DeleteLink(request.pjtnb, request.midnb);
            return "OK";
        default:
            return "跳转不可被删除";
    }
}

std::string MoveMN(const Request& request) {
    RequestFields fields;
    RequestParse(fields, request.messages);
    int x = 0;
    int z = 0;
    RequestPosition(fields, "PositionX", x, PositionForm::DoubleOnly);
    RequestPosition(fields, "PositionZ", z, PositionForm::DoubleOnly);
    if (fields.failed) return fields.reply;
    if (request.midstate != ModuleKind && request.midstate != NodeKind) {
        return "连线或跳转不可被移动,会跟随所连接的设备、节点移动";
    }

    const auto move = request.midstate == ModuleKind ? ProjectModuleXYSet : ProjectNodeXYSet;
    move(ProjectNameGet(request.pjtnb), request.midnb, x, z);
    PjtRefWait(request.pjtnb);
    return "OK";
}

}  // namespace vorn
