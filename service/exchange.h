// One exchange: a request of any way in, dispatched, and recorded where somebody observes.

#pragma once

#include <chrono>
#include <string>

#include "service/caller.h"
#include "text/json.h"

namespace vorn {

/// Dispatches one request as `ServerDispatch` does and sets `reply`. `DispatchLock` is taken around the
/// dispatch; `batch` is as there. Lets no exception of the record out.
void ExchangeRun(const Caller& caller, const std::string& midHeader, const std::string& midData,
                 const std::string& midValue, std::string& reply, const JsonValue* batch = nullptr);

/// For the end of the process: lets the running exchange end and begins no other; a request that waits gets
/// no reply any more. False when the running one takes longer than that.
bool ExchangesEnd(std::chrono::milliseconds atMost);

/// Records a request that was answered without a dispatch; `text` is what came.
void ExchangeRefused(const Caller& caller, const std::string& text, const std::string& reply);

}  // namespace vorn
