// The picture of a project.

#include <algorithm>
#include <array>
#include <map>

#include "standin/drawing.h"
#include "standin/svg.h"

namespace standin {

namespace {

struct Network {
    std::string_view name;
    std::string_view colour;
};

/// By type of link and by kind of node.
constexpr std::array<Network, NodeKindCount> Networks{{{"流体 FLUID", "#1f6fb4"},
                                                       {"信息 INFO", "#2a9134"},
                                                       {"电力 POWER", "#d1322d"},
                                                       {"机械 MECH", "#8a5a20"}}};

struct Shape {
    Point size;
    double corner;
};
constexpr Shape Device{{76, 30}, 2};
constexpr Shape Pipe{{26, 10}, 5};
constexpr Shape Junction{{14, 14}, 7};

constexpr Point Margin{110, 60};
constexpr Point OffPage{80, -40};  ///< from an element to the end of a line that leads off its page
constexpr double HeaderHeight = 70.0;
constexpr double LongestSide = 8000.0;

constexpr std::string_view Styles =
    ".title{font-size:20px}rect{stroke:#456}.type,.id,.name{text-anchor:middle}"
    ".id,.name{font-size:10px;stroke:#fff;stroke-width:3px;paint-order:stroke}";

/// What a page shows, in grid units, and where it stands in the picture.
struct Page {
    Point low{1e10, 1e10};
    Point high{-1e10, -1e10};
    double top = 0.0;
    double scale = 1.0;  ///< pixels for a grid unit

    void Show(Point at) {
        low = {std::min(low.x, at.x), std::min(low.y, at.y)};
        high = {std::max(high.x, at.x), std::max(high.y, at.y)};
    }
    Point Pixels(Point at) const {
        return {Margin.x + (at.x - low.x) * scale, top + Margin.y + (at.y - low.y) * scale};
    }
};

struct Spot {
    const Shape* shape = nullptr;  ///< null for a vacant number
    int page = 0;
    Point at{};  ///< grid units
    std::string_view colour = "#f4f7fa";
    std::string_view type{};
    std::string id{};
    Point joined{};  ///< the sum of the places of what a pipe joins, and how many they are
    int joints = 0;
};

struct Line {
    int page;
    int type;
    Point from;  ///< grid units
    Point to;
    std::string name;
};

std::string_view ColourOf(int network) {
    const bool known = network >= 0 && network < NodeKindCount;
    return known ? Networks[static_cast<std::size_t>(network)].colour : "#999";
}

/// The picture while it is made.
struct Picture {
    std::vector<Spot> modules;  ///< by number
    std::vector<Spot> nodes;
    std::vector<Line> lines{};
    std::map<int, Page> pages{};
    std::string svg{};

