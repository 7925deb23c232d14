// The JSON envelope of the HTTP route.

#pragma once

#include <string>

#include "service/caller.h"

namespace vorn {

/// Takes a request's body apart, dispatches it and sets `reply`. The body is a JSON object with the members
/// `command`, `name` and `messages`, read up to its first zero byte; one that is no object gets the reply
/// that says so. No lock is held by the caller; `DispatchLock` is taken around the dispatch alone.
void ApiEnvelope(const std::string& body, std::string& reply, const Caller& caller = {});

}  // namespace vorn
