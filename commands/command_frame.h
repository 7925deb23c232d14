// The one routine behind every project command. The dispatcher calls it for each word that it does not serve
// itself.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// Finds what `name` addresses, an open project or one of its elements, runs the command and sets `reply`,
/// which arrives empty. An unknown word or address gets the reply that says so. The dispatcher's lock is
/// held, and the waits of a command are spent inside it.
void ProjectCommand(const std::string& command, const std::string& name, const std::string& messages,
                    std::string& reply);

/// The number of commands; the index of a command's word, -1 for any other; and the word of an index.
int CommandCount();
int CommandIndex(std::string_view command);
std::string_view CommandWord(int index);

/// True for a command whose exchanges go to the log of writes; false for all other words.
bool CommandWrites(std::string_view command);

}  // namespace vorn
