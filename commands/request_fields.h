// The fields of a command's JSON request, read in a fixed order: each failed check leaves its message and
// lets the later ones run, so that the client sees the last that failed.

#pragma once

#include <cstdint>
#include <string>

#include "text/json.h"

namespace vorn {

struct RequestFields {
    JsonDocument document;
    std::string reply;    ///< the message of the last failed check
    bool failed = false;  ///< some check has failed
};

/// Which JSON numbers a position takes.
enum class PositionForm { DoubleOrInt, DoubleOnly };

/// Parses `messages`. Where it is no JSON object the request has failed, and no field is read.
void RequestParse(RequestFields& fields, const std::string& messages);

/// Marks the request as failed with this message.
void RequestFail(RequestFields& fields, std::string message);

/// Each reads one field and gives true when it was read. An absent field keeps the value; one of a wrong type
/// keeps it too and fails the request with the field's format message.
bool RequestInt(RequestFields& fields, const char* name, int& value);
bool RequestInt64(RequestFields& fields, const char* name, std::int64_t& value);
bool RequestText(RequestFields& fields, const char* name, std::string& value);
/// A position, given as its grid value. One that leaves 32 bits on the grid is of a wrong type.
bool RequestPosition(RequestFields& fields, const char* name, int& grid, PositionForm form);

}  // namespace vorn
