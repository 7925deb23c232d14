// The replies of each command, by which a refusal is told. Made from the description in api/ by
// api/generate.py; do not edit.

#pragma once

#include <string_view>

/// What the texts of a row are.
enum class ReplyTexts {
    Done,     ///< all replies of a command that was carried out: every other one is a refusal
    Refused,  ///< the refusals of a command that else replies with any text
    Entries   ///< the refusals of entries, in a reply that is a JSON array of texts
};

struct ReplyRow {
    std::string_view word;
    ReplyTexts texts;
    std::string_view forms;  ///< one a line; "{}" stands for anything
};

// clang-format off
inline constexpr ReplyRow ReplyTable[] = {
    {"Create", ReplyTexts::Done,
     "OK"},
    {"Open", ReplyTexts::Done,
     "OK"},
    {"PjtSent", ReplyTexts::Done,
     "OK"},
    {"PjtClear", ReplyTexts::Done,
     "OK"},
    {"PjtClose", ReplyTexts::Done,
     "OK"},
    {"AddModule", ReplyTexts::Done,
     "MOD{}"},
    {"AddNode", ReplyTexts::Done,
     "NOD{}"},
    {"AddLink", ReplyTexts::Done,
     "LNK{}"
     "\nOK,但是新增了一个模块、链接了两条线:{}"},
    {"MoveMN", ReplyTexts::Done,
     "OK"},
    {"DeleteMNL", ReplyTexts::Done,
     "OK"},
    {"NetAccess", ReplyTexts::Done,
     "OK"},
    {"PjtInfoChk", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"},
    {"LuaSent", ReplyTexts::Done,
     "OK"},
    {"PjtRun", ReplyTexts::Done,
     "OK"},
    {"PjtPause", ReplyTexts::Done,
     "OK"},
    {"PjtStep", ReplyTexts::Done,
     "OK"},
    {"PjtStop", ReplyTexts::Done,
     "OK"},
    {"PjtCacheToRun", ReplyTexts::Done,
     "OK"},
    {"PjtRunToCache", ReplyTexts::Done,
     "OK"},
    {"Put", ReplyTexts::Done,
     "OK"
     "\n成功运行"
     "\n已运行"},
    {"Set", ReplyTexts::Done,
     "OK"},
    {"Get", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\nnone varname 找不到变量名称"
     "\n变量类型错误,请联系技术支持"},
    {"Set", ReplyTexts::Entries,
     "none varname 找不到变量名称"
     "\nshibai"},
    {"Get", ReplyTexts::Entries,
     "none varname 找不到变量名称"
     "\n变量类型错误,请联系技术支持"},
    {"PjtAddVar", ReplyTexts::Done,
     "OK"},
    {"PjtDleVar", ReplyTexts::Done,
     "OK"},
    {"PreGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"
     "\n无法识别name中的InstanceID或ConnectionID，请核对一下"
     "\n0.00"
     "\nnone varname 找不到变量名称"},
    {"TempGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"
     "\n无法识别name中的InstanceID或ConnectionID，请核对一下"
     "\n0.00"
     "\nnone varname 找不到变量名称"},
    {"FlowGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"
     "\n无法识别name中的InstanceID或ConnectionID，请核对一下"
     "\n0.00"
     "\nnone varname 找不到变量名称"},
    {"RoomGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"
     "\n无法识别name中的InstanceID或ConnectionID，请核对一下"},
    {"VarInfoGet", ReplyTexts::Done,
     "[{}]"},
    {"RunValueSet", ReplyTexts::Done,
     "OK"},
    {"RunValueGet", ReplyTexts::Done,
     "[{}]"},
    {"VarCacheSet", ReplyTexts::Done,
     "OK"},
    {"VarCacheGet", ReplyTexts::Done,
     "[{}]"},
    {"VarValueSet", ReplyTexts::Done,
     "OK"},
    {"RunToCache", ReplyTexts::Done,
     "OK"},
    {"CacheToRun", ReplyTexts::Done,
     "OK"},
    {"ImportantSet", ReplyTexts::Done,
     "OK"},
    {"ImportantGet", ReplyTexts::Done,
     "[{}]"},
    {"PjtPngGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"
     "\n"},
    {"PjtChartGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"
     "\n"},
    {"PjtCerGet", ReplyTexts::Refused,
     "API调用格式错误"
     "\n出现莫名错误,请联系技术支持"
     "\n项目名称找不到(project Char error)"},
    {"Fdp", ReplyTexts::Done,
     "1"
     "\n0"},
    {"Fph", ReplyTexts::Done,
     "1"
     "\n0"},
};
// clang-format on
