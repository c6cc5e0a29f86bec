// Read and seek faults at every place of a survey of each sample disk, and of the structures behind it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <set>

#include "map/arrange.h"
#include "map/survey.h"
#include "tests/disks/samples.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

struct Sample {
  const char* name;
  Disk disk;
};

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> samples = {
      {"GPT", GptSample()}, {"MBR", MbrSample()}, {"dynamic", DynamicSample()}};
  return samples;
}

struct Surveyed {
  DiskMap map;
  std::vector<Structure> structures;
  u64 reads = 0;
  u64 seeks = 0;
};

Surveyed SurveyWith(const Disk& disk, const std::vector<Fault>& faults) {
  Surveyed surveyed;
  surveyed.map = SurveyOf({.disk = disk, .faults = faults});
  surveyed.structures = StructuresNow();
  CloseSurvey();
  const CallRecord calls = CallsSinceInsertion();
  surveyed.reads = calls.Of(Call::kRead);
  surveyed.seeks = calls.Of(Call::kSeek);
  return surveyed;
}

class SurveyFaults : public ::testing::TestWithParam<std::size_t> {
 protected:
  void SetUp() override {
    sound_ = SurveyWith(Samples()[GetParam()].disk, {});
    ASSERT_GT(sound_.reads, 100u);
  }

  Surveyed With(Fault fault) const { return SurveyWith(Samples()[GetParam()].disk, {fault}); }

  // The map is in order, and what it says of a disk all of which could be read but once is what it says of a
  // sound one, but for what lies behind the one that failed: no more than one table's partitions and what is
  // in them can be missing, and no check turns bad unseen.
  void ExpectMost(const Surveyed& surveyed) const {
    EXPECT_EQ(ComplaintAbout(surveyed.map.extents, surveyed.map.disk.sectors), "");
    EXPECT_EQ(surveyed.map.disk.sectors, sound_.map.disk.sectors);
    EXPECT_FALSE(surveyed.structures.empty());
    if (WrongChecks(surveyed.map) != WrongChecks(sound_.map)) {
      EXPECT_EQ(surveyed.map.ExitStatus(), 2);
    }
  }

  Surveyed sound_;
};

TEST_P(SurveyFaults, TheNthReadFailsForEveryN) {
  for (const Fault& kind :
       {Fault{.call = Call::kRead, .error = EIO}, Fault{.call = Call::kRead, .amount = 100}}) {
    for (u64 n = 1; n <= sound_.reads; ++n) {
      SCOPED_TRACE("read " + std::to_string(n));
      Fault fault = kind;
      fault.nth = n;
      ExpectMost(With(fault));
      if (HasFailure()) return;
    }
  }
}

TEST_P(SurveyFaults, TheNthSeekIsRefusedForEveryN) {
  for (u64 n = 1; n <= sound_.seeks; ++n) {
    SCOPED_TRACE("seek " + std::to_string(n));
    ExpectMost(With({.call = Call::kSeek, .nth = n, .error = EINVAL}));
    if (HasFailure()) return;
  }
}

// Of each structure's sector every read fails: the others are found all the same, unless it alone leads
// there.
TEST_P(SurveyFaults, ASectorThatCannotBeReadAtAllCostsWhatItAloneLeadsTo) {
  std::set<u64> sectors;
  for (const Structure& structure : sound_.structures)
    sectors.insert(structure.sector);
  for (const u64 sector : sectors) {
    SCOPED_TRACE("sector " + std::to_string(sector));
    const Surveyed surveyed =
        With({.call = Call::kRead, .calls = kAnySector, .error = EIO, .sector = sector});
    ExpectMost(surveyed);
    // What a structure leads to lies in its own volume or table; sector 0 leads to all.
    const std::size_t wanted = sector == 0 ? 1 : sound_.structures.size() / 4;
    EXPECT_GE(surveyed.structures.size(), wanted);
    const auto found = std::find_if(surveyed.structures.begin(), surveyed.structures.end(),
                                    [&](const Structure& each) { return each.sector == sector; });
    if (found != surveyed.structures.end()) {
      EXPECT_FALSE(found->valid);
      EXPECT_TRUE(found->bytes.empty());
    }
    if (HasFailure()) return;
  }
}

// Every read fails: the map says that nothing could be read.
TEST_P(SurveyFaults, ADiskOfWhichNothingCanBeRead) {
  const Surveyed surveyed = With({.call = Call::kRead, .calls = kAnySector, .error = EIO});
  EXPECT_EQ(VerdictOf(surveyed.map, "master boot record's end mark", 0), "missing");
  EXPECT_EQ(surveyed.map.ExitStatus(), 2);
  EXPECT_EQ(ComplaintAbout(surveyed.map.extents, surveyed.map.disk.sectors), "");
}

INSTANTIATE_TEST_SUITE_P(SampleDisks, SurveyFaults, ::testing::Range<std::size_t>(0, 3),
                         [](const auto& sample) { return std::string(Samples()[sample.param].name); });

}  // namespace
}  // namespace trovisk::test
