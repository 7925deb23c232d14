#include "standin/plant_picture.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace standin {

namespace {

constexpr int ModuleKind = 1;
constexpr int NodeKind = 2;
constexpr int JumpKind = 3;

// ---- What there is to draw ----

/// Where an element was put: its page and its index there.
struct Place {
    PlantPage* page = nullptr;
    std::size_t index = 0;
};

/// The pages of one project while they fill.
struct Pages {
    std::map<int, PlantPage> byNumber;
    std::map<std::pair<int, int>, Place> places;  ///< by kind and number
};

/// A module that is part of a connection has a length.
bool IsConnector(const ModuleType& type) {
    return ItemRow(type.items, "PL") >= 0;
}

std::size_t Append(PlantPage& page, PlantElement element) {
    page.elements.push_back(std::move(element));
    return page.elements.size() - 1;
}

std::string IdOf(const Element& element, std::string_view prefix, std::size_t number) {
    return element.instanceId.empty() ? std::string(prefix) + std::to_string(number) : element.instanceId;
}

void Enter(Pages& pages, const Element& element, int kind, std::size_t number, PlantElement drawn) {
    PlantPage& page = pages.byNumber[element.page];
    page.number = element.page;
    drawn.x = element.x;
    drawn.z = element.z;
    pages.places[{kind, static_cast<int>(number)}] = {&page, Append(page, std::move(drawn))};
}

void EnterElements(Pages& pages, const Project& project) {
    for (std::size_t number = 0; number < project.modules.rows.size(); ++number) {
        const Module& module = project.modules.rows[number];
        if (!module.inUse) continue;
        const ModuleType& type = Catalogue()[static_cast<std::size_t>(module.type)];
        Enter(pages, module, ModuleKind, number,
              {.shape = IsConnector(type) ? Shape::Connector : Shape::Device,
               .name = std::string(type.name),
               .id = IdOf(module, "MOD", number)});
    }
    for (std::size_t number = 0; number < project.nodes.rows.size(); ++number) {
        const Node& node = project.nodes.rows[number];
        if (!node.inUse) continue;
        Enter(pages, node, NodeKind, number,
              {.shape = Shape::Node, .kind = node.kind, .id = IdOf(node, "NOD", number)});
    }
}

/// A mark on the page of `place` for the other end of its link, which is not on that page.
std::size_t MarkFor(const Pages& pages, const Place& place, int kind, int number) {
    PlantElement mark{.shape = Shape::Mark, .id = "?"};
    if (kind == JumpKind) mark.id = "JMP" + std::to_string(number);
    const auto other = pages.places.find({kind, number});
    if (other != pages.places.end()) {
        mark.id = "→" + other->second.page->elements[other->second.index].id;
    }
    return Append(*place.page, std::move(mark));
}

void EnterLink(const Pages& pages, const LinkSxCache& link) {
    const auto upstream = pages.places.find({link.F_Sx, link.F_Nb});
    const auto downstream = pages.places.find({link.S_Sx, link.S_Nb});
    const Place from = upstream == pages.places.end() ? Place() : upstream->second;
    const Place to = downstream == pages.places.end() ? Place() : downstream->second;
    if (from.page == to.page) {
        if (from.page != nullptr) from.page->links.push_back({link.Type, from.index, to.index});
        return;
    }
    if (from.page != nullptr) {
        const std::size_t mark = MarkFor(pages, from, link.S_Sx, link.S_Nb);
        from.page->links.push_back({link.Type, from.index, mark});
    }
    if (to.page != nullptr) {
        const std::size_t mark = MarkFor(pages, to, link.F_Sx, link.F_Nb);
        to.page->links.push_back({link.Type, mark, to.index});
    }
}

// ---- The picture ----

struct Network {
    std::string_view name;
    std::string_view colour;
};

/// By type of link, and by kind of node.
constexpr std::array<Network, 4> Networks{{{"流体 FLUID", "#1f6fb4"},
                                           {"信息 INFO", "#2a9134"},
                                           {"电力 POWER", "#d1322d"},
                                           {"机械 MECH", "#8a5a20"}}};

constexpr double HeaderHeight = 92.0;
constexpr double PageTitleHeight = 30.0;
constexpr double LeastWidth = 760.0;
constexpr double LegendStep = 104.0;
constexpr int NamePlaces = 16;  ///< half-width places in a device's box
constexpr int IdPlaces = 18;
constexpr int SmallIdPlaces = 9;  ///< in a connector, a mark, and below a node

constexpr std::string_view PlainStyles =
    ".title{font-size:20px;font-weight:bold}.quiet{fill:#777}.page{font-size:14px;font-weight:bold}"
    ".frame{fill:none;stroke:#ddd}.device{fill:#f4f7fa;stroke:#44566c;stroke-width:1.5}"
    ".connector{fill:#fff;stroke:#8696a7}.mark{fill:#fff6d6;stroke:#b08a00;stroke-dasharray:3 2}"
    ".name{text-anchor:middle}.id{text-anchor:middle;font-size:10px;fill:#667}"
    ".small{text-anchor:middle;font-size:9px;fill:#445}.lx{stroke:#999;stroke-width:1.5;fill:none}";

std::string StyleNumber(char letter, int number) {
    const bool known = number >= 0 && number < static_cast<int>(Networks.size());
    return {letter, known ? static_cast<char>('0' + number) : 'x'};
}

/// The lines of a network (`l0`), its nodes (`n0`) and the arrow that its lines bear (`a0`).
std::string NetworkStyles() {
    std::string css(PlainStyles);
    for (std::size_t type = 0; type < Networks.size(); ++type) {
        const std::string number = std::to_string(type);
        const std::string colour(Networks[type].colour);
        css += ".l" + number + "{fill:none;stroke-width:1.8;stroke:" + colour + ";marker-mid:url(#a" +
               number + ")}.n" + number + "{stroke:#fff;stroke-width:1.5;fill:" + colour + "}";
    }
    return css;
}

void Arrows(std::string& svg) {
    svg += "<defs>";
    for (std::size_t type = 0; type < Networks.size(); ++type) {
        svg += "<marker id=\"a" + std::to_string(type) +
               "\" markerUnits=\"userSpaceOnUse\" markerWidth=\"9\" markerHeight=\"8\" refX=\"4\" "
               "refY=\"4\" orient=\"auto\"><path d=\"M0 0L9 4L0 8z\" fill=\"" +
               std::string(Networks[type].colour) + "\"/></marker>";
    }
    svg += "</defs>\n";
}

void AppendPoint(std::string& svg, Point point) {
    AppendLength(svg, point.x);
    svg += ' ';
    AppendLength(svg, point.y);
}

/// A line between the edges of two shapes, with a bend in its middle for the arrow.
void DrawLink(std::string& svg, const PlantPage& page, const PlantLink& link) {
    if (link.from == link.to) return;
    const PlantElement& upstream = page.elements[link.from];
    const PlantElement& downstream = page.elements[link.to];
    const Point from = ShapeEdge(upstream, downstream.at);
    const Point to = ShapeEdge(downstream, upstream.at);
    svg += "<path class=\"" + StyleNumber('l', link.type) + "\" d=\"M";
    AppendPoint(svg, from);
    svg += 'L';
    AppendPoint(svg, {(from.x + to.x) / 2, (from.y + to.y) / 2});
    svg += 'L';
    AppendPoint(svg, to);
    svg += "\"/>\n";
}

void DrawElement(std::string& svg, const PlantElement& element) {
    const Point at = element.at;
    const Point size = ShapeSizes[static_cast<std::size_t>(element.shape)];
    svg += "<g><title>" + XmlText(element.name + " " + element.id) + "</title>\n";
    switch (element.shape) {
        case Shape::Device:
            SvgBox(svg, at, size, 6, "device");
            SvgText(svg, {at.x, at.y - 3}, TextFitted(element.name, NamePlaces), "name");
            SvgText(svg, {at.x, at.y + 14}, TextFitted(element.id, IdPlaces), "id");
            break;
        case Shape::Connector:
            SvgBox(svg, at, size, 8, "connector");
            SvgText(svg, {at.x, at.y + 3}, TextFitted(element.id, SmallIdPlaces), "small");
            break;
        case Shape::Node:
            SvgCircle(svg, at, NodeRadius, StyleNumber('n', element.kind));
            SvgText(svg, {at.x, at.y + 17}, TextFitted(element.id, SmallIdPlaces), "small");
            break;
        case Shape::Mark:
            SvgBox(svg, at, size, 0, "mark");
            SvgText(svg, {at.x, at.y + 3}, TextFitted(element.id, SmallIdPlaces), "small");
            break;
    }
    svg += "</g>\n";
}

std::string Counts(const std::vector<PlantPage>& pages) {
    std::array<std::size_t, 4> shapes{};
    std::size_t links = 0;
    for (const PlantPage& page : pages) {
        links += page.links.size();
        for (const PlantElement& element : page.elements) ++shapes[static_cast<std::size_t>(element.shape)];
    }
    return "设备 " + std::to_string(shapes[0]) + " · 管线模块 " + std::to_string(shapes[1]) + " · 节点 " +
           std::to_string(shapes[2]) + " · 连线 " + std::to_string(links);
}

/// The project's name, what it holds, and the legend.
void Header(std::string& svg, std::string_view name, const std::vector<PlantPage>& pages) {
    SvgText(svg, {24, 34}, name, "title");
    SvgText(svg, {24 + 14.0 * TextPlaces(name) + 20, 34}, Counts(pages), "quiet");
    double x = 24;
    for (std::size_t type = 0; type < Networks.size(); ++type, x += LegendStep) {
        SvgLine(svg, {x, 62}, {x + 20, 62}, StyleNumber('l', static_cast<int>(type)));
        SvgCircle(svg, {x + 10, 62}, 5, StyleNumber('n', static_cast<int>(type)));
        SvgText(svg, {x + 26, 66}, Networks[type].name, "quiet");
    }
    SvgBox(svg, {x + 12, 62}, {24, 14}, 4, "device");
    SvgText(svg, {x + 30, 66}, "设备", "quiet");
    SvgBox(svg, {x + 84, 62}, {24, 12}, 6, "connector");
    SvgText(svg, {x + 102, 66}, "管线模块", "quiet");
    SvgBox(svg, {x + 180, 62}, {24, 12}, 0, "mark");
    SvgText(svg, {x + 198, 66}, "跳转", "quiet");
}

}  // namespace

