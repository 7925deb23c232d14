// Whether a reply says that a command was carried out.

#pragma once

#include <string_view>

/// True when the reply to `command`, sent with `name`, is a refusal, or of a batch when that of one entry is.
/// A word that is no command is refused, whatever the reply.
bool ReplyRefuses(std::string_view command, std::string_view name, std::string_view reply);
