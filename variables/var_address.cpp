#include "variables/var_address.h"

#include "engine/vorn_core.h"

namespace vorn {

bool VarFind(const char* name, VarAddress& address) {
    address = {};
    bool midOK = false;
    NameParsing(name, address.VarSta, address.VarType, address.pjtNb, address.mnlnb, address.portnb,
                address.nb, midOK);
    return midOK;
}

VarPlace VarPlaceOf(const VarAddress& address) {
    if (address.VarSta == 0) return ProjectPlace;
    if (address.VarSta == 1) return address.portnb < 0 ? ModulePlace : ModulePortPlace;
    return address.portnb < 0 ? NodePlace : NodePortPlace;
}

}  // namespace vorn
