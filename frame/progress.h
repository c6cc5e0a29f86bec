// How far the run is, for somebody who waits for it: on one line of standard error that rewrites itself,
// where that is a terminal and standard output is none, and once where a signal asks for it. Between two
// sectors is also where an interrupted run ends. There is no thread and no timer.

#ifndef TROVISK_FRAME_PROGRESS_H
#define TROVISK_FRAME_PROGRESS_H

#include <string>
#include <string_view>

#include "frame/bytes.h"
#include "frame/interruption.h"

namespace trovisk {

// What the line says.
struct ProgressFigures {
  std::string_view doing = {};  // what the pass does with its sectors, e.g. "loading"; empty: shows them
  u64 sector = 0;               // the one that comes next
  u64 first = 0;                // the sectors that the pass is about
  u64 last = 0;                 // with the top bit set: nobody knows
  u64 bytesRead = 0;
  u64 reported = 0;  // bytes
  u64 unreadable = 0;
  double seconds = 0;  // of the run
  double secondsOfPass = 0;
};

std::string ProgressText(const ProgressFigures& figures);

// As a run finds it.
void StartProgress();

// A pass over those sectors begins. doing, first, last: as above; doing is a literal.
void BeginPass(std::string_view doing, u64 first, u64 last);

// For BetweenSectors alone.
struct ProgressWatch {
  u64 sector = 0;
  u64 sectorsToLook = 0;  // until the clock is looked at
};
inline ProgressWatch progressWatch;
void LookAround();

// Stands between any two sectors of a pass; sector: the next one. Looking at a clock takes as long as a tenth
// of a sector's dump, so that it is not done every time.
inline void BetweenSectors(u64 sector) {
  progressWatch.sector = sector;
  if (--progressWatch.sectorsToLook == 0 || attention.load(std::memory_order_relaxed)) LookAround();
}

// The end of the run: no line is left, and who has asked for one in the last sector gets it.
void EndProgress();

}  // namespace trovisk

#endif
