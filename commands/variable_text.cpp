#include "commands/variable_text.h"

#include "engine/vorn_core.h"
#include "variables/var_read.h"

namespace vorn {

std::string ProjectVariableText(int pjtnb, const std::string& rest) {
    return VarGetByName((ProjectNameGet(pjtnb) + rest).c_str());
}

}  // namespace vorn
