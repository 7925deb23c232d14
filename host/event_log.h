// The last records of events, for the console's page.

#pragma once

#include <cstdint>
#include <string>

#include "service/exchange_events.h"

/// Keeps the last 2000 records, but no trace of the engine's calls, and the state of each open project. Any
/// thread may call these.
void EventKeep(vorn::Event&& event);
void EventLossKeep(const vorn::EventLoss& loss);

/// The records behind number `after` that are still kept, 500 at most, as JSON:
///
///     {"next":7,"lost":0,"projects":{"PLANT1":"running"},"events":[{"number":7,"time":MILLISECONDS,...}]}
///
/// `next` is the number of the last one given, `lost` the number of records that found no room since the
/// start. Each record has a `kind`: `exchange`, `state` or `notice`.
std::string EventsJson(std::uint64_t after);
