#include "import/parameters.h"

#include <string>

#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "text/number_text.h"

namespace vorn {

namespace {

constexpr int ModelCacheSet = 0;
/// The columns of the table of items that a pipe's own values go to.
constexpr int FirstColumn = 1;
constexpr int LastColumn = 3;
/// Bytes of the text of one value.
constexpr std::size_t ValueBytes = 255;

/// A module without the item is passed over, and so is a pipe that was not placed.
void WriteItem(int pjtnb, int pipe, const char* item, const std::string& midValue) {
    const int row = Pipe_ModuleVarRowGet(pjtnb, pipe, item);
    if (row < 0) return;
    for (int column = FirstColumn; column <= LastColumn; ++column) {
        ProjectModuleItemValueSet(pjtnb, pipe, row, column, midValue.c_str());
    }
}

/// A length whose text is over 255 bytes is no length of a pipe and is not written.
void PipeParameterWrite(int pjtnb, int pipe, double length, int elbows) {
    std::string midValue;
    AppendReal(midValue, length);
    if (midValue.size() <= ValueBytes) WriteItem(pjtnb, pipe, "PL", midValue);
    WriteItem(pjtnb, pipe, "ElbowNb", std::to_string(elbows));
}

}  // namespace

void ModelParametersLoad(int pjtnb, const std::vector<DeviceEntry>& devices) {
    for (const DeviceEntry& device : devices) {
        const int module = Module_FindInstanceID(pjtnb, device.InstanceID);
        if (module < 0) continue;
        const int type = ModuleOneID_ToID(device.ModuleOneID);
        if (type < 0) continue;
        Model_DB_Read(type, device.ModelID);
        Pjt_Modu_ModelToPch(pjtnb, type, module, ModelCacheSet);
    }
}

void PipeParametersSet(int pjtnb, const std::vector<ConnectionEntry>& connections) {
    for (const ConnectionEntry& connection : connections) {
        PipeParameterWrite(pjtnb, connection.PipeNb, connection.Length, connection.RdcNumber);
    }
}

}  // namespace vorn
