// VBLK records whose fields state lengths that do not fit. Every field that has a length gets each of six, in
// the last slot, where the sector ends 104 bytes behind the first of them; the lines are foretold from the
// layout, field by field.

#include <gtest/gtest.h>

#include <sstream>

#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

enum class Kind {
  kText,
  kIdentifier,
  kDecimal,
  kHex,            // a size
  kStripe,         // a number that is stepped over twice
  kAlternateName,  // a text that ends at 92
  kAttributes,     // no line without bytes
  kHexIfAny,       // no line without bytes
  kFixed,          // so many bytes of no stated length
};

struct Field {
  Kind kind;
  std::string label;  // none: bytes without a line
  std::size_t bytes = 0;
};

struct Layout {
  u8 type;
  u8 flags;
  std::vector<Field> fields;
};

std::vector<Layout> Layouts() {
  return {
      {0x32,
       0x10,
       {{Kind::kIdentifier, "Object Id.          : 0x"},
        {Kind::kText, "Name                : [ "},
        {Kind::kText, "Volume State        : [ "},
        {Kind::kFixed, "Component Type      : ", 5},
        {Kind::kDecimal, "Number of Children  : "},
        {Kind::kFixed, "Log Commit Id.      : ", 16},
        {Kind::kIdentifier, "Parent's Object Id. : 0x"},
        {Kind::kFixed, "", 1},
        {Kind::kStripe, "Stripe Size         : "},
        {Kind::kDecimal, "Number Of Columns   : "}}},
      {0x33,
       0x08,
       {{Kind::kIdentifier, "Object Id.          : 0x"},
        {Kind::kText, "Name                : [ "},
        {Kind::kFixed, "", 4},
        {Kind::kFixed, "Log Commit Id.      : ", 8},
        {Kind::kFixed, "Start (Disk Offset) :", 8},
        {Kind::kFixed, "Volume Offset       : ", 8},
        {Kind::kHex, "Size                : 0x"},
        {Kind::kIdentifier, "Parent's Object Id. : 0x"},
        {Kind::kIdentifier, "Disk's Object Id.   : 0x"},
        {Kind::kDecimal, "Component Part Idx  : "}}},
      {0x34,
       0x00,
       {{Kind::kIdentifier, "Object Id.         : 0x"},
        {Kind::kText, "Name               : [ "},
        {Kind::kText, "Disk Id.           : { "},
        {Kind::kAlternateName, "Alternate Name     : [ "},
        {Kind::kFixed, "Log Commit Id.     : ", 12}}},
      {0x44,
       0x00,
       {{Kind::kIdentifier, "Object Id.         : 0x"},
        {Kind::kText, "Name               : [ "},
        {Kind::kFixed, "Disk Id.           : { ", 16},
        {Kind::kFixed, "Disk Id.           : { ", 16},
        {Kind::kFixed, "Id.?               : ", 5},
        {Kind::kFixed, "Log Commit Id.     : ", 8}}},
      {0x35,
       0x00,
       {{Kind::kIdentifier, "Object Id.         : 0x"},
        {Kind::kText, "Name               : [ "},
        {Kind::kText, "Disk Group Id.     : { "},
        {Kind::kFixed, "Log Commit Id.     : ", 12},
        {Kind::kFixed, "Unknown            : 0xFF x ", 1},
        {Kind::kFixed, "Unknown            : 0xFF x ", 1}}},
      {0x45,
       0x00,
       {{Kind::kIdentifier, "Object Id.         : 0x"},
        {Kind::kText, "Name               : [ "},
        {Kind::kFixed, "Disk Group Id.     : { ", 16},
        {Kind::kFixed, "Disk Set Id.       : { ", 16},
        {Kind::kFixed, "Log Commit Id.     : ", 12},
        {Kind::kFixed, "Unknown            : 0xFF x ", 1},
        {Kind::kFixed, "Unknown            : 0x00 x ", 1}}},
      {0x51,
       0xAA,
       {{Kind::kIdentifier, "Object Id.         : 0x"}, {Kind::kText, "Name               : [ "},
        {Kind::kText, "Volume Type        : [ "},       {Kind::kAttributes, "Attributes         :"},
        {Kind::kFixed, "Volume State       : [ ", 14},  {Kind::kFixed, "Volume Type        : ", 2},
        {Kind::kFixed, "Volume Number      : ", 4},     {Kind::kFixed, "Flags              : ", 1},
        {Kind::kDecimal, "Number Of Children : "},      {Kind::kFixed, "Log Commit Id.     : ", 8},
        {Kind::kFixed, "Duplicate?         : ", 8},     {Kind::kHex, "Size               : 0x"},
        {Kind::kHexIfAny, "Unknown            : 0x"},   {Kind::kFixed, "", 3},
        {Kind::kFixed, "Partition Type     : 0x", 1},   {Kind::kFixed, "Volume Id.         : { ", 16},
        {Kind::kIdentifier, "Id1?               : 0x"}, {Kind::kIdentifier, "Id2?               : 0x"},
        {Kind::kDecimal, "Size (if childen) : "},       {Kind::kText, "Drive Hint         : [ "},
        {Kind::kFixed, "Volume Id2.        : { ", 16},  {Kind::kFixed, "Unknown.           : 0x", 1}}},
  };
}

constexpr std::size_t kRoom = 104;  // bytes from the last slot's first data byte to the sector's end
constexpr u8 kFiller = 0x41;        // "A"

std::string Repeated(const std::string& text, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i)
    repeated += text;
  return repeated;
}

