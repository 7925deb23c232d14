// The verbs that the dispatcher serves itself.

#pragma once

#include <span>
#include <string>
#include <string_view>

#include "text/json.h"

namespace vorn {

/// What a verb is asked.
struct Question {
    const std::string& midData;
    const std::string& midValue;
    const JsonValue* batch;  ///< see `ServerDispatch`
};

struct VerbRow {
    std::string_view word;
    void (*serve)(const Question& question, std::string& reply);
    bool writes;  ///< its exchanges go to the log of writes
};

std::span<const VerbRow> Verbs();

/// Null for a word that is no verb.
const VerbRow* VerbFind(std::string_view word);

}  // namespace vorn
