#include "service/words.h"

#include "commands/command_frame.h"
#include "service/verbs.h"

namespace vorn {

namespace {

int VerbCount() {
    return static_cast<int>(Verbs().size());
}

}  // namespace

int WordCount() {
    return VerbCount() + CommandCount();
}

int WordIndex(std::string_view word) {
    const VerbRow* verb = VerbFind(word);
    if (verb != nullptr) return static_cast<int>(verb - Verbs().data());
    const int command = CommandIndex(word);
    return command < 0 ? OtherWord : VerbCount() + command;
}

std::string_view WordText(int index) {
    if (index < 0 || index >= WordCount()) return "other";
    if (index < VerbCount()) return Verbs()[static_cast<std::size_t>(index)].word;
    return CommandWord(index - VerbCount());
}

}  // namespace vorn