std::vector<PlantPage> PlantPages(const Project& project) {
    Pages pages;
    EnterElements(pages, project);
    for (const LinkSxCache& link : project.links.rows) {
        if (link.InUse) EnterLink(pages, link);
    }
    std::vector<PlantPage> ordered;
    for (auto& [number, page] : pages.byNumber) ordered.push_back(std::move(page));
    return ordered;
}

std::string PlantSvg(std::string_view name, const std::vector<PlantPage>& pages) {
    const bool titled = pages.size() > 1;
    double width = std::max(LeastWidth, 24 + 14.0 * TextPlaces(name) + 360);
    double height = HeaderHeight + (pages.empty() ? 80 : 0);
    for (const PlantPage& page : pages) {
        width = std::max(width, page.size.x + 32);
        height += page.size.y + (titled ? PageTitleHeight : 0) + 16;
    }
    std::string svg;
    SvgBegin(svg, width, height, NetworkStyles());
    Arrows(svg);
    Header(svg, name, pages);
    double top = HeaderHeight;
    if (pages.empty()) SvgText(svg, {24, top + 24}, "项目中还没有设备和节点", "quiet");
    for (const PlantPage& page : pages) {
        if (titled) SvgText(svg, {24, top + 18}, "页 " + std::to_string(page.number), "page");
        if (titled) top += PageTitleHeight;
        svg += "<g transform=\"translate(16 ";
        AppendLength(svg, top);
        svg += ")\">\n";
        SvgBox(svg, {page.size.x / 2, page.size.y / 2}, page.size, 6, "frame");
        for (const PlantLink& link : page.links) DrawLink(svg, page, link);
        for (const PlantElement& element : page.elements) DrawElement(svg, element);
        svg += "</g>\n";
        top += page.size.y + 16;
    }
    SvgEnd(svg);
    return svg;
}

}  // namespace standin
