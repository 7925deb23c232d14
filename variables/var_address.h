// Where a variable stands: what the engine makes of its name.

#pragma once

namespace vorn {

/// The numbers of one variable, as `NameParsing` gives them.
struct VarAddress {
    int VarSta = 0;   ///< scope: 0 project, 1 module, else node
    int VarType = 0;  ///< 0 real, 1 integer, 2 real array, 3 integer array
    int pjtNb = 0;
    int mnlnb = 0;   ///< number of the module or node
    int portnb = 0;  ///< negative for a variable that is no port's
    int nb = 0;      ///< index for the variable store
};

/// Kinds of value, by `VarType`.
enum VarKind { RealVar, IntVar, RealAryVar, IntAryVar };

/// The places a variable can stand in, in the order of the tables of store calls.
enum VarPlace { ProjectPlace, ModulePlace, ModulePortPlace, NodePlace, NodePortPlace, VarPlaceCount };

/// The reply to a name that the engine does not know.
inline constexpr const char* VarNotFound = "none varname 找不到变量名称";

/// Has the engine decode `name`, a NUL-terminated text. False when it knows no such variable.
bool VarFind(const char* name, VarAddress& address);

/// The place of a variable that was found. The port of a project's variable is not looked at.
VarPlace VarPlaceOf(const VarAddress& address);

}  // namespace vorn
