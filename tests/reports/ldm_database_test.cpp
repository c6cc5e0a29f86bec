// A whole run over a complete configuration area of a dynamic disk.

#include <gtest/gtest.h>

#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

// With every structure in its place nothing is complained of, and every sector of the area is found.
TEST(LdmDatabase, OnAnMbrDisk) {
  for (const u16 version : {u16{12}, u16{11}}) {
    Disk disk = DynamicMbrDisk();
    PutLdmDatabase(disk, {.configStart = 200, .minorVersion = version});
    const Outcome outcome = RunOn(disk);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    const bool all = version == 11;  // copies of the table of contents
    std::string rows = all ? "       201\tTOC Sector\n" : "";
    rows +=
        "       202\tTOC Sector\n       208\tVMDB Sector\n       209\tVBLK Sector\n"
        "       210\tVBLK Sector\n       211\tVBLK Sector\n       212\tVBLK Sector\n"
        "       213\tVBLK Sector\n       220\tKLOG Sector\n       221\tKLOG Sector\n"
        "       256\tAlternate PRIVHEAD Sector\n       260\tTOC Sector\n";
    if (all) rows += "       261\tTOC Sector\n";
    rows += "       263\tAlternate PRIVHEAD Sector\n";
    EXPECT_TRUE(SameText(TocOf(disk), TocWithMbr(rows)));
  }
}

// Every record of the sample is of the type that it is meant to be, and its fields end where its data does.
TEST(LdmDatabase, Records) {
  Disk disk = DynamicMbrDisk();
  PutLdmDatabase(disk, {.configStart = 200});
  const std::string report = RunOn(disk).out;
  const std::string lines[] = {
      "Record Type   : [Disk Group (0x35])\n",
      "Record Type   : [Disk Group (0x45])\n",
      "Record Type   : [Disk (0x34])\n",
      "Record Type   : [Disk (0x44])\n",
      "Record Type   : [Volume]\n",
      "\tDrive Hint         : [ E: ]\n",
      "Record Type   : [Component]\n",
      "Record Type   : [Partition]\n",
      "Record Type   : [Volume]\n",
      "\tVolume Id2.        : { 70717273-7475-7677-7879-7A7B7C7D7E7F }\n\tUnknown.           : 0x00 }\n",
      "\tStripe Size         : 128 (sectors)\n\tNumber Of Columns   : 2\n",
      "\tComponent Part Idx  : 0\n",
      "\tComponent Part Idx  : 1\n",
      "Record        : 1 of 2\n",
      "Record        : 2 of 2 [Extended VBLK]\n",
      "Update Status : [Consistent]\nRecord Type   : [Unknown type 0x61]\n",
      "Log Count       : 2\nNumber of KLOGs : 2\nKLOG Index      : 1\n",
  };
  std::size_t at = 0;
  for (const std::string& line : lines) {
    at = report.find(line, at);
    ASSERT_NE(at, std::string::npos) << line;
    at += line.size();
  }
}

}  // namespace
}  // namespace trovisk::test
