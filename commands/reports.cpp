// PjtCerGet: the performance report of a project.

#include "commands/handlers.h"
#include "commands/variable_text.h"
#include "text/json.h"

namespace vorn {

std::string PjtCerGet(const Request& request) {
    const std::string evaporating = ProjectVariableText(request.pjtnb, "_GTemp");
    const std::string store = ProjectVariableText(request.pjtnb, "_MOD145_BKT_TEMP");
    const std::string energy = ProjectVariableText(request.pjtnb, "_WAll");
    const std::string efficiency = ProjectVariableText(request.pjtnb, "_COP");
    const std::string report = "效率值:" + efficiency + "(COP)\n总能耗:" + energy + "(KW)\n库温:" + store +
                               "(摄氏度)\n蒸发温度:" + evaporating + "(摄氏度)";

    JsonDocument NewPjtJson(rapidjson::kObjectType);
    NewPjtJson.AddMember("data", report, NewPjtJson.GetAllocator());
    return JsonText(NewPjtJson);
}

}  // namespace vorn
