// What a writer of the JSON library puts its characters into.

#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace vorn {

/// Appends to a text, some thousand characters at a time. The writer flushes it at the end of the root.
struct TextStream {
    using Ch = char;
    std::string& text;
    std::array<char, 4096> gathered{};
    std::size_t count = 0;

    void Put(char character) {
        if (count == gathered.size()) Flush();
        gathered[count++] = character;
    }
    void Flush() {
        text.append(gathered.data(), count);
        count = 0;
    }
};

}  // namespace vorn
