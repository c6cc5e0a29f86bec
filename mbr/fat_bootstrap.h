// The bootstrap area of FAT boot sectors, and what the three FAT types differ in there.

#ifndef TROVISK_MBR_FAT_BOOTSTRAP_H
#define TROVISK_MBR_FAT_BOOTSTRAP_H

#include <array>
#include <span>
#include <string_view>

#include "frame/report/field_table.h"
#include "refimages/catalogue.h"

namespace trovisk {

// Where known code keeps the names of the system files that it loads, and its messages.
enum class FatCodePlan {
  kThreeFiles,   // three names; three messages, one behind the other
  kOffsetTable,  // one name; the low bytes of the addresses of three messages
  kWindows8,     // one name; the addresses of two messages, 16 bits each
};

struct FatCode {
  BootCode code;
  FatCodePlan plan;
  std::string_view heading;
  std::size_t systemFile;    // of the first name
  std::size_t firstMessage;  // offset of the first message
  std::size_t table = 0;     // of the messages' addresses
};

// The fields behind the BIOS parameter block. They stand at other places in FAT12 and FAT16 than in FAT32.
struct FatExtendedBpb {
  std::span<const FieldRow> drive;
  std::size_t signature;
  std::span<const FieldRow> volume;  // only where the signature says so
};

struct FatType {
  std::string_view heading;  // of the boot sector's report
  u32 mostClusters;
  bool rootInClusters;  // the root directory has no place of its own; free clusters are counted, the boot
                        // sector copied
  std::span<const FatCode> codes;  // in the order of the comparison
  FatExtendedBpb extended;
};

// By their numbers of clusters, ascending.
extern const std::array<FatType, 3> kFatTypes;

// Names and lists known bootstrap code, prints the BIOS parameter block and its extension and, for known
// code, the system files that it loads and its messages.
void PrintFatBootstrap(const FatType& type, SectorView bootSector);

}  // namespace trovisk

#endif
