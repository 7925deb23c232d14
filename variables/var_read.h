// Reading a variable through its name. The dispatcher calls it for "Get", the batch for each name, and the
// commands that show live values with names of their own making.

#pragma once

#include <string>

namespace vorn {

/// The value of the variable `name`, a NUL-terminated text: a real as `21.500000`, an integer in decimal, an
/// array as 8 entries with commas between. A name that the engine does not know gets the reply that says so.
/// Needs no lock.
std::string VarGetByName(const char* name);

/// The same, appended to `reply`.
void VarAppendByName(std::string& reply, const char* name);

/// The text of 8 reals with 8 decimals each, at most 191 bytes. Changes `values`: what is not finite becomes
/// 0, and the rest is cut to 13 digits before the point. The text is per thread and stays valid until the
/// next call on that thread.
const char* DoubleAryText(double* values);

/// The text of 8 integers. Changes `values`: they are cut to 2147483640 on both sides of 0. The text is held
/// as that of `DoubleAryText`.
const char* IntAryText(int* values);

}  // namespace vorn
