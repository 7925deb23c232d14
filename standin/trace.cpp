#include "standin/trace.h"

#include "text/number_text.h"

namespace standin {

namespace {

template <typename Number>
void ArrayArgument(std::string& line, std::span<const Number> numbers) {
    line += '[';
    for (const Number number : numbers) {
        if (line.back() != '[') line += ' ';
        detail::TraceArgument(line, number);
    }
    line += ']';
}

}  // namespace

std::atomic<bool> traced{true};

namespace detail {

void TraceArgument(std::string& line, std::string_view text) {
    line += '"';
    line += text;
    line += '"';
}

void TraceArgument(std::string& line, const LinkSxCache& link) {
    line += '{';
    for (int number : {link.Type, link.PageNb, link.F_Sx, link.F_Nb, link.F_PortNb, int{link.F_Type2},
                       link.S_Sx, link.S_Nb, link.S_PortNb, int{link.S_Type2}}) {
        if (line.back() != '{') line += ' ';
        line += std::to_string(number);
    }
    line += '}';
}

void TraceArgument(std::string& line, long long number) {
    line += std::to_string(number);
}
void TraceArgument(std::string& line, double number) {
    vorn::AppendReal(line, number);
}
void TraceArgument(std::string& line, std::span<const double> numbers) {
    ArrayArgument(line, numbers);
}
void TraceArgument(std::string& line, std::span<const int> numbers) {
    ArrayArgument(line, numbers);
}

}  // namespace detail

}  // namespace standin
