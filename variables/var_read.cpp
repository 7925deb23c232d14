#include "variables/var_read.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <span>

#include "engine/vorn_var.h"
#include "text/number_text.h"
#include "variables/var_address.h"

namespace vorn {

namespace {

using At = const VarAddress&;

// The store's reads, a row for each place. A module's integers are read whatever the port; a node's integer
// of a port is not asked for and is 0.

constexpr double (*RealReads[VarPlaceCount])(At) = {
    [](At at) { return GloGet(at.pjtNb, at.nb); },
    [](At at) { return ModGet(at.pjtNb, at.mnlnb, at.nb); },
    [](At at) { return ModPortGet(at.pjtNb, at.mnlnb, at.portnb, at.nb); },
    [](At at) { return NodGet(at.pjtNb, at.mnlnb, at.nb); },
    [](At at) { return NodPortGet(at.pjtNb, at.mnlnb, at.portnb, at.nb); },
};

constexpr int (*IntReads[VarPlaceCount])(At) = {
    [](At at) { return GloIntGet(at.pjtNb, at.nb); },
    [](At at) { return ModIntGet(at.pjtNb, at.mnlnb, at.nb); },
    [](At at) { return ModIntGet(at.pjtNb, at.mnlnb, at.nb); },
    [](At at) { return NodIntGet(at.pjtNb, at.mnlnb, at.nb); },
    [](At) { return 0; },
};

constexpr void (*RealAryReads[VarPlaceCount])(At, double*) = {
    [](At at, double* values) { GloAryGet(at.pjtNb, at.nb, values); },
    [](At at, double* values) { ModAryGet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, double* values) { ModPortAryGet(at.pjtNb, at.mnlnb, at.portnb, values); },
    [](At at, double* values) { NodAryGet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, double* values) { NodPortAryGet(at.pjtNb, at.mnlnb, at.portnb, values); },
};

constexpr void (*IntAryReads[VarPlaceCount])(At, int*) = {
    [](At at, int* values) { GloIntAryGet(at.pjtNb, at.nb, values); },
    [](At at, int* values) { ModIntAryGet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, int* values) { ModIntAryGet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At at, int* values) { NodIntAryGet(at.pjtNb, at.mnlnb, at.nb, values); },
    [](At, int*) {},
};

/// Bytes of an array's text with its terminator.
constexpr std::size_t AryTextBytes = 192;
constexpr int AryDecimals = 8;
constexpr double AryRealLimit = 9999999999999.0;
constexpr int AryIntLimit = 2147483640;

// The widest entry, at the limit and with a sign, fills the buffer to the last byte eight times over.
static_assert(ArrayEntries * (1 + 13 + 1 + AryDecimals) + (ArrayEntries - 1) + 1 == AryTextBytes);

/// Writes the entries with commas between and terminates the text. `write` puts one entry down and gives its
/// end.
template <typename Number, typename Write>
void AryTextWrite(char (&text)[AryTextBytes], std::span<const Number> values, Write write) {
    char* end = text;
    for (const Number value : values) {
        if (end != text) *end++ = ',';
        end = write(end, std::end(text), value);
    }
    *end = '\0';
}

}  // namespace

const char* DoubleAryText(double* values) {
    thread_local char text[AryTextBytes];
    const std::span entries(values, ArrayEntries);
    for (double& value : entries) {
        value = std::isfinite(value) ? std::clamp(value, -AryRealLimit, AryRealLimit) : 0.0;
    }
    AryTextWrite(text, std::span<const double>(entries), [](char* first, char* last, double value) {
        return RealToText(first, last, value, AryDecimals);
    });
    return text;
}

const char* IntAryText(int* values) {
    thread_local char text[AryTextBytes];
    const std::span entries(values, ArrayEntries);
    for (int& value : entries) value = std::clamp(value, -AryIntLimit, AryIntLimit);
    AryTextWrite(text, std::span<const int>(entries),
                 [](char* first, char* last, int value) { return std::to_chars(first, last, value).ptr; });
    return text;
}

void VarAppendByName(std::string& reply, const char* name) {
    VarAddress address;
    if (!VarFind(name, address)) {
        reply += VarNotFound;
        return;
    }
    const VarPlace place = VarPlaceOf(address);
    switch (address.VarType) {
        case RealVar:
            AppendReal(reply, RealReads[place](address));
            return;
        case IntVar:
            reply += std::to_string(IntReads[place](address));
            return;
        case RealAryVar: {
            double values[ArrayEntries] = {};
            RealAryReads[place](address, values);
            reply += DoubleAryText(values);
            return;
        }
        case IntAryVar: {
            int values[ArrayEntries] = {};
            IntAryReads[place](address, values);
            reply += IntAryText(values);
            return;
        }
        default:
            reply += "变量类型错误,请联系技术支持";
    }
}

std::string VarGetByName(const char* name) {
    std::string reply;
    VarAppendByName(reply, name);
    return reply;
}

}  // namespace vorn
