#include "service/exchange.h"

#include "service/dispatcher.h"
#include "service/service_locks.h"

namespace vorn {

void ExchangeRun(const Caller& /*caller*/, const std::string& midHeader, const std::string& midData,
                 const std::string& midValue, std::string& reply) {
    const std::lock_guard guard(DispatchLock);
    ServerDispatch(midHeader, midData, midValue, reply);
}

void ExchangeRefused(const Caller& /*caller*/, const std::string& /*text*/, const std::string& /*reply*/) {}

}  // namespace vorn
