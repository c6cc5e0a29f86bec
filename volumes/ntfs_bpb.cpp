// NTFS BIOS parameter block: geometry of the volume, and where its metadata begins.
//
// Stands at 0x00B of an NTFS boot sector and of its backup. Little-endian. Layout: the BIOS parameter block
// of FAT volumes, whose FAT fields are zero, followed by the fields that NTFS adds. Not checked: anything.
// The sizes that NTFS stores as negative powers of two are decoded for the cluster and for the file record
// segment; the index block's is shown as stored.

#include "volumes/ntfs_bpb.h"

#include <iostream>

#include "frame/field_table.h"
#include "frame/fields.h"

namespace trovisk {
namespace {

constexpr std::size_t kBytesPerSector = 0x00B - kNtfsBpb;            // u16
constexpr std::size_t kReservedSectors = 0x00E - kNtfsBpb;           // u16
constexpr std::size_t kMediaDescriptor = 0x015 - kNtfsBpb;           // u8
constexpr std::size_t kSectorsPerTrack = 0x018 - kNtfsBpb;           // u16
constexpr std::size_t kHeads = 0x01A - kNtfsBpb;                     // u16
constexpr std::size_t kHiddenSectors = 0x01C - kNtfsBpb;             // u32
constexpr std::size_t kClustersPerRecordSegment = 0x040 - kNtfsBpb;  // i32, encoded
constexpr std::size_t kClustersPerIndexBlock = 0x044 - kNtfsBpb;     // u32
constexpr std::size_t kVolumeSerial = 0x048 - kNtfsBpb;              // 8 bytes

constexpr FieldRow kSectorSize[] = {
    {"\tBytes/Sector               : ", kBytesPerSector, Format::kLe16},
};
constexpr FieldRow kGeometryAndMetadata[] = {
    {"\tReserved Sector Count      : ", kReservedSectors, Format::kLe16},
    {"\tMedia Type                 : ", kMediaDescriptor, Format::kMediaType},
    {"\tSectors/Track              : ", kSectorsPerTrack, Format::kLe16},
    {"\tNumber Of Heads            : ", kHeads, Format::kLe16},
    {"\tHidden Sectors             : ", kHiddenSectors, Format::kLe32},
    {"\tTotal Sectors On Volume    : ", kNtfsTotalSectors, Format::kLe64},
    {"\t$MFT start cluster #       : ", kNtfsMft, Format::kLe64},
    {"\t$MFTMirror start cluster # : ", kNtfsMftMirror, Format::kLe64},
};
constexpr FieldRow kIndexAndSerial[] = {
    {"\tClusters/Index Block       : ", kClustersPerIndexBlock, Format::kLe32},
    {"\tVolume Serial Number       : 0x", kVolumeSerial, Format::kVolumeSerial},
};
static_assert(FieldsFit(kSectorSize, kNtfsBpbSize) && FieldsFit(kGeometryAndMetadata, kNtfsBpbSize) &&
              FieldsFit(kIndexAndSerial, kNtfsBpbSize));

// Above 0x80 the byte is the negative exponent of two; 0x80 itself is a plain 128 here.
u32 ShownSectorsPerCluster(u8 stored) {
  return stored > 0x80 ? u32{1} << ((0x100U - stored) % 32) : stored;
}

// A negative number is the exponent of a size in bytes. It takes all 32 bits: F6 00 00 00 is 246, not -10.
// Exponents from 31 on leave the range of the result, in 32-bit arithmetic.
i32 ShownClustersPerRecordSegment(u32 stored) {
  const auto value = static_cast<i32>(stored);
  return value < 0 ? static_cast<i32>(u32{2} << (~stored % 32)) : value;
}

}  // namespace

void PrintNtfsBpb(NtfsBpb bpb) {
  std::cout << LineEnd;
  PrintHeading("BIOS Parameter Block", "\t");
  PrintFields(bpb, kSectorSize);
  std::cout << "\tSectors/Cluster            : " << ShownSectorsPerCluster(U8<kNtfsSectorsPerCluster>(bpb))
            << LineEnd;
  PrintFields(bpb, kGeometryAndMetadata);
  std::cout << "\tClusters/File Record Seg.  : "
            << ShownClustersPerRecordSegment(Le32<kClustersPerRecordSegment>(bpb)) << LineEnd;
  PrintFields(bpb, kIndexAndSerial);
}

}  // namespace trovisk
