#include "frame/disk/image_name.h"

#include <algorithm>

namespace trovisk {
namespace {

bool IsNumber(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char digit) { return digit >= '0' && digit <= '9'; });
}

// The number behind this one: 999 is followed by 1000.
std::string NextNumber(const std::string& number) {
  const std::string next = std::to_string(std::stoul(number) + 1);
  return next.size() < number.size() ? std::string(number.size() - next.size(), '0') + next : next;
}

// The letters behind these, of the same length; empty behind zz.
std::string NextLetters(std::string letters) {
  for (std::size_t i = letters.size(); i-- > 0;) {
    if (letters[i] != 'z') {
      ++letters[i];
      return letters;
    }
    letters[i] = 'a';
  }
  return {};
}

// Where two letters do not suffice, each length ends before its first letter becomes a z, which then leads
// the letters of the next length: yz, zaaa, ..., zyzz, zzaaaa.
std::string NextLength(const std::string& letters) {
  const std::size_t leading = letters.find_first_not_of('z');
  if (leading == letters.npos || letters[leading] != 'y') return {};
  if (letters.find_first_not_of('z', leading + 1) != letters.npos) return {};
  return std::string(leading + 1, 'z') + std::string(letters.size() - leading + 1, 'a');
}

// The suffix behind this one, of the same length where there is such a one.
std::string NextSuffix(const std::string& suffix) {
  return IsNumber(suffix) ? NextNumber(suffix) : NextLetters(suffix);
}

}  // namespace

bool PieceNames::IsFirst(std::string_view path) {
  return path.ends_with(".001") || path.ends_with(".000") || path.ends_with(".aa");
}

std::string PieceNames::Before(std::string_view first) {
  if (!first.ends_with(".001")) return {};
  return std::string(first.substr(0, first.size() - 1)) + "0";
}

PieceNames::PieceNames(std::string_view first) {
  const std::size_t dot = first.rfind('.');
  base_ = first.substr(0, dot + 1);
  suffix_ = first.substr(dot + 1);
}

std::string PieceNames::Next(bool (*exists)(const std::string& path)) {
  constexpr std::size_t kMostDigits = 9;
  if (suffix_.size() > kMostDigits) return {};
  for (const std::string& candidate : {NextSuffix(suffix_), NextLength(suffix_)}) {
    if (candidate.empty() || !exists(base_ + candidate)) continue;
    suffix_ = candidate;
    return base_ + suffix_;
  }
  return {};
}

std::string PieceNames::Missing(bool (*exists)(const std::string& path)) const {
  constexpr int kLookedFor = 16;
  const std::string next = NextSuffix(suffix_);
  std::string behind = next;
  for (int i = 0; i < kLookedFor && !behind.empty(); ++i) {
    behind = NextSuffix(behind);
    if (!behind.empty() && exists(base_ + behind)) return base_ + next;
  }
  return {};
}

}  // namespace trovisk
