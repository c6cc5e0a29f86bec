#include "refimages/catalogue.h"

namespace trovisk {
namespace {

bool Compare(BootCode code, SectorView sector) {
  const BootCodeRow& row = RowOf(code);
  if (!row.digest) return false;
  const Bytes stretch = StretchOf(code, sector);
  return SampleHash(stretch) == row.digest->sample && Sha256(stretch) == row.digest->whole;
}

enum class Answer : u8 { kNone, kDiffers, kMatches };

// The answers about one sector, the one asked about last. They depend on its bytes alone.
Answer& AnswerFor(BootCode code, SectorView sector) {
  static std::array<u8, 512> asked{};
  static std::array<Answer, kBootCodeCount> answers{};
  if (!std::equal(sector.begin(), sector.end(), asked.begin())) {
    std::copy(sector.begin(), sector.end(), asked.begin());
    answers.fill(Answer::kNone);
  }
  return answers[static_cast<std::size_t>(code)];
}

}  // namespace

const BootCodeRow& RowOf(BootCode code) {
  return BootCodeCatalogue()[static_cast<std::size_t>(code)];
}

Bytes StretchOf(BootCode code, SectorView sector) {
  const BootCodeRow& row = RowOf(code);
  return SliceAt(sector, row.offset, row.length);
}

bool Matches(BootCode code, SectorView sector) {
  Answer& answer = AnswerFor(code, sector);
  if (answer == Answer::kNone) answer = Compare(code, sector) ? Answer::kMatches : Answer::kDiffers;
  return answer == Answer::kMatches;
}

u64 SampleHash(Bytes stretch) {
  constexpr std::size_t kWords = 8;
  constexpr std::size_t kDistance = 32;
  u64 hash = 0xCBF29CE484222325;
  for (std::size_t i = 0; i < kWords; ++i)
    hash = (hash ^ Le64At(stretch, i * kDistance)) * 0x100000001B3;
  return hash;
}

BootCodeDigest DigestOf(Bytes stretch) {
  return {SampleHash(stretch), Sha256(stretch)};
}

}  // namespace trovisk
