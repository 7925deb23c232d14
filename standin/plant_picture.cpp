// The picture of a project.

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "standin/drawing.h"
#include "standin/svg.h"

namespace standin {

namespace {

struct Network {
    std::string_view name;
    std::string_view colour;
};

/// By type of link and by kind of node; the last stands for any other.
constexpr std::array<Network, NodeKindCount + 1> Networks{{{"流体 FLUID", "#1f6fb4"},
                                                           {"信息 INFO", "#2a9134"},
                                                           {"电力 POWER", "#d1322d"},
                                                           {"机械 MECH", "#8a5a20"},
                                                           {"其他 OTHER", "#777777"}}};

struct Shape {
    Point size;
    double corner;
};
constexpr Shape Device{{76, 30}, 2};
constexpr Shape Pipe{{26, 10}, 5};
constexpr Shape Junction{{14, 14}, 7};

constexpr Point Margin{150, 70};
constexpr Point Beside{60, -40};  ///< from an element to the loose end of a pipe
constexpr double HeaderHeight = 70.0;
constexpr double LongestSide = 8000.0;

constexpr std::string_view Styles =
    ".title{font-size:20px}rect{stroke:#456}.type,.id{text-anchor:middle}"
    ".id{font-size:10px;stroke:#fff;stroke-width:3px;paint-order:stroke}";

struct Spot {
    const Shape* shape = &Junction;
    std::string_view colour = "#f4f7fa";
    std::string_view type{};
    std::string id{};
    int page = 0;
    Point at{};                          ///< grid units, and pixels once the pages are arranged
    std::vector<const Spot*> between{};  ///< of a pipe, a wire or a jump: what it joins
};

/// By kind and number.
using Spots = std::map<std::pair<int, int>, Spot>;

/// What a page shows, in grid units.
struct Page {
    Point low{1e10, 1e10};
    Point high{-1e10, -1e10};
};

std::string_view ColourOf(int network) {
    const bool known = network >= 0 && network < NodeKindCount;
    return Networks[static_cast<std::size_t>(known ? network : NodeKindCount)].colour;
}

Spot SpotOf(const Module& module) {
    const ModuleType& type = *ModuleTypeFind(module.type);
    return {.shape = ItemRow(type.items, "PL") < 0 ? &Device : &Pipe, .type = type.name};
}

Spot SpotOf(const Node& node) {
    return {.colour = ColourOf(node.kind)};
}

template <typename Row>
void Take(Spots& spots, int kind, const std::vector<Row>& rows, const char* prefix) {
    for (std::size_t number = 0; number < rows.size(); ++number) {
        const Row& row = rows[number];
        if (!row.inUse) continue;
        Spot& spot = spots[{kind, static_cast<int>(number)}] = SpotOf(row);
        spot.page = row.page;
        spot.at = {static_cast<double>(row.x), static_cast<double>(row.z)};
        spot.id = row.instanceId.empty() ? prefix + std::to_string(number) : row.instanceId;
    }
}

/// An end of a link; null for one that is not there. A jump is there as soon as a link names it.
Spot* EndOf(Spots& spots, int kind, int number) {
    const auto found = spots.find({kind, number});
    if (found != spots.end()) return &found->second;
    if (kind != JumpKind) return nullptr;
    Spot& jump = spots[{kind, number}];
    jump.shape = &Pipe;
    jump.id = "JMP" + std::to_string(number);
    return &jump;
}

void Join(Spots& spots, const LinkSxCache& link) {
    Spot* from = EndOf(spots, link.F_Sx, link.F_Nb);
    Spot* to = EndOf(spots, link.S_Sx, link.S_Nb);
    if (from == nullptr || to == nullptr) return;
    if (from->shape == &Pipe) from->between.push_back(to);
    if (to->shape == &Pipe) to->between.push_back(from);
}

/// Turns grid units into pixels, one page below the other, titles the pages, and gives the size of the
/// picture.
Point Arrange(Spots& spots, std::string& svg) {
    std::map<int, Page> pages;
    for (const auto& [key, spot] : spots) {
        if (!spot.between.empty()) continue;
        auto& [low, high] = pages[spot.page];
        low = {std::min(low.x, spot.at.x), std::min(low.y, spot.at.y)};
        high = {std::max(high.x, spot.at.x), std::max(high.y, spot.at.y)};
    }
    Point size{760, HeaderHeight};
    for (const auto& [number, page] : pages) {
        const Point span{page.high.x - page.low.x, page.high.y - page.low.y};
        const double scale = LongestSide / std::max({span.x, span.y, LongestSide});
        for (auto& [key, spot] : spots) {
            if (spot.page != number || !spot.between.empty()) continue;
            spot.at = {Margin.x + (spot.at.x - page.low.x) * scale,
                       size.y + Margin.y + (spot.at.y - page.low.y) * scale};
        }
        SvgText(svg, {20, size.y + 20}, "page", "页 " + std::to_string(number));
        size.x = std::max(size.x, span.x * scale + 2 * Margin.x);
        size.y += span.y * scale + 2 * Margin.y;
    }
    return size;
}

/// Puts pipes and jumps into the middle of what they join, those of a chain one behind the other.
void Centre(Spots& spots) {
    constexpr int Rounds = 30;
    for (int round = 0; round < Rounds; ++round) {
        for (auto& [key, spot] : spots) {
            if (spot.between.empty()) continue;
            Point sum = spot.between.size() == 1 ? Beside : Point{};
            for (const Spot* other : spot.between) sum = {sum.x + other->at.x, sum.y + other->at.y};
            const double count = static_cast<double>(spot.between.size());
            spot.at = {sum.x / count, sum.y / count};
        }
    }
}

/// A line with the arrow of its colour in the middle.
void DrawLine(std::string& svg, std::string_view colour, Point from, Point to) {
    const Point middle{(from.x + to.x) / 2, (from.y + to.y) / 2};
    SvgPut(svg, "<path stroke=\"", colour, "\" marker-mid=\"url(#n", colour.substr(1), ")\" d=\"M", from.x,
           " ", from.y, "L", middle.x, " ", middle.y, "L", to.x, " ", to.y, "\"/>\n");
}

void DrawSpot(std::string& svg, const Spot& spot) {
    const auto& [size, corner] = *spot.shape;
    SvgPut(svg, "<rect x=\"", spot.at.x - size.x / 2, "\" y=\"", spot.at.y - size.y / 2, "\" width=\"",
           size.x, "\" height=\"", size.y, "\" rx=\"", corner, "\" fill=\"", spot.colour, "\"/>\n");
    if (spot.shape == &Device) SvgText(svg, {spot.at.x, spot.at.y + 4}, "type", spot.type);
    SvgText(svg, {spot.at.x, spot.at.y + size.y / 2 + 11}, "id", spot.id);
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
        DrawLine(svg, colour, {x, 52}, {x + 40, 52});
        SvgText(svg, {x + 48, 56}, "legend", network);
        x += 150;
    }
}

}  // namespace

std::string PlantSvg(const Project& project) {
    Spots spots;
    Take(spots, ModuleKind, project.modules.rows, "MOD");
    Take(spots, NodeKind, project.nodes.rows, "NOD");
    for (const LinkSxCache& link : project.links.rows) {
        if (link.InUse) Join(spots, link);
    }
    std::string svg;
    DrawHeader(svg, project.name);
    const Point size = Arrange(spots, svg);
    Centre(spots);
    for (const LinkSxCache& link : project.links.rows) {
        const Spot* from = link.InUse ? EndOf(spots, link.F_Sx, link.F_Nb) : nullptr;
        const Spot* to = link.InUse ? EndOf(spots, link.S_Sx, link.S_Nb) : nullptr;
        if (from != nullptr && to != nullptr) DrawLine(svg, ColourOf(link.Type), from->at, to->at);
    }
    for (const bool pipes : {true, false}) {
        for (const auto& [key, spot] : spots) {
            if ((spot.shape == &Pipe) == pipes) DrawSpot(svg, spot);
        }
    }
    return SvgWhole(size, Styles, svg);
}

}  // namespace standin
