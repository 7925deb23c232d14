// The handlers that the command table names, a family of commands a paragraph.

#pragma once

#include <string>

#include "commands/request.h"

namespace vorn {

std::string Create(const Request& request);
std::string Open(const Request& request);

std::string AddModule(const Request& request);
std::string AddNode(const Request& request);
std::string AddLink(const Request& request);

std::string PjtSent(const Request& request);

std::string NetAccess(const Request& request);
std::string PjtInfoChk(const Request& request);

std::string PreGet(const Request& request);
std::string TempGet(const Request& request);
std::string FlowGet(const Request& request);
std::string RoomGet(const Request& request);
std::string VarInfoGet(const Request& request);
std::string VarCacheGet(const Request& request);
std::string RunValueGet(const Request& request);
std::string VarValueSet(const Request& request);
std::string VarCacheSet(const Request& request);
std::string RunValueSet(const Request& request);
std::string CacheToRun(const Request& request);
std::string RunToCache(const Request& request);
std::string ImportantGet(const Request& request);
std::string ImportantSet(const Request& request);

std::string PjtAddVar(const Request& request);
std::string PjtDleVar(const Request& request);
std::string PjtCerGet(const Request& request);

std::string DeleteMNL(const Request& request);
std::string MoveMN(const Request& request);

std::string PjtRun(const Request& request);
std::string PjtPause(const Request& request);
std::string PjtStep(const Request& request);
std::string PjtStop(const Request& request);
std::string PjtClose(const Request& request);
std::string PjtClear(const Request& request);
std::string PjtCacheToRun(const Request& request);
std::string PjtRunToCache(const Request& request);

std::string LuaSent(const Request& request);

std::string PjtPngGet(const Request& request);
std::string PjtChartGet(const Request& request);

}  // namespace vorn
