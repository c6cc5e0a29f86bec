// Read and seek faults at every place of a run over each sample disk: the report up to there, the messages,
// and what the run goes on with.
//
// What a run must print is put together from the undisturbed run's text, cut where the call that fails was
// made: a decoder that cannot read or seek ends the pass that it is in, and the pass alone. What was
// registered by then is printed, and the decoders that print go on registering.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <sstream>

#include "tests/disks/samples.h"
#include "tests/support/expected.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

constexpr u64 kSectorSize = 512;

struct Sectors {
  u64 first;
  u64 last;
};

// A structure that registers sectors in front of its own: when the loading pass does not come to it, it is
// too late to print them.
struct Behind {
  u64 registrar;
  Sectors sectors;
};

struct Sample {
  const char* name;
  Disk disk;
  std::vector<Behind> behind;
};

const std::vector<Sample>& Samples() {
  constexpr u64 kMiB = 2048;
  constexpr u64 kLast = 196607;
  static const std::vector<Sample> samples = {
      {"GPT",
       GptSample(),
       // The private header at the end of its partition; the backup header behind its array.
       {{57 * kMiB - 1, {56 * kMiB, 57 * kMiB - 2}}, {kLast, {kLast - 32, kLast - 1}}}},
      {"MBR", MbrSample(), {}},
      {"dynamic", DynamicSample(), {}}};
  return samples;
}

MemoryOutcome RunWith(const Disk& disk, const std::vector<Fault>& faults) {
  return RunInProcess({disk, faults});
}

constexpr std::string_view kTable = "\n\tTable Of Contents\n";
constexpr std::string_view kFirstReport = "\nReading sector # 0 [Master Boot Record]\n";

// The three parts of a whole-disk run's text: up to the end of the loading pass, the printing pass, the
// table.
struct Parts {
  std::string loading;
  std::string printed;
  std::string table;
};

Parts PartsOf(const std::string& out) {
  const std::size_t printed = out.find(kFirstReport);
  const std::size_t table = out.find(kTable);
  if (printed == std::string::npos || table == std::string::npos) return {out, "", ""};
  return {out.substr(0, printed), out.substr(printed, table - printed), out.substr(table)};
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

// The sector of a line that begins a sector's report; all ones for other lines.
u64 HeaderSector(const std::string& line) {
  for (const std::string_view start : {"Reading sector # ", "Reading FAT sector # "}) {
    if (line.starts_with(start) && line.find("[as a raw sector]") == std::string::npos) {
      return std::stoull(line.substr(start.size()));
    }
  }
  return kAnySector;
}

// The sector of a row of the table of contents; all ones for its headings.
u64 RowSector(const std::string& row) {
  const std::string number = row.substr(0, row.find('\t'));
  if (number.empty() || number.find_first_not_of(" 0123456789") != std::string::npos) return kAnySector;
  return std::stoull(number);
}

bool Contains(const std::vector<Sectors>& ranges, u64 sector) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Sectors& range) { return range.first <= sector && sector <= range.last; });
}

// A printing pass's text without the reports of some sectors.
std::string WithoutSectors(const std::string& printed, const std::vector<Sectors>& ranges) {
  if (ranges.empty()) return printed;
  std::string kept;
  bool keep = true;
  for (const std::string& line : LinesOf(printed)) {
    if (const u64 sector = HeaderSector(line); sector != kAnySector) keep = !Contains(ranges, sector);
    if (keep) kept += line + "\n";
  }
  return kept;
}

// Decoders that print the dump of their sector without regard to whether it can be read.
bool GoesOnWithoutItsDump(const std::string& printed) {
  std::string header;
  for (const std::string& line : LinesOf(printed)) {
    if (HeaderSector(line) != kAnySector) header = line;
  }
  for (const char* kind : {"PRIVHEAD", "DPOM", "DPOD", "SPACEDB", "SDBC", "SDBB", "NTFS boot sector]"}) {
    if (header.find(kind) != std::string::npos) return header.find("Backup") == std::string::npos;
  }
  return false;
}

// The listing at the start of a text, from the line of its heading (or "... empty ...") to the empty line
// behind.
std::string WithoutListing(const std::string& text) {
  constexpr std::string_view kEmpty = "... empty ...\n";
  if (text.starts_with(kEmpty)) return text.substr(kEmpty.size());
  const std::size_t lastRow = text.find("\n0x1F0  ");
  return text.substr(text.find("\n\n", lastRow) + 2);
}

