// Takes the records of events and hands each to whoever shows, counts or keeps it.

#pragma once

/// Starts the thread that takes them, behind `EventsObserve`. Exchanges and changes of run states are printed
/// unless `quiet`; what the console's page reads for itself is counted and kept, and not printed. Reports of
/// the engine go to standard error.
void EventPumpStart(bool quiet);

/// Ends the thread when what was recorded until now is handed on.
void EventPumpFinish();
