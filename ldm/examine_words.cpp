#include "ldm/examine_words.h"

#include <algorithm>
#include <utility>

namespace trovisk {
namespace {

constexpr u64 kMostOfOneName = 16;

}  // namespace

std::string SmallLetters(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

std::string Version(u64 version) {
  return std::to_string(version >> 16) + "." + std::to_string(version & 0xFFFF);
}

std::string SectorsFrom(u64 first, u64 count) {
  return std::to_string(count) + " sectors from " + std::to_string(first);
}

void ManyChecks::Add(Verdict verdict, u64 sector, std::string found, std::string expected) {
  if (++count_ > kMostOfOneName) return;
  checks_.push_back({sector, std::string(name_), verdict, std::move(found), std::move(expected)});
}

void ManyChecks::Finish(u64 sector, std::string_view good, std::vector<std::string>& remarks) {
  if (count_ == 0) {
    checks_.push_back({sector, std::string(name_), Verdict::kGood, std::string(good), std::string(good)});
  } else if (count_ > kMostOfOneName) {
    remarks.push_back("The check \"" + std::string(name_) + "\" failed " + std::to_string(count_) +
                      " times; the first " + std::to_string(kMostOfOneName) + " are shown.");
  }
}

}  // namespace trovisk
