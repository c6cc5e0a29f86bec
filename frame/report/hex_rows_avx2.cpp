// The rows of a listing, written with the vectors of processors that have AVX2.

#include "frame/report/hex_row_layout.h"
#include "frame/report/hex_rows.h"

// Not on Windows, where GCC does not align vectors of that size on the stack. A read and a write cost so much
// more there that the rows hardly count.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(_WIN32)

#include <immintrin.h>
#define TROVISK_AVX2 __attribute__((target("avx2")))

namespace trovisk {
namespace {

// A row with an offset of three digits is made as five vectors of sixteen characters, the last of which
// overlaps the one before.
constexpr std::size_t kShortRowText = kOffsetText + kAfterOffset;
constexpr std::size_t kVector = 16;
constexpr std::size_t kCharacters = kOffsetText + kCellsText + kGap;  // where the bytes' characters begin
static_assert(kCharacters < 4 * kVector && kShortRowText == 4 * kVector + 12);

// What a vector takes from the cells, twice, for two rows at a time. Of each character: which of the row's
// digits it is, or that it is a blank; zero in both where it is neither.
struct CellLayout {
  std::array<u8, 32> digit;  // its place among sixteen digits; with the top bit set, the shuffle gives zero
  std::array<u8, 32> blank;
};

// The row's digit at which the digits of the second vector begin; those of the first begin with digit 0,
// those of the others with digit 16, the first of byte 8.
constexpr int kSecondVectorDigit = 6;

// firstDigit: the row's digit that stands at place 0 of the vector that the digits are taken from.
constexpr CellLayout MakeLayout(std::size_t vector, std::size_t firstDigit) {
  CellLayout layout{};
  for (std::size_t i = 0; i < kVector; ++i) {
    const std::size_t place = vector * kVector + i;
    const bool inCells = place >= kOffsetText && place < kOffsetText + kCellsText;
    const std::size_t cell = (place - kOffsetText) / kCellText;
    const std::size_t part = (place - kOffsetText) % kCellText;
    const bool digit = inCells && part < 2;
    const bool blank = !digit && place >= kOffsetText && place < kCharacters;
    layout.digit[i] = layout.digit[i + kVector] =
        digit ? static_cast<u8>(cell * 2 + part - firstDigit) : u8{0x80};
    layout.blank[i] = layout.blank[i + kVector] = blank ? u8{' '} : u8{0};
  }
  return layout;
}
constexpr CellLayout kLayout0 = MakeLayout(0, 0);
constexpr CellLayout kLayout1 = MakeLayout(1, kSecondVectorDigit);
constexpr CellLayout kLayout2 = MakeLayout(2, 16);
constexpr CellLayout kLayout3 = MakeLayout(3, 16);

// What the first vector of a row has but its digits, for one row after the other of a sector of 4096 bytes.
constexpr std::array<u8, kRowOffsets.size() * kVector> MakeStarts() {
  std::array<u8, kRowOffsets.size() * kVector> starts{};
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t place = i % kVector;
    starts[i] =
        place < kOffsetText ? static_cast<u8>(kRowOffsets[i / kVector][place]) : kLayout0.blank[place];
  }
  return starts;
}
constexpr auto kStarts = MakeStarts();

TROVISK_AVX2 inline __m256i Load(const void* bytes) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(bytes));
}

// Two vectors that follow one another: their lower halves into one row, their upper halves into the next.
// Wide stores, as some processors take three times as long for one that is not at a multiple of four.
TROVISK_AVX2 inline void StorePair(char* out, __m256i left, __m256i right) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_permute2x128_si256(left, right, 0x20));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + kShortRowText),
                      _mm256_permute2x128_si256(left, right, 0x31));
}

TROVISK_AVX2 inline void Store(char* out, __m256i characters) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(characters));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + kShortRowText), _mm256_extracti128_si256(characters, 1));
}

TROVISK_AVX2 inline __m256i Digits(__m256i digits, const CellLayout& layout) {
  return _mm256_shuffle_epi8(digits, Load(layout.digit.data()));
}

TROVISK_AVX2 inline __m256i Cells(__m256i digits, const CellLayout& layout) {
  return _mm256_or_si256(Digits(digits, layout), Load(layout.blank.data()));
}

}  // namespace

// Two rows at a time, one in each half of the vectors: shuffles look up the digits of all bytes, others move
// these into their cells.
TROVISK_AVX2 char* PutRowsByAvx2(char* out, Bytes bytes, std::size_t offset) {
  const __m256i digitOf =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kHexDigits.data())));
  const __m256i lowHalf = _mm256_set1_epi8(15);
  std::size_t at = 0;
  for (; at + 2 * kRowBytes <= bytes.size(); at += 2 * kRowBytes) {
    const std::size_t row = (offset + at) / kRowBytes;
    if (row + 1 >= kRowOffsets.size()) break;
    const __m256i rows = Load(bytes.data() + at);
    const __m256i high = _mm256_shuffle_epi8(digitOf, _mm256_and_si256(_mm256_srli_epi16(rows, 4), lowHalf));
    const __m256i low = _mm256_shuffle_epi8(digitOf, _mm256_and_si256(rows, lowHalf));
    const __m256i first = _mm256_unpacklo_epi8(high, low);  // the digits of a row's bytes 0 to 7
    const __m256i last = _mm256_unpackhi_epi8(high, low);   // and 8 to 15
    // As signed numbers, bytes from 0x80 on are less than a blank.
    const __m256i other = _mm256_or_si256(_mm256_cmpgt_epi8(_mm256_set1_epi8(' '), rows),
                                          _mm256_cmpeq_epi8(rows, _mm256_set1_epi8(0x7F)));
    const __m256i characters = _mm256_blendv_epi8(rows, _mm256_set1_epi8('.'), other);

    StorePair(out, _mm256_or_si256(Digits(first, kLayout0), Load(kStarts.data() + row * kVector)),
              Cells(_mm256_alignr_epi8(last, first, kSecondVectorDigit), kLayout1));
    StorePair(out + 2 * kVector, Cells(last, kLayout2),
              _mm256_or_si256(Cells(last, kLayout3), _mm256_bslli_epi128(characters, kCharacters % kVector)));
    Store(out + kShortRowText - kVector, _mm256_alignr_epi8(_mm256_set1_epi8('\n'), characters, 1));
    out += 2 * kShortRowText;
  }
  return at == bytes.size() ? out : PutRowsByTable(out, FromAt(bytes, at), offset + at);
}

bool HasAvx2() {
  return __builtin_cpu_supports("avx2") != 0;
}

}  // namespace trovisk

#else

namespace trovisk {

char* PutRowsByAvx2(char* out, Bytes bytes, std::size_t offset) {
  return PutRowsByTable(out, bytes, offset);
}

bool HasAvx2() {
  return false;
}

}  // namespace trovisk

#endif
