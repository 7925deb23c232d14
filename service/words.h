// The words that this service knows, each once: the verbs of the dispatcher, then the commands.

#pragma once

#include <string_view>

namespace vorn {

/// Stands for each word that is none of these.
inline constexpr int OtherWord = -1;

/// The number of words.
int WordCount();

/// The index of a word, from 0; `OtherWord` for any other text.
int WordIndex(std::string_view word);

/// The word of an index; "other" for any other number.
std::string_view WordText(int index);

}  // namespace vorn
