// What the event loop calls beside the handlers of input: one at intervals, and one for each file dropped on
// the window. Both have their turn only when nothing else is going on: never inside another handler, a dialog
// or a wait of a script, never while a button is held. A script may let the first one have its turn in its
// waits. A third one is called after an error has ended what was going on.
#pragma once

#include <cstdint>
#include <string>

namespace quelmark {

void LoopEventsReset();
// Calls the handler whenever so many milliseconds have passed since the last call, the first time so long
// from now; -1 for none.
void SetTimedHandler(std::int32_t handler, std::int32_t milliseconds);
// Calls the handler with the path of each dropped file; -1 for none.
void SetDropHandler(std::int32_t handler);
bool DropWanted();
// Calls the handler after each error that has come back to the event loop; -1 for none.
void SetAfterErrorHandler(std::int32_t handler);
// A file was dropped (host path); its turn comes later. Without a handler it is forgotten.
void DropPut(std::string path);
// Milliseconds until something has its turn, 0 for at once; at most `most`.
std::int32_t LoopEventWait(std::int32_t most);
// The same of the timed handler alone.
std::int32_t TimedEventWait(std::int32_t most);
// Calls the timed handler when it has its turn.
void TimedEventCall();
// Calls what has its turn: one file, and the timed handler. A name that cp932 cannot carry is refused with a
// message.
void LoopEventCall();
// Something has been ended by an error: its handler has its turn.
void ErrorEventCall();

}  // namespace quelmark
