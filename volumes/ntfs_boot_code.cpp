// NTFS boot code: the sector behind an NTFS boot sector, where the boot code's second stage begins.
//
// The names that the boot code works with (the loader's file name, the index that it searches, in newer ones
// three more) as UTF-16 text behind a count of characters, then code to the end of the sector. Little-endian.
// Layout: as Windows' format tools write it; the loader's name tells which one.
// Checked: the loader's name. Not checked: the counts; a name that would run past the sector is cut at its
// end, a count there is zero.

#include <string>
#include <vector>

#include "frame/global.h"
#include "frame/report/listing.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"

namespace trovisk {
namespace {

constexpr std::size_t kNames = 0x000;         // two, one behind the other
constexpr std::size_t kFurtherNames = 0x05A;  // up to three, the list ends at a count of zero
constexpr std::size_t kMessage = 0x09A;       // 125 characters at most
constexpr std::size_t kMessageSize = 125;

constexpr std::size_t kFurtherNameCount = 3;

// Where the code begins, which goes on to the end of the sector, and how many sectors hold the whole of it.
struct Layout {
  std::string_view heading;
  std::size_t code;
  unsigned sectors;
  bool hasMessage;
};

constexpr Layout kNtldr = {"NTLDR variant", 0x078, 6, false};
constexpr Layout kBootMgr = {"BOOTMGR variant", 0x07A, 8, false};
constexpr Layout kBootMgrWithMessage = {"BOOTMGR variant", 0x119, 9, true};
constexpr Layout kNeither = {"", 0x200, 0, false};

struct Name {
  std::wstring text;
  u64 next = 0;  // the position behind the name, as its count says
};

// One wide character for each code unit, surrogates too.
Name NameAt(SectorView code, u64 position) {
  constexpr u64 kUnitBytes = 2;
  const u64 characters = position + kUnitBytes;
  const u64 size = Le16At(code, position) * kUnitBytes;
  const Bytes units = SliceAt(code, characters, size);
  Name name{{}, characters + size};
  for (std::size_t i = 0; i < units.size(); i += kUnitBytes)
    name.text += static_cast<wchar_t>(Le16At(units, i));
  return name;
}

// Appends the further names to the list. False when the list ends before the third.
bool AppendFurtherNames(SectorView code, std::vector<std::wstring>& names) {
  u64 position = kFurtherNames;
  for (std::size_t i = 0; i < kFurtherNameCount; ++i) {
    if (Le16At(code, position) == 0) return false;
    const Name name = NameAt(code, position);
    names.push_back(name.text);
    position = name.next;
  }
  return true;
}

void PrintNames(const std::vector<std::wstring>& names) {
  report << "Boot File" << (names.size() > 1 ? "s" : "");
  PrintNotedLine(" : ", {}, [&] {
    std::string_view separator;
    for (const std::wstring& name : names) {
      report << separator;
      PrintAsStored(ToNarrow(name));
      separator = ", ";
    }
  });
  report << LineEnd;
}

void PrintReport(const Layout& layout, const std::vector<std::wstring>& names, SectorView sector) {
  if (!layout.heading.empty()) {
    report << LineEnd;
    report << layout.heading << LineEnd << LineEnd;
  }
  PrintNames(names);
  report << "Bootcode : " << LineEnd;
  PrintDumpHeading();
  // A last row stands below the full ones even when no byte is left for it.
  const Bytes code = FromAt(sector, layout.code);
  PrintDumpRows(code, code.size() / 16 + 1);
  if (layout.hasMessage) {
    report << LineEnd;
    report << "Message : " << LineEnd << LineEnd;
    {
      const auto message = Part<kMessage, kMessageSize>(sector);
      const NotedField noted("Message", message);
      PrintChars(message);
    }
    report << LineEnd << LineEnd;
  }
  report << LineEnd << LineEnd;
}

void RegisterRest(const Layout& layout, u64 sector) {
  for (unsigned number = 2; number <= layout.sectors; ++number) {
    AddTocEntry(
        disk, sector + number - 1, DumpSector512,
        L"NTFS boot sector boot code " + std::to_wstring(number) + L" of " + std::to_wstring(layout.sectors));
  }
}

}  // namespace

u64 DecodeNtfsBootCode(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView code(*record);

  const Name loader = NameAt(code, kNames);
  const Name index = NameAt(code, loader.next);
  std::vector<std::wstring> names = {loader.text, index.text};
  Layout layout = kNeither;
  if (loader.text == L"NTLDR") {
    layout = kNtldr;
  } else if (loader.text == L"BOOTMGR") {
    layout = AppendFurtherNames(code, names) ? kBootMgrWithMessage : kBootMgr;
  }

  if (print) PrintReport(layout, names, code);
  RegisterRest(layout, sector);
  return sector + 1;
}

}  // namespace trovisk