class ReadFaults : public ::testing::TestWithParam<std::size_t> {
 protected:
  void SetUp() override {
    sample_ = &Samples()[GetParam()];
    whole_ = RunWith(sample_->disk, {});
    parts_ = PartsOf(whole_.out);
    ASSERT_FALSE(parts_.printed.empty());
    const auto& reads = whole_.reads;
    loads_ = static_cast<std::size_t>(
        std::find_if(reads.begin(), reads.end(),
                     [&](const ReadCall& read) { return read.reported > parts_.loading.size(); }) -
        reads.begin());
    ASSERT_GT(loads_, 5u);
    ASSERT_LT(loads_, reads.size());
  }

  u64 SectorOfRead(std::size_t read) const { return whole_.reads[read].offset / kSectorSize; }

  std::string ReportBefore(std::size_t read) const {
    return whole_.out.substr(0, static_cast<std::size_t>(whole_.reads[read].reported));
  }

  // The sectors that are not printed when the loading pass ends at that read.
  std::vector<Sectors> NotPrinted(std::size_t load) const {
    std::vector<Sectors> sectors;
    for (const Behind& each : sample_->behind) {
      if (SectorOfRead(load) <= each.registrar) sectors.push_back(each.sectors);
    }
    return sectors;
  }

  // The sectors that only the printing pass registers, those in front of the given one left out.
  std::vector<Sectors> RegisteredByPrinting(u64 sector) const {
    std::vector<Sectors> sectors;
    for (const Behind& each : sample_->behind) {
      const u64 first = std::max(each.sectors.first, sector + 1);
      if (first <= each.sectors.last) sectors.push_back({first, each.sectors.last});
    }
    return sectors;
  }

  // The printing pass's text where it ends, or loses a dump, at that read.
  std::string PrintedBefore(std::size_t read, bool dumpAlone) const {
    std::string printed = ReportBefore(read).substr(parts_.loading.size());
    if (!dumpAlone || !printed.ends_with("[as a raw sector]\n") || !GoesOnWithoutItsDump(printed))
      return printed;
    return printed + WithoutListing(parts_.printed.substr(printed.size()));
  }

  // Every row is one of the undisturbed run's. Rows of sectors outside the ranges are all there; those of
  // ReFS checkpoints only when their superblock was printed.
  void ExpectTable(const Parts& parts, const std::vector<Sectors>& ranges) const {
    const std::vector<std::string> rows = LinesOf(parts.table);
    const std::vector<std::string> all = LinesOf(parts_.table);
    std::size_t missing = 0;
    std::size_t at = 0;
    for (const std::string& row : all) {
      if (at < rows.size() && rows[at] == row) {
        ++at;
        continue;
      }
      ++missing;
      const bool checkpoint = row.ends_with("\tReFS CHKP Sector");
      if (checkpoint) {
        EXPECT_EQ(parts.printed.find("Number Of Checkpoint Refs"), std::string::npos) << row;
      } else {
        EXPECT_TRUE(Contains(ranges, RowSector(row))) << "missing: " << row;
      }
    }
    EXPECT_EQ(at, rows.size()) << "a row that the undisturbed run does not have: "
                               << rows[std::min(at, rows.size() - 1)];
    EXPECT_EQ(all.size() - rows.size(), missing);
  }

  // Each failure of the disk layer is followed by the decoder's own message.
  void ExpectMessages(const std::string& err, const std::string& layer, u64 sector, std::size_t most) const {
    const std::vector<std::string> lines = LinesOf(err);
    std::size_t failures = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i] != layer) continue;
      ++failures;
      ASSERT_LT(i + 1, lines.size());
      const std::string number = std::to_string(sector);
      EXPECT_TRUE(lines[i + 1] == "Error reading sector" ||
                  lines[i + 1] == "Error reading sector #" + number ||
                  lines[i + 1] == "Error reading sector " + number)
          << lines[i + 1];
    }
    EXPECT_GE(failures, 1u);
    EXPECT_LE(failures, most);
  }

  const Sample* sample_ = nullptr;
  MemoryOutcome whole_;
  Parts parts_;
  std::size_t loads_ = 0;  // reads of the loading pass
};

struct Kind {
  Fault fault;
  const char* layer;
};

// A failing read and a short one.
std::vector<Kind> Kinds() {
  return {{{.call = Call::kRead, .error = EIO}, "Global::Read failed, error 5"},
          {{.call = Call::kRead, .amount = 100}, "Global::Read short read, needed 512, got 100"}};
}

