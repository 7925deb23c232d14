// AddModule and AddNode: place one new element.

#include <cstdint>
#include <string>

#include "commands/handlers.h"
#include "commands/request_fields.h"
#include "elements/node_kind.h"
#include "elements/view_refresh.h"
#include "engine/vorn_core.h"
#include "text/ansi_to_utf8.h"

namespace vorn {

namespace {

/// The new element as the request describes it.
struct NewElement {
    int number = -1;  ///< negative when the table is full
    int type = -1;    ///< module type number or node kind, negative when not found
    int page = 0;
    int x = 0;  ///< grid units
    int z = 0;
    std::string name{};  ///< the type's name, as a check
};

/// What differs between the two commands once their fields are read.
struct Placement {
    int kind;
    const char* full;
    const char* notFound;
    const char* nameDiffers;
    bool (*nameFits)(const NewElement&);
    bool (*add)(const char* project, int number, int type, int page, int x, int z);
    void (*identify)(int slot, int number, const char* id);
};

/// The catalogue's name of a module type may be given in UTF-8 or in its raw form.
bool ModuleNameFits(const NewElement& element) {
    const std::string name = ModuleNameGet(element.type);
    return element.name == AnsiToUtf8(name.c_str()) || element.name == name;
}

bool NodeNameFits(const NewElement& element) {
    return element.name == NodeTypeName(element.type);
}

constexpr Placement ModulePlacement{.kind = ModuleKind,
                                    .full = "模块数量已达到上限",
                                    .notFound = "找不到VornModuleID对应的模块,请核查VornModuleID",
                                    .nameDiffers = "DeviceName与VornModuleID对应不上,请重新核查",
                                    .nameFits = ModuleNameFits,
                                    .add = ProjectAddModule,
                                    .identify = ModuleInstanceIDSet};

constexpr Placement NodePlacement{.kind = NodeKind,
                                  .full = "节点数量已达到上限",
                                  .notFound = "找不到VornModuleID对应的节点,请核查VornModuleID",
                                  .nameDiffers = "NodeName与VornModuleID对应不上,请重新核查",
                                  .nameFits = NodeNameFits,
                                  .add = ProjectAddNode,
                                  .identify = NodeInstanceIDSet};

void PlaceRead(RequestFields& fields, NewElement& element) {
    RequestInt(fields, "PageNb", element.page);
    RequestPosition(fields, "PositionX", element.x, PositionForm::DoubleOrInt);
    RequestPosition(fields, "PositionZ", element.z, PositionForm::DoubleOrInt);
}

std::string ElementPlace(int pjtnb, const Placement& placement, const RequestFields& fields,
                         const NewElement& element) {
    if (element.type < 0) return placement.notFound;
    if (element.number < 0) return placement.full;
    if (fields.failed) return fields.reply;
    if (!placement.nameFits(element)) return placement.nameDiffers;

    GuiRefWait(pjtnb);
    if (!placement.add(ProjectNameGet(pjtnb), element.number, element.type, element.page, element.x,
                       element.z)) {
        return "出现莫名错误,请联系技术支持";
    }
    PjtRefWait(pjtnb);
    std::string id = InstanceIdText(placement.kind, element.number);
    placement.identify(pjtnb, element.number, id.c_str());
    return id;
}

}  // namespace

std::string AddModule(const Request& request) {
    // Asks for room in the table before it reads the request, and replies that there is none after it.
    NewElement element{.number = ProjectModuleNbCheck(request.pjtnb)};
    RequestFields fields;
    RequestParse(fields, request.messages);
    std::int64_t oneId = 0;
    if (RequestInt64(fields, "VornModuleID", oneId)) element.type = ModuleOneID_ToID(oneId);
    PlaceRead(fields, element);
    std::string typeTestedOnly;
    RequestText(fields, "ModelID", typeTestedOnly);
    RequestText(fields, "RoomID", typeTestedOnly);
    RequestText(fields, "DeviceName", element.name);
    return ElementPlace(request.pjtnb, ModulePlacement, fields, element);
}

std::string AddNode(const Request& request) {
    NewElement element{.number = ProjectNodeNbCheck(request.pjtnb)};
    RequestFields fields;
    RequestParse(fields, request.messages);
    int id = 0;
    if (RequestInt(fields, "VornModuleID", id)) element.type = NodeKindFromId(id);
    PlaceRead(fields, element);
    RequestText(fields, "NodeName", element.name);
    return ElementPlace(request.pjtnb, NodePlacement, fields, element);
}

}  // namespace vorn