    Spot* Find(int kind, int number) {
        auto& spots = kind == NodeKind ? nodes : modules;
        if (kind != NodeKind && kind != ModuleKind) return nullptr;
        if (number < 0 || number >= static_cast<int>(spots.size())) return nullptr;
        Spot& spot = spots[static_cast<std::size_t>(number)];
        return spot.shape == nullptr ? nullptr : &spot;
    }
};

Spot SpotOf(const Module& module) {
    const ModuleType& type = *ModuleTypeFind(module.type);
    return {.shape = ItemRow(type.items, "PL") < 0 ? &Device : &Pipe, .type = type.name};
}

Spot SpotOf(const Node& node) {
    return {.shape = &Junction, .colour = ColourOf(node.kind)};
}

template <typename Row>
std::vector<Spot> SpotsOf(const std::vector<Row>& rows, const char* prefix) {
    std::vector<Spot> spots;
    for (const Row& row : rows) {
        Spot& spot = spots.emplace_back();
        if (!row.inUse) continue;
        spot = SpotOf(row);
        spot.page = row.page;
        spot.at = {static_cast<double>(row.x), static_cast<double>(row.z)};
        spot.id = row.instanceId.empty() ? prefix + std::to_string(spots.size() - 1) : row.instanceId;
    }
    return spots;
}

void CentrePipes(Picture& picture, const Project& project) {
    const auto join = [](Spot& spot, Point other) {
        spot.joined = {spot.joined.x + other.x, spot.joined.y + other.y};
        ++spot.joints;
    };
    for (const LinkSxCache& row : project.links.rows) {
        Spot* from = picture.Find(row.F_Sx, row.F_Nb);
        Spot* to = picture.Find(row.S_Sx, row.S_Nb);
        if (!row.InUse || from == nullptr || to == nullptr) continue;
        join(*from, to->at);
        join(*to, from->at);
    }
    for (Spot& spot : picture.modules) {
        if (spot.shape != &Pipe || spot.joints == 0) continue;
        spot.at = {spot.joined.x / spot.joints, spot.joined.y / spot.joints};
    }
}

void PlaceLine(Picture& picture, const LinkSxCache& row) {
    const Spot* from = picture.Find(row.F_Sx, row.F_Nb);
    const Spot* to = picture.Find(row.S_Sx, row.S_Nb);
    if (from != nullptr && to != nullptr && from->page == to->page) {
        picture.lines.push_back({from->page, row.Type, from->at, to->at, ""});
        return;
    }
    const auto nameOf = [](const Spot* spot, int jump) {
        return spot == nullptr ? "JMP" + std::to_string(jump) : spot->id;
    };
    if (from != nullptr) {
        const Point end{from->at.x + OffPage.x, from->at.y + OffPage.y};
        picture.lines.push_back({from->page, row.Type, from->at, end, "→ " + nameOf(to, row.S_Nb)});
    }
    if (to != nullptr) {
        const Point end{to->at.x - OffPage.x, to->at.y + OffPage.y};
        picture.lines.push_back({to->page, row.Type, end, to->at, nameOf(from, row.F_Nb) + " →"});
    }
}

/// Puts the pages one below the other, and gives the size of the picture.
Point Arrange(Picture& picture) {
    for (const auto* spots : {&picture.modules, &picture.nodes}) {
        for (const Spot& spot : *spots) {
            if (spot.shape != nullptr) picture.pages[spot.page].Show(spot.at);
        }
    }
    for (const Line& line : picture.lines) {
        picture.pages[line.page].Show(line.from);
        picture.pages[line.page].Show(line.to);
    }
    Point size{620, HeaderHeight};
    for (auto& [number, page] : picture.pages) {
        const Point span{page.high.x - page.low.x, page.high.y - page.low.y};
        page.scale = LongestSide / std::max({span.x, span.y, LongestSide});
        page.top = size.y;
        size.x = std::max(size.x, span.x * page.scale + 2 * Margin.x);
        size.y += span.y * page.scale + 2 * Margin.y;
    }
    return size;
}

/// A line with the arrow of its colour in the middle.
void DrawLine(std::string& svg, std::string_view colour, Point from, Point to, std::string_view name) {
    const Point middle{(from.x + to.x) / 2, (from.y + to.y) / 2};
    SvgPut(svg, "<path stroke=\"", colour, "\" marker-mid=\"url(#n", colour.substr(1), ")\" d=\"M", from.x,
           " ", from.y, "L", middle.x, " ", middle.y, "L", to.x, " ", to.y, "\"/>\n");
    if (!name.empty()) SvgText(svg, {middle.x, middle.y - 8}, "name", name);
}

void DrawSpot(std::string& svg, const Spot& spot, Point at) {
    const auto& [size, corner] = *spot.shape;
    SvgPut(svg, "<rect x=\"", at.x - size.x / 2, "\" y=\"", at.y - size.y / 2, "\" width=\"", size.x,
           "\" height=\"", size.y, "\" rx=\"", corner, "\" fill=\"", spot.colour, "\"/>\n");
    if (spot.shape == &Device) SvgText(svg, {at.x, at.y + 4}, "type", spot.type);
    SvgText(svg, {at.x, at.y + size.y / 2 + 11}, "id", spot.id);
}

/// The project's name, and the legend with the arrows that all lines use.
void DrawHeader(std::string& svg, std::string_view name) {
    SvgText(svg, {20, 30}, "title", name);
    double x = 20;
    for (const auto& [network, colour] : Networks) {
        SvgPut(
            svg, "<marker id=\"n", colour.substr(1), "\" markerUnits=\"userSpaceOnUse\" markerWidth=\"14\" ",
            "markerHeight=\"10\" refX=\"7\" refY=\"5\" orient=\"auto\"><path d=\"M0 0L14 5L0 10Z\" fill=\"",
            colour, "\"/></marker>\n");
        DrawLine(svg, colour, {x, 52}, {x + 40, 52}, "");
        SvgText(svg, {x + 48, 56}, "legend", network);
        x += 150;
    }
}

}  // namespace

std::string PlantSvg(const Project& project) {
    Picture picture{SpotsOf(project.modules.rows, "MOD"), SpotsOf(project.nodes.rows, "NOD")};
    CentrePipes(picture, project);
    for (const LinkSxCache& row : project.links.rows) {
        if (row.InUse) PlaceLine(picture, row);
    }
    const Point size = Arrange(picture);
    DrawHeader(picture.svg, project.name);
    auto& pages = picture.pages;
    for (const auto& [number, page] : pages) {
        SvgText(picture.svg, {20, page.top + 20}, "page", "页 " + std::to_string(number));
    }
    for (const auto& [page, type, from, to, name] : picture.lines) {
        DrawLine(picture.svg, ColourOf(type), pages[page].Pixels(from), pages[page].Pixels(to), name);
    }
    for (const auto* spots : {&picture.nodes, &picture.modules}) {
        for (const Spot& spot : *spots) {
            if (spot.shape != nullptr) DrawSpot(picture.svg, spot, pages[spot.page].Pixels(spot.at));
        }
    }
    return SvgWhole(size, Styles, picture.svg);
}

}  // namespace standin
