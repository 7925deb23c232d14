#include "commands/request_fields.h"

#include "elements/grid.h"
#include "text/json.h"

namespace vorn {

namespace {

bool Check(RequestFields& fields, Field field, const char* name, const char* type) {
    if (field == Field::WrongType) RequestFail(fields, std::string(name) + "的格式错误,应该是" + type);
    return field == Field::Read;
}

}  // namespace

void RequestParse(RequestFields& fields, const std::string& messages) {
    JsonParse(messages.c_str(), fields.document);
    if (fields.document.IsObject()) return;
    RequestFail(fields, "API调用json格式错误,无法解析");
    fields.document.SetObject();
}

void RequestFail(RequestFields& fields, std::string message) {
    fields.reply = std::move(message);
    fields.failed = true;
}

bool RequestInt(RequestFields& fields, const char* name, int& value) {
    return Check(fields, FieldInt(fields.document, name, value), name, "int的整数");
}

bool RequestInt64(RequestFields& fields, const char* name, std::int64_t& value) {
    return Check(fields, FieldInt64(fields.document, name, value), name, "int的整数");
}

bool RequestText(RequestFields& fields, const char* name, std::string& value) {
    return Check(fields, FieldText(fields.document, name, value), name, "string");
}

bool RequestPosition(RequestFields& fields, const char* name, int& grid, PositionForm form) {
    double position = 0.0;
    Field field = form == PositionForm::DoubleOnly ? FieldDouble(fields.document, name, position)
                                                   : FieldNumber(fields.document, name, position);
    if (field == Field::Read && !GridFits(position)) field = Field::WrongType;
    if (field == Field::Read) grid = GridFromPosition(position);
    return Check(fields, field, name, "double");
}

}  // namespace vorn
