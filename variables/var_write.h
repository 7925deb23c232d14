// Writing a variable through its name. The dispatcher calls it for "Set" and the batch for each name.

#pragma once

namespace vorn {

/// Writes `value`, a NUL-terminated text, to the variable `name`, and gives a constant text: "OK" where the
/// engine knows the name, whatever the value, else the reply that says so.
///
/// A real is read as `atof` does in the C locale; what does not begin with a number is 0. An integer is read
/// as a real plus 0.001, in an array plus 0.01, and cut towards zero and to 32 bits; NaN is 0. An array is a
/// list with commas: entries that it does not name become 0, those behind the eighth and the bytes of an
/// entry behind the 191st are passed over. Needs no lock.
const char* VarSetByName(const char* name, const char* value);

}  // namespace vorn
