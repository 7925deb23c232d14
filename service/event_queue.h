// The queue behind the records, for those who make them.

#pragma once

#include <string>

#include "service/exchange_events.h"

namespace vorn {

/// True from `EventsObserve` on.
bool EventsObserved();

/// Each adds one record or counts it as lost; no exception comes out. Texts are as they came and within their
/// bounds: they are escaped when the record is taken.
void EventAdd(ExchangeEvent&& event);
void EventAdd(RunStateEvent&& event);
/// Counts an exchange for whose record there was no memory.
void EventLost();

/// What became of the stores of the calling thread since the last call.
StoreEnd StoreEndTake();

}  // namespace vorn
