#include "frame/disk/image_name.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace trovisk {
namespace {

constexpr std::string_view kAlphabet = "abcdefghijklmnopqrstuvwxyz";

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
  if (leading == letters.npos || letters[leading] != 'y' || letters.size() != 2 * (leading + 1)) return {};
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

std::string PieceNames::Before(std::string_view path, bool (*exists)(const std::string& path)) {
  constexpr std::size_t kFewestDigits = 3;
  constexpr std::size_t kMostDigits = 9;
  constexpr std::size_t kLetters = 2;
  const std::size_t dot = path.rfind('.');
  if (dot == path.npos) return {};
  std::string suffix(path.substr(dot + 1));
  const std::string base(path.substr(0, dot + 1));
  if (suffix.size() >= kFewestDigits && suffix.size() <= kMostDigits && IsNumber(suffix)) {
    const unsigned long number = std::stoul(suffix);
    if (number == 0 || (!exists(base + "000") && !exists(base + "001"))) return {};
    const std::string before = std::to_string(number - 1);
    return base + std::string(std::max(before.size(), kFewestDigits) - before.size(), '0') + before;
  }
  if (suffix.size() != kLetters || suffix == "aa" || suffix.find_first_not_of(kAlphabet) != suffix.npos ||
      !exists(base + "aa")) {
    return {};
  }
  if (suffix[1] != 'a') {
    --suffix[1];
  } else {
    --suffix[0];
    suffix[1] = 'z';
  }
  return base + suffix;
}

bool PieceNames::IsOneOfSeveral(std::string_view path, bool (*exists)(const std::string& path)) {
  const std::string before = Before(path, exists);
  return (!before.empty() && exists(before)) || (IsFirst(path) && !PieceNames(path).Next(exists).empty());
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
  constexpr int kLookedFor = 1000;
  const std::string next = NextSuffix(suffix_);
  std::vector<std::string> starts = {suffix_};  // of names of one length
  for (std::size_t i = 0; i < starts.size(); ++i) {
    std::string behind = starts[i];
    for (int looked = 0; looked < kLookedFor && !behind.empty(); ++looked) {
      if (behind != suffix_ && exists(base_ + behind))
        return base_ + (next.empty() ? NextLength(suffix_) : next);
      if (std::string longer = NextLength(behind); !longer.empty()) starts.push_back(std::move(longer));
      behind = NextSuffix(behind);
    }
  }
  return {};
}

}  // namespace trovisk