// What stands behind the label of a field of so many filler bytes from this position on.
std::string ValueOf(Kind kind, std::size_t position, std::size_t length) {
  const std::size_t inside = std::min(length, kRoom - std::min(kRoom, position));
  const auto number = [&](bool hex) {
    u64 value = 0;
    for (std::size_t i = 0; i < length; ++i)
      value = value * 256 + (i < inside ? kFiller : 0);
    std::ostringstream text;
    if (hex) text << std::hex << std::uppercase;
    text << value;
    return text.str();
  };
  switch (kind) {
    case Kind::kText:
      return Repeated("A", inside) + " ";
    case Kind::kAlternateName:
      return Repeated("A", std::min(inside, 92 - std::min<std::size_t>(92, position))) + " ]";
    case Kind::kIdentifier:
      return Repeated("41", inside) + "\n";
    case Kind::kAttributes:
      return Repeated(" 0x41", inside) + "\n";
    case Kind::kDecimal:
    case Kind::kStripe:
      return number(false);
    case Kind::kHex:
    case Kind::kHexIfAny:
      return number(true);
    case Kind::kFixed:
      break;
  }
  return {};
}

bool HasLength(const Field& field) {
  return field.kind != Kind::kFixed;
}

// Puts a record of this layout, all of whose lengths are 1 but for one field's, into the last slot and
// compares how each line of its block begins.
void ExpectLines(const Layout& layout, std::size_t longField, std::size_t length) {
  VblkData data;
  std::vector<std::string> starts;  // how each line of the block begins
  for (std::size_t i = 0; i < layout.fields.size(); ++i) {
    const Field& field = layout.fields[i];
    const std::size_t position = data.View().size();
    if (!HasLength(field)) {
      const bool left = layout.type == 0x34 && position >= 93;  // without its commit number
      if (!field.label.empty() && !left) starts.push_back("\t" + field.label);
      data.Zeros(field.bytes);
      continue;
    }
    const std::size_t fieldLength = i == longField ? length : 1;
    const bool optional = field.kind == Kind::kAttributes || field.kind == Kind::kHexIfAny;
    // A length byte beyond the sector is zero, and so is the number behind it.
    const std::size_t read = position < kRoom ? fieldLength : 0;
    if (read != 0 || !optional)
      starts.push_back("\t" + field.label + ValueOf(field.kind, position + 1, read));
    data.Byte(fieldLength).Fill(fieldLength, kFiller);
    if (field.kind == Kind::kStripe) data.Fill(fieldLength, 0xEE);
  }

  const std::string block = TypeBlockOf({.flags = layout.flags, .type = layout.type, .data = data}, 3);
  std::istringstream lines(block);
  std::string line;
  for (int heading = 0; heading < 3; ++heading)
    std::getline(lines, line);  // the empty line, the title and the hyphens
  for (const std::string& start : starts) {
    do {
      std::getline(lines, line);
    } while (lines && line.empty());  // an empty line stands in front of a volume's second GUID
    line += '\n';
    EXPECT_TRUE(line.starts_with(start)) << "expected |" << start << "| in " << block;
  }
  std::getline(lines, line);
  EXPECT_TRUE(line.empty() && !std::getline(lines, line)) << block;
}

TEST(VblkLengths, EveryFieldOfEveryTypeWithEveryLength) {
  for (const Layout& layout : Layouts()) {
    for (std::size_t field = 0; field < layout.fields.size(); ++field) {
      if (!HasLength(layout.fields[field])) continue;
      for (const std::size_t length : {0U, 1U, 8U, 9U, 104U, 255U}) {
        SCOPED_TRACE(layout.fields[field].label + " of " + std::to_string(length) + " bytes");
        ExpectLines(layout, field, length);
        if (HasFailure()) return;
      }
    }
  }
}

// Of nine bytes the first does not count.
TEST(VblkLengths, NumberOfNineBytes) {
  VblkData data;
  data.Id({}).Text("").Zeros(4 + 24).Byte(9).Byte(0xEE).Be(0x0102030405060708, 8).Id({}).Id({});
  EXPECT_NE(TypeBlockOf({.type = 0x33, .data = data}).find("\n\tSize                : 0x102030405060708 ("),
            std::string::npos);
}

// From the first slot a text of 255 bytes crosses the next slot's header and ends in its data; a NUL ends
// what is shown of it, but the next field stands behind all of it.
TEST(VblkLengths, TextAcrossTheFollowingSlots) {
  const std::string letters(255, 'A');
  VblkData data;
  data.Id({1}).Text(letters).Raw(CountingBytes(0x20)).Raw(CountingBytes(0x30));
  const VblkRecord record{.type = 0x44, .data = data};
  Disk disk = DiskWithRecord(record);
  // The text is the bytes from 27 to 281: the signatures of the second and third slot lie inside.
  const std::string name =
      letters.substr(0, 101) + "VBLK" + letters.substr(0, 124) + "VBLK" + letters.substr(0, 22);
  const std::string ids =
      " ]\n\tDisk Id.           : { 20212223-2425-2627-2829-2A2B2C2D2E2F }\n"
      "\tDisk Id.           : { 30313233-3435-3637-3839-3A3B3C3D3E3F }\n";
  std::string report = LdmReportOf(disk, kVblkSector);
  EXPECT_NE(report.find("\n\tName               : [ " + name + ids), std::string::npos) << report;

  disk.At(kVblkSector).U8(30, 0);
  report = LdmReportOf(disk, kVblkSector);
  EXPECT_NE(report.find("\n\tName               : [ AAA" + ids), std::string::npos) << report;
}

}  // namespace
}  // namespace trovisk::test
