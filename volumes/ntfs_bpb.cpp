// NTFS BIOS parameter block: geometry of the volume, and where its metadata begins.
//
// Stands at 0x00B of an NTFS boot sector and of its backup. Little-endian. Layout: the BIOS parameter block
// of FAT volumes, whose FAT fields are zero, followed by the fields that NTFS adds. Not checked: anything.
// The sizes that NTFS stores as negative powers of two are decoded for the cluster and for the file record
// segment; the index block's is shown as stored.

#include "volumes/ntfs_bpb.h"

#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr FieldRow kSectorSize[] = {
    {"\tBytes/Sector               : ", kBpbBytesPerSector, kLe16},
};
constexpr FieldRow kGeometryAndMetadata[] = {
    {"\tReserved Sector Count      : ", kBpbReservedSectors, kLe16},
    {"\tMedia Type                 : ", kBpbMedia, kMediaType},
    {"\tSectors/Track              : ", kBpbSectorsPerTrack, kLe16},
    {"\tNumber Of Heads            : ", kBpbHeads, kLe16},
    {"\tHidden Sectors             : ", kBpbHiddenSectors, kLe32},
    {"\tTotal Sectors On Volume    : ", kNtfsTotalSectors, kLe64},
    {"\t$MFT start cluster #       : ", kNtfsMft, kLe64},
    {"\t$MFTMirror start cluster # : ", kNtfsMftMirror, kLe64},
};
constexpr FieldRow kIndexAndSerial[] = {
    {"\tClusters/Index Block       : ", kNtfsIndexBlock, kLe32},
    {"\tVolume Serial Number       : 0x", kNtfsVolumeSerial, VolumeSerial(8)},
};
static_assert(FieldsFit(kSectorSize, 512) && FieldsFit(kGeometryAndMetadata, 512) &&
              FieldsFit(kIndexAndSerial, 512));

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

void PrintNtfsBpb(SectorView bootSector) {
  report << LineEnd;
  PrintHeading("BIOS Parameter Block", "\t");
  PrintFields(bootSector, kSectorSize);
  PrintNotedLine("\tSectors/Cluster            : ", Part<kBpbSectorsPerCluster, 1>(bootSector),
                 [&] { report << ShownSectorsPerCluster(U8<kBpbSectorsPerCluster>(bootSector)); });
  PrintFields(bootSector, kGeometryAndMetadata);
  PrintNotedLine("\tClusters/File Record Seg.  : ", Part<kNtfsFileRecordSegment, 4>(bootSector),
                 [&] { report << ShownClustersPerRecordSegment(Le32<kNtfsFileRecordSegment>(bootSector)); });
  PrintFields(bootSector, kIndexAndSerial);
}

}  // namespace trovisk
