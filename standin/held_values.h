// Values that a client has taken in hand. A held value of an element stays as clients set it: the plant and
// the script no longer reach it, until it is let go. What the plant computes goes on behind it, so that a
// held reading, such as a room's temperature, is a stuck sensor and not another room; a held input, such as a
// valve's opening, is what the plant works with. The engine lock is held in each function.

#pragma once

#include <string_view>

#include "standin/project.h"

namespace standin {

/// What stands behind a value's name in the name of the integer that tells whether it is held.
inline constexpr std::string_view HeldSuffix = "_HELD";

/// The variable number of that integer. `port` is -1 for an item.
int HeldVariable(int port, int variable);

/// The held value that such a variable number is about, null where it is not held or the number is another.
HeldValue* HeldFind(Element& element, int heldVariable);
/// The same for a value.
HeldValue* HeldFind(Element& element, int port, int variable);

/// Takes a value in hand as it is, or lets it go: it then is what it would be if nobody had held it. Does
/// nothing for a number that is none of a value's.
void ValueHold(Project& project, Element& element, int heldVariable, bool held);

/// Lets all values of a project go.
void HeldClear(Project& project);

/// While it lives, the elements of a project have the computed values of what is held in place, so that a
/// step reads and writes its own. It lives within one holding of the engine lock.
class ComputedInPlace {
  public:
    explicit ComputedInPlace(Project& project) : project_(project) { Swap(); }
    ~ComputedInPlace() { Swap(); }
    ComputedInPlace(const ComputedInPlace&) = delete;
    ComputedInPlace& operator=(const ComputedInPlace&) = delete;

  private:
    void Swap();
    Project& project_;
};

}  // namespace standin
