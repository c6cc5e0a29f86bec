#include "frame/run.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

#include "frame/decoders.h"
#include "frame/disk_path.h"
#include "frame/global.h"
#include "frame/help.h"
#include "frame/progress.h"
#include "frame/report/report.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"

namespace trovisk {
namespace {

// What the command line asks for. Sectors are -1 where they are not given.
struct Request {
  std::wstring diskPath;
  i64 first = -1;
  i64 last = -1;

  bool WholeDisk() const { return first < 0; }
  bool SingleSector() const { return first >= 0 && last < 0; }
};

bool IsNegative(u64 position) {
  return static_cast<i64>(position) < 0;
}

// A signed decimal number at the start of the text; 0 where there is none, the nearest limit where it is too
// large.
i64 ParseSector(const char* argument) {
  i64 sector = 0;
  std::istringstream(argument) >> sector;
  return sector;
}

// Takes a sector argument; false, after a message, when it lies beyond the end of the disk.
bool TakeSector(const char* argument, u64 lastOnDisk, i64& sector) {
  sector = ParseSector(argument);
  if (sector < 0 || static_cast<u64>(sector) <= lastOnDisk) return true;
  errors << "There aren't that many sectors on the disk !!\n";
  return false;
}

void PrintReadingLine(const Request& request) {
  report << "Reading " << request.diskPath;
  if (request.WholeDisk()) {
    report << " [ whole disk ]";
  } else if (request.SingleSector()) {
    report << " sector " << request.first;
  } else {
    report << " sectors [ " << request.first << " - " << request.last << " ]";
  }
  report << LineEnd << LineEnd;
}

// Moves the disk to a sector. position is the one that the message names when that fails.
bool SeekForPass(u64 sector, u64 position) {
  if (SeekToSector(sector)) return true;
  errors << "Failed to seek to sector " << static_cast<i64>(position) << '\n';
  return false;
}

// A device that says that its sectors have no bytes shows the first bytes of the disk in each of them, so
// that a chain through them would have no end.
constexpr u64 kMostSectorsOfNoBytes = u64{1} << 10;

// Calls the sector's decoder, with the disk at the sector, for the sector to go on with. A decoder gives one
// beyond its own, always; another would keep the pass from ending, so it ends it.
u64 Visit(const TocEntry& entry, u64 sector, bool print) {
  const u64 next = entry.decoder(entry.description, sector, print);
  if (disk.bytesPerSector == 0 && next >= kMostSectorsOfNoBytes) return kEndPass;
  return next > sector ? next : kEndPass;
}

// Walks the registered sectors in ascending order, those included that the decoders register ahead.
bool LoadToc(u64 walkLimit) {
  report << "Loading TOC ..." << LineEnd;
  BeginPass("loading", 0, walkLimit);
  for (u64 position = 0; position <= walkLimit && !IsNegative(position);) {
    const auto next = disk.toc.FirstAtOrAfter(position);
    if (!next) break;
    BetweenSectors(next->first);
    if (!SeekForPass(next->first, position)) return false;
    position = Visit(next->entry, next->first, false);
  }
  report << LineEnd;
  return true;
}

// Whether the sector's report was asked for; in a whole-disk run every registered one's is.
bool IsRequested(const Request& request, u64 sector) {
  if (request.WholeDisk()) return true;
  const auto wanted = static_cast<i64>(sector);
  if (request.SingleSector()) return wanted == request.first;
  return request.first <= wanted && wanted <= request.last;
}

// The first sector at or after the position that the run shows although it is not registered.
std::optional<u64> NextUnregistered(const Request& request, u64 position) {
  if (request.WholeDisk()) return std::nullopt;
  const u64 next = std::max(position, static_cast<u64>(request.first));
  if (!IsRequested(request, next)) return std::nullopt;
  return next;
}

constexpr WideText kRawSector = L"Raw Sector";

// Moves from one registered or requested sector to the next: between them nothing happens.
bool PrintSectors(const Request& request, u64 walkLimit) {
  const u64 first = request.WholeDisk() ? 0 : static_cast<u64>(request.first);
  BeginPass("", first, request.SingleSector() ? first : walkLimit);
  u64 position = 0;
  auto registered = disk.toc.FirstAtOrAfter(position);
  while (position <= walkLimit && !IsNegative(position)) {
    const auto requested = NextUnregistered(request, position);
    if (!registered && !requested) break;
    const u64 next = std::min(registered ? registered->first : kEndPass, requested.value_or(kEndPass));
    if (next != position) {
      position = next;
      continue;
    }
    BetweenSectors(position);
    if (!SeekForPass(position, position)) return false;
    if (registered && registered->first == position) {
      position = Visit(registered->entry, position, IsRequested(request, position));
      registered = disk.toc.FirstAtOrAfter(position);
    } else {
      DumpRawSector(kRawSector, position, true);  // which registers nothing
      ++position;
    }
  }
  return true;
}

// Rows for sectors beyond the end of the disk. A fuzzer's runs have to be short.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
constexpr u64 kRowsBeyondDisk = u64{1} << 8;
#else
constexpr u64 kRowsBeyondDisk = u64{1} << 24;
#endif

// One row per registered sector.
void PrintToc(u64 lastOnDisk) {
  report << LineEnd;
  report << "\tTable Of Contents" << LineEnd;
  report << "\t=================" << LineEnd << LineEnd;
  report << "   Sector#\tContents" << LineEnd;
  report << "   -------\t--------" << LineEnd;
  // A damaged entry may register more sectors than the disk has. Those beyond its end (all of them, when its
  // length is unknown) are listed as well, but not without limit: from then on a run shows its ends alone.
  BeginPass("listing", 0, kEndPass);
  const u64 sectorsOnDisk = lastOnDisk + 1;
  u64 rowsBeyondDisk = 0;
  u64 position = 0;
  while (const auto run = disk.toc.FirstAtOrAfter(position)) {
    const std::string description = ToNarrow(run->entry.description);
    for (position = run->first;; ++position) {
      BetweenSectors(position);
      if (position >= sectorsOnDisk && ++rowsBeyondDisk > kRowsBeyondDisk && position != run->first &&
          position != run->last) {
        report << "       ..." << LineEnd;
        position = run->last;
      }
      PrintTocRow(position, description);
      if (position == run->last) break;
    }
    if (++position == 0) break;
  }
}

int RunOnOpenDisk(Request request, int argc, char** argv) {
  const u64 lastOnDisk = disk.GetLastSector();
  report << "Last sector on disk is " << lastOnDisk << LineEnd;
  if (disk.length) HintAtShortDisk(*disk.length, disk.bytesPerSector);
  if (argc > 2 && !TakeSector(argv[2], lastOnDisk, request.first)) return 1;
  if (argc > 3 && !TakeSector(argv[3], lastOnDisk, request.last)) return 1;

  u64 walkLimit = lastOnDisk;
  if (argc > 3) {
    walkLimit = static_cast<u64>(request.last);
  } else if (request.first >= 0) {
    walkLimit = static_cast<u64>(request.first);
  }

  PrintReadingLine(request);
  AddTocEntry(disk, 0, DecodeMasterBootRecord, L"Master Boot Record");
  if (!LoadToc(walkLimit) || !PrintSectors(request, walkLimit)) return 1;
  disk.Close();
  if (request.WholeDisk()) PrintToc(lastOnDisk);
  disk.toc.Clear();
  return 0;
}

// Puts back everything that an earlier run in this process has left behind.
void StartAfresh() {
  StartProgress();
  report.Start();
  errors.Start();
  disk.Reset();
  ResetVolumesState();
  ResetGptState();
  ResetLdmState();
}

}  // namespace

int Run(int argc, char** argv) {
  StartAfresh();
  if (AnswerOption(argc, argv)) return 0;
  report << "Trovisk version 1.4 built " << __DATE__ << LineEnd << LineEnd;
  int status = 1;
  if (argc < 2 || argc > 4) {
    errors << "Usage " << (argc > 0 ? argv[0] : "") << " disk# [first_sector#] [LastSector#]\n";
  } else {
    const Request request{DiskPath(argv[1])};
    if (disk.Open(request.diskPath, argv[1])) status = RunOnOpenDisk(request, argc, argv);
    if (disk.openError != 0) HintAtDisks(disk.openError);
    disk.Close();
  }
  report.Flush();
  EndProgress();
  return status;
}

}  // namespace trovisk
