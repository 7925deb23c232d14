#include "standin/plant_layout.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "standin/plant_separate.h"

namespace standin {

namespace {

constexpr double Margin = 56.0;
constexpr double ConnectorGap = 14.0;  ///< between connectors that follow each other
constexpr std::size_t RoomyChain = 6;  ///< connectors between two neighbours that room is made for
constexpr double ParallelGap = 40.0;   ///< between the chains that join the same two elements
constexpr double RowGap = 24.0;        ///< between the chains that lead away from one element
constexpr double SpareRoom = 7.0;      ///< a page is at most so many times what its shapes need
constexpr double LongestSide = 16000.0;

constexpr std::size_t None = static_cast<std::size_t>(-1);

/// Connectors and marks one behind the other, from the element they begin at to the one they end at.
struct Chain {
    std::size_t first = None;
    std::size_t last = None;  ///< none where the chain leads away only
    bool outward = true;      ///< the flow leaves `first`
    std::vector<std::size_t> members{};
};

struct Neighbour {
    std::size_t element;
    bool downstream;
};

/// What a page looks like once each element is either an anchor, with a place of its own, or in a chain.
struct Topology {
    std::vector<std::vector<Neighbour>> neighbours;
    std::vector<bool> anchored;
    std::vector<bool> chained;
    std::vector<Chain> chains;
};

void WalkChain(Topology& topology, std::size_t anchor, Neighbour next) {
    Chain chain{.first = anchor, .outward = next.downstream};
    std::size_t before = anchor;
    std::size_t here = next.element;
    while (here != None && !topology.anchored[here] && !topology.chained[here]) {
        topology.chained[here] = true;
        chain.members.push_back(here);
        const auto& around = topology.neighbours[here];
        const auto onward = std::find_if(around.begin(), around.end(),
                                         [before](const Neighbour& each) { return each.element != before; });
        before = std::exchange(here, onward == around.end() ? None : onward->element);
    }
    if (here != None && topology.anchored[here] && here != anchor) chain.last = here;
    if (!chain.members.empty()) topology.chains.push_back(std::move(chain));
}

void WalkFrom(Topology& topology, std::size_t anchor) {
    for (const Neighbour& next : topology.neighbours[anchor]) {
        if (!topology.anchored[next.element]) WalkChain(topology, anchor, next);
    }
}

Topology TopologyOf(const PlantPage& page) {
    const std::size_t count = page.elements.size();
    Topology topology{.neighbours = std::vector<std::vector<Neighbour>>(count),
                      .anchored = std::vector<bool>(count),
                      .chained = std::vector<bool>(count),
                      .chains = {}};
    for (const PlantLink& link : page.links) {
        topology.neighbours[link.from].push_back({link.to, true});
        topology.neighbours[link.to].push_back({link.from, false});
    }
    const auto standsAlone = [&](std::size_t index) {
        const Shape shape = page.elements[index].shape;
        if (shape == Shape::Mark) return false;
        const std::size_t links = topology.neighbours[index].size();
        return shape != Shape::Connector || links == 0 || links > 2;
    };
    for (std::size_t index = 0; index < count; ++index) topology.anchored[index] = standsAlone(index);
    for (std::size_t index = 0; index < count; ++index) {
        if (topology.anchored[index]) WalkFrom(topology, index);
    }
    // Connectors that hang on nothing but each other: the first of them gets a place of its own.
    for (std::size_t index = 0; index < count; ++index) {
        if (topology.anchored[index] || topology.chained[index]) continue;
        if (page.elements[index].shape == Shape::Mark) continue;
        topology.anchored[index] = true;
        WalkFrom(topology, index);
    }
    return topology;
}

/// What is left between devices that are neighbours: room for the longest chain between any two.
Point NeighbourGap(const Topology& topology) {
    std::size_t longest = 1;
    for (const Chain& chain : topology.chains) {
        if (chain.last != None) longest = std::max(longest, std::min(chain.members.size(), RoomyChain));
    }
    const auto count = static_cast<double>(longest);
    const Point size = ShapeSizes[static_cast<std::size_t>(Shape::Connector)];
    return {size.x * count + ConnectorGap * (count + 1), size.y * count + ConnectorGap * (count + 1)};
}

/// Pixels for a grid unit that keep these elements a gap apart, but for the few that stand much closer than
/// all others. Elements at the very same place do not count.
double ScaleFor(const std::vector<const PlantElement*>& anchors, Point gap) {
    std::vector<double> needs(anchors.size(), 0.0);
    double width = 0.0;
    double height = 0.0;
    for (std::size_t one = 0; one < anchors.size(); ++one) {
        for (std::size_t two = 0; two < one; ++two) {
            const double dx = std::abs(static_cast<double>(anchors[one]->x) - anchors[two]->x);
            const double dz = std::abs(static_cast<double>(anchors[one]->z) - anchors[two]->z);
            width = std::max(width, dx);
            height = std::max(height, dz);
            if (dx == 0.0 && dz == 0.0) continue;
            const Point reach = ShapeReach(*anchors[one], *anchors[two], gap);
            const double enough = std::min(needs[one], needs[two]);
            if (dx * enough >= reach.x || dz * enough >= reach.y) continue;
            const double need = std::min(dx > 0.0 ? reach.x / dx : 1e9, dz > 0.0 ? reach.y / dz : 1e9);
            needs[one] = std::max(needs[one], need);
            needs[two] = std::max(needs[two], need);
        }
    }
    if (width == 0.0 && height == 0.0) return 1.0;
    std::sort(needs.begin(), needs.end());
    double scale = needs[needs.size() - 1 - needs.size() / 10];

    const Point one = ShapeSizes[0];
    const double room = SpareRoom * static_cast<double>(anchors.size()) * (one.x + gap.x) * (one.y + gap.y);
    while ((width * scale + one.x) * (height * scale + one.y) > room ||
           std::max(width, height) * scale > LongestSide) {
        scale *= 0.8;
    }
    return scale;
}

/// Puts the anchors at their scaled places; those that share one form a block there.
void PlaceAnchors(std::vector<PlantElement*>& anchors, Point gap) {
    const double scale = ScaleFor({anchors.begin(), anchors.end()}, gap);
    std::map<std::pair<int, int>, std::vector<PlantElement*>> places;
    for (PlantElement* anchor : anchors) places[{anchor->x, anchor->z}].push_back(anchor);
    for (const auto& [place, sharers] : places) {
        const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(sharers.size())));
        for (std::size_t index = 0; index < sharers.size(); ++index) {
            const std::size_t wholeRows = index / columns;
            const auto row = static_cast<double>(wholeRows);
            const auto column = static_cast<double>(index - wholeRows * columns);
            sharers[index]->at = {place.first * scale + column * (ShapeSizes[0].x + gap.x),
                                  place.second * scale + row * (ShapeSizes[0].y + gap.y)};
        }
    }
}

