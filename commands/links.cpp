// AddLink: joins two ports, directly or through a new pipe or wire module.

#include <cstdint>
#include <string>

#include "commands/handlers.h"
#include "commands/request_fields.h"
#include "elements/view_refresh.h"
#include "engine/vorn_core.h"
#include "engine/vorn_type_ids.h"

namespace vorn {

namespace {

/// One end of the link.
struct End {
    std::string instanceId{};
    int port = 0;
    int kind = NoKind;
    int number = -1;
    bool flag = false;  ///< the port's flag; false for all but a module
};

/// What differs between the two sides of a link.
struct Side {
    bool outlet;        ///< the direction that a module's port must have
    int firstNodePort;  ///< of a node's ports on this side
    int nodePortsEnd;   ///< above the last
    const char* wrongDirection;
    const char* taken;  ///< the port number follows
    const char* nodeFull;
};

constexpr Side Upstream{.outlet = true,
                        .firstNodePort = NodeInletCount,
                        .nodePortsEnd = PortsPerElement,
                        .wrongDirection = "连线错误,上游端口只能是出口性质",
                        .taken = "连线错误,上游端口已连接:",
                        .nodeFull = "连线错误,此节点的出口已被占满"};
constexpr Side Downstream{.outlet = false,
                          .firstNodePort = 0,
                          .nodePortsEnd = NodeInletCount,
                          .wrongDirection = "连线错误,下游端口只能是入口性质",
                          .taken = "连线错误,下游端口已连接",
                          .nodeFull = "连线错误,此节点的入口已被占满"};

struct LinkRequest {
    int pjtnb = -1;
    int type = PipeLink;
    int page = 0;
    End upstream{};
    End downstream{};
};

void PortRangeCheck(RequestFields& fields, const char* name, int port) {
    static_assert(PortsPerElement == 16, "the reply names the ports");
    if (port >= 0 && port < PortsPerElement) return;
    RequestFail(fields, std::string(name) + "端口号超出范围,仅支持编号0~15共16个端口");
}

void LinkRead(RequestFields& fields, LinkRequest& link) {
    RequestInt(fields, "Type", link.type);
    RequestInt(fields, "PageNb", link.page);
    RequestText(fields, "F_InstanceID", link.upstream.instanceId);
    RequestInt(fields, "F_PortNb", link.upstream.port);
    RequestText(fields, "S_InstanceID", link.downstream.instanceId);
    RequestInt(fields, "S_PortNb", link.downstream.port);
    PortRangeCheck(fields, "F_PortNb", link.upstream.port);
    PortRangeCheck(fields, "S_PortNb", link.downstream.port);
}

/// Tests a module's port, and reads its flag whatever the tests say.
void ModulePortCheck(RequestFields& fields, int pjtnb, const Side& side, End& end) {
    if (ProjectModulePortInOutGet(pjtnb, end.number, end.port) != side.outlet) {
        RequestFail(fields, side.wrongDirection);
    } else if (ProjectModulePortCanBeLink(pjtnb, end.number, end.port)) {
        RequestFail(fields, side.taken + std::to_string(end.port));
    }
    end.flag = ProjectModulePortType_2_Get(pjtnb, end.number, end.port);
}

/// A client does not choose the port of a node: the lowest free one on the link's side is taken.
void NodePortChoose(RequestFields& fields, int pjtnb, const Side& side, End& end) {
    for (end.port = side.firstNodePort; end.port < side.nodePortsEnd; ++end.port) {
        if (!ProjectNodePortCanBeLink(pjtnb, end.number, end.port)) return;
    }
    end.port = -1;
    RequestFail(fields, side.nodeFull);
}

/// Finds the end's element and port. Jumps and links are taken with the port as given.
void EndResolve(RequestFields& fields, int pjtnb, const Side& side, End& end) {
    InstanceIdParse(end.instanceId, end.kind, end.number);
    if (end.kind == NoKind || end.number < 0) {
        RequestFail(fields, "InstanceID不识别,请重新核查InstanceID");
    } else if (end.kind == ModuleKind) {
        ModulePortCheck(fields, pjtnb, side, end);
    } else if (end.kind == NodeKind) {
        NodePortChoose(fields, pjtnb, side, end);
    }
}

/// Adds one link between two ends and gives its identity, empty when the table is full.
std::string EndsJoin(const LinkRequest& link, const End& upstream, const End& downstream) {
    const int number = ProjectLinkNbCheck(link.pjtnb);
    if (number < 0) return {};
    ProjectAddLink(ProjectNameGet(link.pjtnb), number,
                   {.InUse = true,
                    .Type = link.type,
                    .PageNb = link.page,
                    .F_Sx = upstream.kind,
                    .F_Nb = upstream.number,
                    .F_PortNb = upstream.port,
                    .F_Type2 = upstream.flag,
                    .S_Sx = downstream.kind,
                    .S_Nb = downstream.number,
                    .S_PortNb = downstream.port,
                    .S_Type2 = downstream.flag});
    return InstanceIdText(LinkKind, number);
}

std::string DirectJoin(const LinkRequest& link, const char* full) {
    std::string id = EndsJoin(link, link.upstream, link.downstream);
    if (id.empty()) return full;
    PjtRefWait(link.pjtnb);
    return id;
}

/// The module that a link between two unflagged ends gets in its middle, 0 for a type that gets none.
std::int64_t MiddleModuleOf(int linkType) {
    if (linkType == PipeLink) return PipeOneID;
    if (linkType == WireLink) return WireOneID;
    return 0;
}

/// Where an inserted module stands, in grid units of both directions.
constexpr int MiddleModulePosition = 50;
constexpr int MiddleModuleInlet = 0;
constexpr int MiddleModuleOutlet = 1;

constexpr const char* NoRoom = "请暂停,连线数量、模块数量已达到上限。或者缺少管道、导线模块,请联系技术支持";

std::string ModuleJoin(const LinkRequest& link, std::int64_t oneId) {
    const int type = ModuleOneID_ToID(oneId);
    const int number = ProjectModuleNbCheck(link.pjtnb);
    if (type < 0 || number < 0) return NoRoom;
    if (!ProjectAddModule(ProjectNameGet(link.pjtnb), number, type, link.page, MiddleModulePosition,
                          MiddleModulePosition)) {
        return "出现莫名错误,请联系技术支持";
    }
    const std::string id = InstanceIdText(ModuleKind, number);
    ModuleInstanceIDSet(link.pjtnb, number, id.c_str());

    const End inlet{.port = MiddleModuleInlet, .kind = ModuleKind, .number = number, .flag = true};
    const End outlet{.port = MiddleModuleOutlet, .kind = ModuleKind, .number = number, .flag = true};
    std::string reply = "OK,但是新增了一个模块、链接了两条线:" + id;
    for (const std::string& linkId :
         {EndsJoin(link, link.upstream, inlet), EndsJoin(link, outlet, link.downstream)}) {
        if (!linkId.empty()) reply += "、" + linkId;
    }
    PjtRefWait(link.pjtnb);
    return reply;
}

}  // namespace

std::string AddLink(const Request& request) {
    RequestFields fields;
    RequestParse(fields, request.messages);
    LinkRequest link{.pjtnb = request.pjtnb};
    LinkRead(fields, link);
    if (fields.failed) return fields.reply;

    EndResolve(fields, request.pjtnb, Upstream, link.upstream);
    EndResolve(fields, request.pjtnb, Downstream, link.downstream);
    if (fields.failed) return fields.reply;

    GuiRefWait(request.pjtnb);
    if (link.upstream.flag || link.downstream.flag) return DirectJoin(link, "Nb To Be Max");
    const std::int64_t middle = MiddleModuleOf(link.type);
    return middle == 0 ? DirectJoin(link, NoRoom) : ModuleJoin(link, middle);
}

}  // namespace vorn
