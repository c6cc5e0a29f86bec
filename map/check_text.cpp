// The checks for a person: what is wrong first, then what could not be checked, what is good as a number.

#include <algorithm>
#include <array>

#include "map/text_layout.h"
#include "map/text_map.h"

namespace trovisk {
namespace {

constexpr std::size_t kMostChecks = 200;

Colour ColourOf(Verdict verdict) {
  constexpr std::array kColours = {Colour::kGood, Colour::kWrong, Colour::kMissing, Colour::kNone};
  return kColours.at(static_cast<std::size_t>(verdict));
}

// What was found and expected, or why nothing was checked.
std::string Answer(const Check& check) {
  if (check.verdict == Verdict::kGood) return {};
  if (check.verdict == Verdict::kNotChecked) {
    const bool both = !check.found.empty() && check.found != "-" && !check.expected.empty();
    return check.found == "-" ? check.expected : check.found + (both ? "; " : "") + check.expected;
  }
  std::string answer;
  if (!check.found.empty()) answer = "found " + check.found;
  if (!check.expected.empty()) answer.append(answer.empty() ? "" : ", ").append("expected " + check.expected);
  return answer;
}

// A line on the question, and one on the answer where there is one.
std::string CheckText(const Check& check, const TextStyle& style) {
  constexpr std::size_t kIndent = 4;
  const std::string verdict(NameOfVerdict(check.verdict));
  std::string text = Wrap("  " + verdict + "  ", kIndent,
                          "sector " + std::to_string(check.sector) + ": " + check.name, style.width);
  text.replace(2, verdict.size(), Coloured(verdict, ColourOf(check.verdict), style));
  const std::string answer = Answer(check);
  return answer.empty() ? text : text + Wrap(std::string(kIndent, ' '), kIndent, answer, style.width);
}

bool IsNotChecked(const Check& check) {
  return check.verdict == Verdict::kNotChecked;
}

bool IsGood(const Check& check) {
  return check.verdict == Verdict::kGood;
}

std::string Summary(const DiskMap& map) {
  std::string summary;
  for (const Verdict verdict : {Verdict::kBad, Verdict::kMissing, Verdict::kNotChecked, Verdict::kGood}) {
    const auto count = std::count_if(map.checks.begin(), map.checks.end(),
                                     [verdict](const Check& check) { return check.verdict == verdict; });
    if (count == 0 && verdict != Verdict::kGood) continue;
    summary.append(summary.empty() ? "" : ", ").append(std::to_string(count)).append(" ");
    summary += NameOfVerdict(verdict);
  }
  return summary + ".";
}

std::string StructuresLine(const DiskMap& map, const TextStyle& style) {
  if (map.structures == 0) return {};
  std::string text = "Structures: " + std::to_string(map.structures) + " found";
  if (map.invalidStructures != 0)
    text.append(", ").append(std::to_string(map.invalidStructures)).append(" of them invalid or unreadable");
  return Wrap("", 0, text + ".", style.width);
}

// What is sound as far as it goes is no healthy disk where nothing stands that could be judged.
std::string WordsWhereNothingIsWrong(const DiskMap& map) {
  if (!HasTableOrVolume(map)) return "Nothing can be said: no partition table and no volume was found.";
  const u64 unknown = UnrecognisedVolumes(map);
  if (unknown == 0) return "Nothing wrong was found.";
  return "Nothing wrong was found, but in " + Counted(unknown, "partition") + " no volume was recognised.";
}

}  // namespace

std::string ChecksForPerson(const DiskMap& map, const TextStyle& style) {
  std::string text = StructuresLine(map, style) + Wrap("", 0, "Checks: " + Summary(map), style.width);
  std::size_t count = 0;
  const auto show = [&](auto isWanted) {
    for (const Check& check : map.checks) {
      if (!isWanted(check)) continue;
      if (style.all || count < kMostChecks) text += CheckText(check, style);
      ++count;
    }
  };
  show([](const Check& check) { return IsWrong(check); });
  show(IsNotChecked);
  text += MoreLine(count, kMostChecks, style);
  if (style.all) show(IsGood);
  return text;
}

std::string VerdictInWords(const DiskMap& map) {
  const auto isWrong = [](const auto& each) { return IsWrong(each); };
  const auto checks = std::count_if(map.checks.begin(), map.checks.end(), isWrong);
  const auto extents = std::count_if(map.extents.begin(), map.extents.end(), isWrong);
  if (map.ExitStatus() == 0) return WordsWhereNothingIsWrong(map);
  std::string words = "Something is wrong: ";
  if (checks != 0)
    words.append(Counted(static_cast<u64>(checks), "check")).append(checks == 1 ? " is" : " are");
  if (checks != 0) words += " bad or missing";
  if (extents != 0) {
    words.append(checks == 0 ? "" : ", ").append(Counted(static_cast<u64>(extents), "extent"));
    words.append(extents == 1 ? " is" : " are").append(" flagged");
  }
  return words + ".";
}

}  // namespace trovisk
