#include "standin/plant_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <map>
#include <utility>

#include "standin/values.h"

namespace standin {

namespace {

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
constexpr double LegendStep = 110.0;
constexpr double TitlePlace = 12.5;  ///< pixels of a half-width place of the title
constexpr double BesideStep = 20.0;  ///< between links that join the same two elements
constexpr double CornerLength = 36.0;
constexpr double Detours[] = {20, 36, 52, 70};  ///< how far aside a link may go to find its way free
constexpr std::size_t DetourElements = 500;     ///< on a fuller page each link goes straight
constexpr int NamePlaces = 16;                  ///< half-width places in a device's box
constexpr int IdPlaces = 18;
constexpr int SmallIdPlaces = 9;  ///< in a connector, a mark, and below a node

constexpr std::string_view PlainStyles =
    ".title{font-size:20px;font-weight:bold}.quiet{fill:#777}.page{font-size:14px;font-weight:bold}"
    ".frame{fill:none;stroke:#ddd}.device{fill:#f4f7fa;stroke:#44566c;stroke-width:1.5}"
    ".connector{fill:#fff;stroke:#8696a7}.mark{fill:#fff6d6;stroke:#b08a00;stroke-dasharray:3 2}"
    ".name{text-anchor:middle}.id{text-anchor:middle;font-size:10px;fill:#667}"
    ".small{text-anchor:middle;font-size:9px;fill:#445}"
    ".label{text-anchor:middle;font-size:9px;fill:#445;stroke:#fff;stroke-width:3px;paint-order:stroke}.lx{"
    "stroke:#999;stroke-width:1.5;fill:none}";

std::string StyleNumber(char letter, int number) {
    const bool known = number >= 0 && number < static_cast<int>(Networks.size());
    return {letter, known ? static_cast<char>('0' + number) : 'x'};
}

/// The lines of a network (`l0`), its arrows (`a0`) and its nodes (`n0`).
std::string NetworkStyles() {
    std::string css(PlainStyles);
    const auto rule = [&css](char letter, int type, std::string_view properties) {
        css += '.';
        css += StyleNumber(letter, type);
        css += properties;
        css += Networks[static_cast<std::size_t>(type)].colour;
        css += '}';
    };
    for (int type = 0; type < static_cast<int>(Networks.size()); ++type) {
        rule('l', type, "{fill:none;stroke-width:1.8;stroke:");
        rule('a', type, "{fill:");
        rule('n', type, "{stroke:#fff;stroke-width:1.5;fill:");
    }
    return css;
}

void AppendPoint(std::string& svg, Point point) {
    AppendLength(svg, point.x);
    svg += ' ';
    AppendLength(svg, point.y);
}

void DrawPath(std::string& svg, const std::string& style, std::initializer_list<Point> points) {
    svg += "<path class=\"" + style + "\" d=\"";
    char step = 'M';
    for (const Point point : points) {
        svg += std::exchange(step, 'L');
        AppendPoint(svg, point);
    }
    svg += "\"/>\n";
}

/// A line between the edges of two shapes, `aside` pixels off the straight one but for its ends, with an
/// arrow in its middle.
void DrawLink(std::string& svg, const PlantPage& page, const PlantLink& link, double aside) {
    const Point from = ShapeEdge(page.elements[link.from], page.elements[link.to].at);
    const Point to = ShapeEdge(page.elements[link.to], page.elements[link.from].at);
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (length < 1.0) return;
    const Point along{(to.x - from.x) / length, (to.y - from.y) / length};
    const auto at = [from, along](double way, double off) {
        return Point{from.x + along.x * way - along.y * off, from.y + along.y * way + along.x * off};
    };
    const double corner = std::min(length * 0.3, CornerLength);
    DrawPath(svg, StyleNumber('l', link.type), {from, at(corner, aside), at(length - corner, aside), to});
    const double middle = length / 2;
    DrawPath(svg, StyleNumber('a', link.type),
             {at(middle + 5, aside), at(middle - 4, aside - 4), at(middle - 4, aside + 4)});
}

/// True when the line of a link, drawn `aside`, runs through the shape of an element that it does not join.
bool Obstructed(const PlantPage& page, const PlantLink& link, double aside) {
    Point from = page.elements[link.from].at;
    Point to = page.elements[link.to].at;
    const double length = std::max(std::hypot(to.x - from.x, to.y - from.y), 1.0);
    const Point off{-(to.y - from.y) / length * aside, (to.x - from.x) / length * aside};
    from = {from.x + off.x, from.y + off.y};
    to = {to.x + off.x, to.y + off.y};
    const auto obstructs = [&](const PlantElement& element) {
        if (&element == &page.elements[link.from] || &element == &page.elements[link.to]) return false;
        // Seen with the shape as a circle of radius 1 around the origin.
        const Point size = ShapeSize(element);
        const Point start{(from.x - element.at.x) * 2 / size.x, (from.y - element.at.y) * 2 / size.y};
        const Point way{(to.x - from.x) * 2 / size.x, (to.y - from.y) * 2 / size.y};
        const double square = std::max(way.x * way.x + way.y * way.y, 1e-9);
        const double part = std::clamp(-(start.x * way.x + start.y * way.y) / square, 0.0, 1.0);
        return std::hypot(start.x + way.x * part, start.y + way.y * part) < 1.0;
    };
    return std::any_of(page.elements.begin(), page.elements.end(), obstructs);
}

/// How far aside a link goes so that nothing is in its way; `aside` itself where that does not help.
double Detour(const PlantPage& page, const PlantLink& link, double aside) {
    if (page.elements.size() > DetourElements || !Obstructed(page, link, aside)) return aside;
    const double side = link.from < link.to ? 1.0 : -1.0;
    for (const double detour : Detours) {
        for (const double way : {detour * side, -detour * side}) {
            if (!Obstructed(page, link, aside + way)) return aside + way;
        }
    }
    return aside;
}

/// Links that join the same two elements, and links with another element in their way, go aside, so that
/// each is seen.
void DrawLinks(std::string& svg, const PlantPage& page) {
    std::map<std::pair<std::size_t, std::size_t>, int> drawn;
    for (const PlantLink& link : page.links) {
        const int before = drawn[std::minmax(link.from, link.to)]++;
        const double side = (before % 2 == 1) == (link.from < link.to) ? 1.0 : -1.0;
        const int besides = (before + 1) / 2;
        DrawLink(svg, page, link, Detour(page, link, besides * BesideStep * side));
    }
}

void DrawElement(std::string& svg, const PlantElement& element) {
    const Point at = element.at;
    const Point size = ShapeSize(element);
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
            SvgText(svg, {at.x, at.y + 17}, TextFitted(element.id, SmallIdPlaces), "label");
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
    SvgText(svg, {24 + TitlePlace * TextPlaces(name) + 20, 34}, Counts(pages), "quiet");
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
    double width = std::max(LeastWidth, 24 + TitlePlace * TextPlaces(name) + 360);
    double height = HeaderHeight + (pages.empty() ? 80 : 0);
    for (const PlantPage& page : pages) {
        width = std::max(width, page.size.x + 32);
        height += page.size.y + (titled ? PageTitleHeight : 0) + 16;
    }
    std::string svg;
    SvgBegin(svg, width, height, NetworkStyles());
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
        DrawLinks(svg, page);
        for (const PlantElement& element : page.elements) DrawElement(svg, element);
        svg += "</g>\n";
        top += page.size.y + 16;
    }
    SvgEnd(svg);
    return svg;
}

}  // namespace standin