/// Puts a chain's members evenly between the two elements that it joins, `aside` pixels off the straight
/// line.
void PlaceBetween(PlantPage& page, const Chain& chain, double aside) {
    const PlantElement& first = page.elements[chain.first];
    const PlantElement& last = page.elements[chain.last];
    const Point from = ShapeEdge(first, last.at);
    const Point to = ShapeEdge(last, first.at);
    // Aside of the same line for all chains between the two, whichever way they run.
    const double turn = chain.first < chain.last ? 1.0 : -1.0;
    const Point way{last.at.x - first.at.x, last.at.y - first.at.y};
    const double length = std::max(std::hypot(way.x, way.y), 1.0);
    const Point off{-way.y / length * aside * turn, way.x / length * aside * turn};
    for (std::size_t index = 0; index < chain.members.size(); ++index) {
        const double part = static_cast<double>(index + 1) / static_cast<double>(chain.members.size() + 1);
        page.elements[chain.members[index]].at = {from.x + (to.x - from.x) * part + off.x,
                                                  from.y + (to.y - from.y) * part + off.y};
    }
}

/// Puts a chain that ends nowhere beside the element that it hangs on: downstream to the right.
void PlaceBeside(PlantPage& page, const Chain& chain, int row) {
    const PlantElement& first = page.elements[chain.first];
    const double side = chain.outward ? 1.0 : -1.0;
    const double height = (row % 2 == 0 ? row / 2 : -(row + 1) / 2) * RowGap;
    double away = ShapeSize(first).x / 2;
    for (const std::size_t member : chain.members) {
        PlantElement& element = page.elements[member];
        away += ShapeSize(element).x / 2 + 2 * TightGap.x;
        element.at = {first.at.x + side * away, first.at.y + height};
        away += ShapeSize(element).x / 2;
    }
}

