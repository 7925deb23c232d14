#include "variables/var_write.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "engine/vorn_var.h"
#include "text/number_text.h"
#include "variables/var_address.h"

namespace vorn {

namespace {

using At = const VarAddress&;

// The store's writes, a row for each place. Integers of modules and nodes are written whatever the port.

constexpr void (*RealWrites[VarPlaceCount])(At, double) = {
    [](At at, double value) { w_GloSet(at.pjtNb, at.nb, value); },
    [](At at, double value) { w_ModSet(at.pjtNb, at.mnlnb, at.nb, value); },
    [](At at, double value) { w_ModPortSet(at.pjtNb, at.mnlnb, at.portnb, at.nb, value); },
    [](At at, double value) { w_NodSet(at.pjtNb, at.mnlnb, at.nb, value); },
    [](At at, double value) { w_NodPortSet(at.pjtNb, at.mnlnb, at.portnb, at.nb, value); },
};

constexpr void (*IntWrites[VarPlaceCount])(At, int) = {
    [](At at, int value) { w_GloIntSet(at.pjtNb, at.nb, value); },
    [](At at, int value) { w_ModIntSet(at.pjtNb, at.mnlnb, at.nb, value); },
    [](At at, int value) { w_ModIntSet(at.pjtNb, at.mnlnb, at.nb, value); },
    [](At at, int value) { w_NodIntSet(at.pjtNb, at.mnlnb, at.nb, value); },
    [](At at, int value) { w_NodIntSet(at.pjtNb, at.mnlnb, at.nb, value); },
};

constexpr void (*RealAryWrites[VarPlaceCount])(At, const double*) = {
    [](At at, const double* values) { w_GloArySet(at.pjtNb, at.nb, values); },
    [](At at, const double* values) { w_ModArySet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, const double* values) { w_ModPortArySet(at.pjtNb, at.mnlnb, at.portnb, values); },
    [](At at, const double* values) { w_NodArySet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, const double* values) { w_NodPortArySet(at.pjtNb, at.mnlnb, at.portnb, values); },
};

constexpr void (*IntAryWrites[VarPlaceCount])(At, const int*) = {
    [](At at, const int* values) { w_GloIntArySet(at.pjtNb, at.nb, values); },
    [](At at, const int* values) { w_ModIntArySet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, const int* values) { w_ModIntArySet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, const int* values) { w_NodIntArySet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, const int* values) { w_NodIntArySet(at.pjtNb, at.mnlnb, at.nb, values); },
};

/// Bytes that count of one entry in a list.
constexpr std::size_t EntryBytes = 191;

/// What is added to a number before it is cut to an integer; without it 2.999999 would be 2. It also moves a
/// negative whole number one nearer to zero, and clients know it so.
constexpr double ScalarIntLift = 0.001;
constexpr double AryIntLift = 0.01;

/// Reads a list; `read` makes a value of one entry's text. Entries that the list does not name are 0.
template <typename Number, typename Read>
std::array<Number, ArrayEntries> AryFromText(std::string_view text, Read read) {
    std::array<Number, ArrayEntries> values{};
    for (Number& value : values) {
        const std::size_t comma = text.find(',');
        const std::string_view entry = text.substr(0, comma);
        value = read(entry.substr(0, EntryBytes));
        if (comma == std::string_view::npos) break;
        text.remove_prefix(comma + 1);
    }
    return values;
}

int IntFromEntry(std::string_view text, double lift) {
    return IntFromReal(RealFromText(text) + lift);
}

}  // namespace

const char* VarSetByName(const char* name, const char* value) {
    VarAddress address;
    if (!VarFind(name, address)) return VarNotFound;
    const VarPlace place = VarPlaceOf(address);
    switch (address.VarType) {
        case RealVar:
            RealWrites[place](address, RealFromText(value));
            break;
        case IntVar:
            IntWrites[place](address, IntFromEntry(value, ScalarIntLift));
            break;
        case RealAryVar:
            RealAryWrites[place](address, AryFromText<double>(value, RealFromText).data());
            break;
        case IntAryVar: {
            const auto read = [](std::string_view entry) { return IntFromEntry(entry, AryIntLift); };
            IntAryWrites[place](address, AryFromText<int>(value, read).data());
            break;
        }
        default:
            break;  // no such kind: nothing is written, and the name is known all the same
    }
    return "OK";
}

}  // namespace vorn