TEST_P(ReadFaults, TheNthReadFailsForEveryN) {
  for (const Kind& kind : Kinds()) {
    for (std::size_t n = 0; n < whole_.reads.size(); ++n) {
      SCOPED_TRACE("read " + std::to_string(n + 1) + ", of sector " + std::to_string(SectorOfRead(n)));
      Fault fault = kind.fault;
      fault.nth = n + 1;
      const MemoryOutcome run = RunWith(sample_->disk, {fault});
      EXPECT_EQ(run.status, 0);
      ExpectMessages(run.err, kind.layer, SectorOfRead(n), 1);
      const Parts parts = PartsOf(run.out);
      if (n < loads_) {
        const std::vector<Sectors> notPrinted = NotPrinted(n);
        EXPECT_TRUE(SameText(parts.loading, ReportBefore(n)));
        EXPECT_TRUE(SameText(parts.printed, WithoutSectors(parts_.printed, notPrinted)));
        ExpectTable(parts, notPrinted);
      } else {
        EXPECT_EQ(parts.loading, parts_.loading);
        EXPECT_TRUE(SameText(parts.printed, PrintedBefore(n, true)));
        ExpectTable(parts, RegisteredByPrinting(SectorOfRead(n)));
      }
      if (HasFailure()) return;  // one of them says enough
    }
  }
}

// A sector that cannot be read at all fails in both passes.
TEST_P(ReadFaults, EveryReadOfARegisteredSectorFails) {
  for (const Kind& kind : Kinds()) {
    for (const std::string& row : LinesOf(parts_.table)) {
      const u64 sector = RowSector(row);
      if (sector == kAnySector) continue;
      SCOPED_TRACE("sector " + std::to_string(sector));
      std::size_t load = loads_;
      std::size_t print = whole_.reads.size();
      for (std::size_t n = whole_.reads.size(); n-- > 0;) {
        if (SectorOfRead(n) == sector) (n < loads_ ? load : print) = n;
      }
      Fault fault = kind.fault;
      fault.calls = kAnySector;
      fault.sector = sector;
      const MemoryOutcome run = RunWith(sample_->disk, {fault});
      EXPECT_EQ(run.status, 0);
      if (print == whole_.reads.size() && load == loads_) {
        EXPECT_EQ(run.out, whole_.out);  // never read at all
        continue;
      }
      ExpectMessages(run.err, kind.layer, sector, 2);
      const Parts parts = PartsOf(run.out);
      const std::vector<Sectors> notPrinted = load < loads_ ? NotPrinted(load) : std::vector<Sectors>{};
      EXPECT_TRUE(SameText(parts.loading, load < loads_ ? ReportBefore(load) : parts_.loading));
      EXPECT_TRUE(SameText(parts.printed, WithoutSectors(PrintedBefore(print, false), notPrinted)));
      std::vector<Sectors> notListed = RegisteredByPrinting(sector);
      notListed.insert(notListed.end(), notPrinted.begin(), notPrinted.end());
      // What only this sector, or one behind it, would have registered.
      if (load < loads_) notListed.push_back({sector + 1, kAnySector});
      ExpectTable(parts, notListed);
      if (HasFailure()) return;
    }
  }
}

// The seeks of a whole-disk run: the frame's to each sector that it visits, then the decoders' back to its
// start.
class SeekFaults : public ReadFaults {
 protected:
  void SetUp() override {
    ReadFaults::SetUp();
    // On a terminal nothing that was printed waits in the program.
    const std::vector<ReadCall> calls = RunOnTerminal();
    for (const ReadCall& call : calls) {
      const u64 sector = call.offset / kSectorSize;
      const bool printing = call.reported > parts_.loading.size();
      const bool back =
          !seeks_.empty() && seeks_.back().sector == sector && seeks_.back().printing == printing;
      const u64 before = seeks_.empty() || seeks_.back().printing != printing ? 0 : seeks_.back().sector;
      seeks_.push_back({sector, back ? seeks_.back().from : before, back ? seeks_.back().back + 1 : 0,
                        printing, whole_.out.substr(0, static_cast<std::size_t>(call.reported))});
    }
    ASSERT_GT(seeks_.size(), 5u);
  }

  // The seeks of an undisturbed run there. Its text is as long as the other's.
  std::vector<ReadCall> RunOnTerminal() const {
    const MemoryOutcome shown = RunInProcess({.disk = sample_->disk, .terminal = true});
    EXPECT_EQ(shown.out.size(), whole_.out.size());
    return shown.seeks;
  }

