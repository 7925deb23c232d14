// Numbers as text and back, the same in every locale: a host may have set one with a decimal comma.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// Appends `value` as "%f" prints it in the C locale: six decimals, 21.5 as `21.500000`, NaN as `nan` or
/// `-nan`.
void AppendReal(std::string& text, double value);

/// Writes `value` with that many decimals from `first` on, without a terminator, and gives the end of what it
/// wrote; null where it does not fit before `last`.
char* RealToText(char* first, char* last, double value, int decimals);

/// The number at the start of `text`, as `atof` reads it in the C locale: leading white space and a sign are
/// taken, reading stops where the number ends, and a text that begins with none gives 0.
double RealFromText(std::string_view text);

/// The decimal integer at the start of `text`: leading white space and a sign are taken, reading stops at the
/// first other character, and a text without leading digits gives 0. Cut to the limits of 32 bits.
int IntFromText(std::string_view text);

/// `value` cut towards zero and to the limits of 32 bits; NaN gives 0.
int IntFromReal(double value);

/// Reads a whole text of decimal digits. False for anything else, for the empty text and beyond 31 bits.
bool NumberFromDigits(std::string_view text, int& number);

}  // namespace vorn
