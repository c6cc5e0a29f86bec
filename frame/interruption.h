// What signals ask of a run. Their handlers (frame/report/output.h) note it here; the run looks between two
// sectors (frame/progress.h), and where a call of the system was cut short.

#ifndef TROVISK_FRAME_INTERRUPTION_H
#define TROVISK_FRAME_INTERRUPTION_H

#include <atomic>

namespace trovisk {

// The signal that is to end the run, 0 while there is none.
inline std::atomic<int> interruption = 0;

// Whether somebody wants to be told, once, how far the run is.
inline std::atomic<bool> progressWanted = false;

// Whether there is something to look at, be it one of these or a read that failed: so that one question is
// all that a sector costs. Set last.
inline std::atomic<bool> attention = false;

// What is to be tidied up before an interrupted run ends: called between two sectors, by no handler. Null:
// nothing.
inline void (*beforeInterruptedEnd)() = nullptr;

// A handler may use no others.
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

inline bool IsInterrupted() {
  return interruption != 0;
}

}  // namespace trovisk

#endif