  // A run's messages without those of the undisturbed run.
  std::string OwnMessages(const std::string& err) const {
    const std::vector<std::string> others = LinesOf(whole_.err);
    std::string own;
    for (const std::string& line : LinesOf(err)) {
      if (std::find(others.begin(), others.end(), line) == others.end()) own += line + "\n";
    }
    return own;
  }

  struct Seek {
    u64 sector;
    u64 from;          // the sector that the pass visited before this one
    std::size_t back;  // 0: the frame's; 1 and up: the decoders', in their order
    bool printing;
    std::string report;  // up to there
  };

  // The boot sector's identification is the one decoder that adds a message, and the first to seek.
  bool Identifies(const Seek& seek) const {
    if (seek.back != 1) return false;
    return parts_.table.find(TocRow(seek.sector, "Generic Boot Sector")) != std::string::npos ||
           parts_.table.find(TocRow(seek.sector, "NTFS Boot Sector")) != std::string::npos;
  }

  // What the loading pass has not come to by then. The decoders that register sectors in front of their own
  // do so before they seek.
  std::vector<Sectors> NotLoaded(u64 sector) const {
    std::vector<Sectors> sectors;
    for (const Behind& each : sample_->behind) {
      if (sector < each.registrar) sectors.push_back(each.sectors);
    }
    return sectors;
  }

  // The frame's own ends the run, whatever the pass.
  void ExpectEndOfRun(const MemoryOutcome& run, const Seek& seek, const std::string& layer) const {
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(SameText(run.out, seek.report));
    const std::vector<std::string> lines = LinesOf(OwnMessages(run.err));
    ASSERT_EQ(lines.size(), 2u) << run.err;
    EXPECT_EQ(lines[0], layer);
    const std::string message = "Failed to seek to sector ";
    ASSERT_TRUE(lines[1].starts_with(message)) << run.err;
    // The printing pass stands at the sector then, the loading pass where the one before has led it: behind
    // it.
    const u64 named = std::stoull(lines[1].substr(message.size()));
    EXPECT_LE(named, seek.sector);
    EXPECT_GE(named, seek.printing ? seek.sector : seek.from);
  }

  std::vector<Seek> seeks_;
};

TEST_P(SeekFaults, TheNthSeekIsRefusedForEveryN) {
  const struct {
    Fault fault;
    const char* code;
  } kinds[] = {{{.call = Call::kSeek, .error = EINVAL}, ", error 22"},
               {{.call = Call::kSeek, .amount = 7}, ""}};
  for (const auto& [kind, code] : kinds) {
    for (std::size_t n = 0; n < seeks_.size(); ++n) {
      const Seek& seek = seeks_[n];
      const std::string number = std::to_string(seek.sector);
      SCOPED_TRACE("seek " + std::to_string(n + 1) + ", to sector " + number);
      Fault fault = kind;
      fault.nth = n + 1;
      const MemoryOutcome run = RunWith(sample_->disk, {fault});
      const std::string layer = "Global::Seek failed to seek to sector " + number + code;
      if (seek.back == 0) {
        ExpectEndOfRun(run, seek, layer);
      } else {
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(OwnMessages(run.err),
                  layer + (Identifies(seek) ? "\nError seeking back to start of sector\n" : "\n"));
        const Parts parts = PartsOf(run.out);
        if (seek.printing) {
          EXPECT_EQ(parts.loading, parts_.loading);
          EXPECT_TRUE(SameText(parts.loading + parts.printed, seek.report));
          ExpectTable(parts, RegisteredByPrinting(seek.sector));
        } else {
          const std::vector<Sectors> notLoaded = NotLoaded(seek.sector);
          EXPECT_TRUE(SameText(parts.loading, seek.report));
          EXPECT_TRUE(SameText(parts.printed, WithoutSectors(parts_.printed, notLoaded)));
          ExpectTable(parts, notLoaded);
        }
      }
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(SampleDisks, SeekFaults, ::testing::Range<std::size_t>(0, 3),
                         [](const auto& sample) { return std::string(Samples()[sample.param].name); });

INSTANTIATE_TEST_SUITE_P(SampleDisks, ReadFaults, ::testing::Range<std::size_t>(0, 3),
                         [](const auto& sample) { return std::string(Samples()[sample.param].name); });

}  // namespace
}  // namespace trovisk::test
