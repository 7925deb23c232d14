#include "standin/values.h"

#include "text/number_text.h"

namespace standin {

bool ElementNumberRead(std::string_view text, int& number) {
    const bool padded = text.size() > 1 && text[0] == '0';
    return !padded && vorn::NumberFromDigits(text, number);
}

bool ElementPrefixCut(std::string_view& text, int& kind, int& number) {
    constexpr std::size_t PrefixBytes = 3;
    const std::string_view prefix = text.substr(0, PrefixBytes);
    if (prefix != "MOD" && prefix != "NOD") return false;
    const std::size_t end = text.find('_');
    if (end == std::string_view::npos) return false;
    if (!ElementNumberRead(text.substr(PrefixBytes, end - PrefixBytes), number)) return false;
    kind = prefix == "MOD" ? ModuleKind : NodeKind;
    text.remove_prefix(end + 1);
    return true;
}

std::span<const std::string_view> ItemsOf(Project& project, int kind, int number) {
    if (kind == ModuleKind) {
        const Module* module = project.modules.Find(number);
        if (module != nullptr) return Catalogue()[static_cast<std::size_t>(module->type)].items;
    }
    if (kind == NodeKind && project.nodes.Find(number) != nullptr) return NodeItems();
    return {};
}

double* ItemAt(Element& element, Layer layer, int row) {
    std::vector<double>& items = element.layers[layer].items;
    return row >= 0 && row < static_cast<int>(items.size()) ? &items[static_cast<std::size_t>(row)] : nullptr;
}

double* RunReal(Element& element, int port, int variable) {
    if (port < 0) return ItemAt(element, RunLayer, variable);
    if (port >= PortsPerElement || variable < 0 || variable >= static_cast<int>(PortReals.size()))
        return nullptr;
    std::vector<PortValues>& ports = element.layers[RunLayer].ports;
    if (ports.size() < PortsPerElement) ports.resize(PortsPerElement);
    return &(ports[static_cast<std::size_t>(port)].*PortReals[static_cast<std::size_t>(variable)].value);
}

const PortValues& PortRead(const Element& element, Layer layer, int port) {
    static constexpr PortValues Zero{};
    const std::vector<PortValues>& ports = element.layers[layer].ports;
    return port >= 0 && port < static_cast<int>(ports.size()) ? ports[static_cast<std::size_t>(port)] : Zero;
}

}  // namespace standin
