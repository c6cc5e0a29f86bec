#include "frame/progress.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "frame/global.h"
#include "frame/report/output.h"
#include "frame/report/report.h"
#include "frame/report/status_line.h"

namespace trovisk {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kQuiet{1};            // a run that is shorter shows nothing
constexpr std::chrono::milliseconds kRepeated{100};  // what an eye can follow

// The clock is looked at behind each sector, and twice as rarely each time that the sectors in between took
// less than that together, down to one look in so many sectors: any of them may be the one that takes long.
constexpr u64 kSectorsOfALook = 16;
constexpr std::chrono::milliseconds kFast{10};
constexpr u64 kNever = ~u64{0};

struct State {
  bool shown = false;  // as a line that rewrites itself
  Clock::time_point start;
  Clock::time_point startOfPass;
  Clock::time_point looked;
  u64 sectorsOfALook = 1;
  Clock::time_point drawn;
  std::string_view doing;
  u64 first = 0;
  u64 last = kNever;
};
State state;

// With tenths below 100: an ordinary line fits into 80 columns.
std::string NumberText(double value) {
  const auto tenths = static_cast<u64>(value * 10);
  if (tenths >= 1000) return std::to_string(tenths / 10);
  return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

std::string SizeText(u64 bytes) {
  constexpr std::array<std::string_view, 5> kUnits = {" KiB", " MiB", " GiB", " TiB", " PiB"};
  auto size = static_cast<double>(bytes) / 1024;
  std::size_t unit = 0;
  for (; size >= 1024 && unit + 1 < kUnits.size(); ++unit)
    size /= 1024;
  std::string text = NumberText(size);
  return text += kUnits[unit];
}

std::string TimeText(u64 seconds) {
  const auto twoDigits = [](u64 number) { return (number < 10 ? ":0" : ":") + std::to_string(number); };
  const u64 minutes = seconds / 60;
  const std::string text =
      minutes < 60 ? std::to_string(minutes) : std::to_string(minutes / 60) + twoDigits(minutes % 60);
  return text + twoDigits(seconds % 60);
}

double SecondsSince(Clock::time_point start, Clock::time_point now) {
  return std::chrono::duration<double>(now - start).count();
}

std::string TextOfNow(Clock::time_point now) {
  return ProgressText({.doing = state.doing,
                       .sector = progressWatch.sector,
                       .first = state.first,
                       .last = state.last,
                       .bytesRead = disk.bytesRead,
                       .reported = report.Size(),
                       .unreadable = disk.failedReads,
                       .seconds = SecondsSince(state.start, now),
                       .secondsOfPass = SecondsSince(state.startOfPass, now)});
}

// Whether standard error is a terminal or not.
void TellOnce() {
  progressWanted = false;
  report.Flush();
  EraseStatusLine();
  const std::string line = TextOfNow(Clock::now()) + '\n';
  WriteOutput(Output::kErrors, line.data(), line.size());
}

}  // namespace

std::string ProgressText(const ProgressFigures& figures) {
  const u64 count = figures.last - figures.first + 1;
  const u64 done = figures.sector - figures.first;
  const bool counts = figures.last >> 63 == 0 && figures.first <= figures.sector && done < count;
  std::string text(figures.doing);
  text += text.empty() ? "sector " : " sector ";
  text += std::to_string(figures.sector);
  if (counts && figures.first != 0) text += ", " + std::to_string(done + 1);
  if (counts) text += " of " + std::to_string(count);

  constexpr double kMiB = 1024.0 * 1024;
  const double speed =
      figures.seconds > 0 ? static_cast<double>(figures.bytesRead) / kMiB / figures.seconds : 0;
  text += ", " + NumberText(speed) + " MiB/s, report " + SizeText(figures.reported);

  if (counts && done > 0) {
    constexpr double kTooLong = 1000.0 * 3600;  // which says nothing
    const double left = figures.secondsOfPass / static_cast<double>(done) * static_cast<double>(count - done);
    if (left < kTooLong) text += ", " + TimeText(static_cast<u64>(left)) + " left";
  }
  return text + ", " + std::to_string(figures.unreadable) + " unreadable";
}

void StartProgress() {
  interruption = 0;
  progressWanted = false;
  attention = false;
  state = {};
  state.shown = IsTerminal(Output::kErrors) && !IsTerminal(Output::kReport);
  state.start = state.startOfPass = state.looked = Clock::now();
  progressWatch = {.sectorsToLook = state.shown ? 1 : kNever};
}

void BeginPass(std::string_view doing, u64 first, u64 last) {
  state.doing = doing;
  state.first = first;
  state.last = last;
  state.startOfPass = Clock::now();
}

void LookAround() {
  attention = false;
  EndIfInterrupted();
  if (progressWanted) TellOnce();
  progressWatch.sectorsToLook = kNever;
  if (!state.shown) return;
  const Clock::time_point now = Clock::now();
  state.sectorsOfALook = now - state.looked < kFast ? std::min(2 * state.sectorsOfALook, kSectorsOfALook) : 1;
  progressWatch.sectorsToLook = state.sectorsOfALook;
  state.looked = now;
  if (now - state.start < kQuiet || now - state.drawn < kRepeated) return;
  state.drawn = now;
  ShowStatusLine(TextOfNow(now));
}

void EndProgress() {
  EndIfInterrupted();
  if (progressWanted) TellOnce();
  EraseStatusLine();
}

}  // namespace trovisk