void PlaceChains(PlantPage& page, const Topology& topology) {
    using Ends = std::pair<std::size_t, std::size_t>;
    std::map<Ends, bool> direct;  // the straight line is taken by a link of its own
    for (const PlantLink& link : page.links) direct[std::minmax(link.from, link.to)] = true;

    std::map<Ends, std::vector<const Chain*>> joins;
    std::map<std::pair<std::size_t, bool>, int> rows;
    for (const Chain& chain : topology.chains) {
        if (chain.last == None) {
            PlaceBeside(page, chain, rows[{chain.first, chain.outward}]++);
        } else {
            joins[std::minmax(chain.first, chain.last)].push_back(&chain);
        }
    }
    for (const auto& [ends, chains] : joins) {
        for (std::size_t index = 0; index < chains.size(); ++index) {
            const auto number = static_cast<double>(index);
            const double centred = number - static_cast<double>(chains.size() - 1) / 2;
            const double besides = std::floor(number / 2 + 1) * (index % 2 == 0 ? 1.0 : -1.0);
            PlaceBetween(page, *chains[index], (direct.contains(ends) ? besides : centred) * ParallelGap);
        }
    }
}

/// Moves all shapes so that the page begins at its margin, and takes its size from them.
void FitPage(PlantPage& page) {
    if (page.elements.empty()) return;
    Point low{1e30, 1e30};
    Point high{-1e30, -1e30};
    for (const PlantElement& element : page.elements) {
        const Point half{ShapeSize(element).x / 2, ShapeSize(element).y / 2};
        low = {std::min(low.x, element.at.x - half.x), std::min(low.y, element.at.y - half.y)};
        high = {std::max(high.x, element.at.x + half.x), std::max(high.y, element.at.y + half.y)};
    }
    for (PlantElement& element : page.elements) {
        element.at = {element.at.x - low.x + Margin, element.at.y - low.y + Margin};
    }
    page.size = {high.x - low.x + 2 * Margin, high.y - low.y + 2 * Margin};
}

}  // namespace

Point ShapeEdge(const PlantElement& element, Point toward) {
    const Point way{toward.x - element.at.x, toward.y - element.at.y};
    const double length = std::hypot(way.x, way.y);
    if (length == 0.0) return element.at;
    double part = 1.0;
    if (element.shape == Shape::Node) {
        part = NodeRadius / length;
    } else {
        const Point size = ShapeSize(element);
        if (way.x != 0.0) part = std::min(part, size.x / 2 / std::abs(way.x));
        if (way.y != 0.0) part = std::min(part, size.y / 2 / std::abs(way.y));
    }
    part = std::min(part, 0.5);
    return {element.at.x + way.x * part, element.at.y + way.y * part};
}

void PlantArrange(PlantPage& page) {
    const Topology topology = TopologyOf(page);
    std::vector<PlantElement*> anchors;
    std::vector<Settler> moving;  // the anchors, among themselves
    std::vector<Settler> all;     // then the chains, which give way to the anchors
    for (std::size_t index = 0; index < page.elements.size(); ++index) {
        PlantElement* element = &page.elements[index];
        all.push_back({element, topology.anchored[index]});
        if (!topology.anchored[index]) continue;
        anchors.push_back(element);
        moving.push_back({element, false});
    }
    PlaceAnchors(anchors, NeighbourGap(topology));
    Separate(moving);
    PlaceChains(page, topology);
    Separate(all);
    FitPage(page);
}

}  // namespace standin
