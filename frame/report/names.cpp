// Three tables that turn codes found on disk into the names that the reports print. Scripts that read reports
// compare these names, so their abbreviations and unbalanced brackets stay as they are.

#include "frame/report/names.h"

#include "frame/guid.h"

namespace trovisk {
namespace {

constexpr WideText kUnknown = L"unknown";

struct ByteName {
  u8 code;
  WideText name;
};

// The media descriptor of a BIOS parameter block.
constexpr ByteName kMediaTypes[] = {
    {0xF0, L"3 1/2 floppy, 1.44MB"}, {0xF8, L"Fixed Hard Drive"},    {0xF9, L"5 1/4 floppy, 1.2MB"},
    {0xFC, L"5 1/4 floppy, 180KB"},  {0xFD, L"5 1/4 floppy, 360KB"}, {0xFE, L"5 1/4 floppy, 160KB"},
    {0xFF, L"5 1/4 floppy, 320KB"},
};

// The type byte of an MBR or EBR partition entry.
constexpr ByteName kPartitionTypes[] = {
    {0x01, L"FAT-12"},
    {0x02, L"Xenix root"},
    {0x03, L"Xenix user"},
    {0x04, L"FAT-16 < 32MBytes"},
    {0x05, L"Extended"},
    {0x06, L"BIGDOS FAT-16"},
    {0x07, L"NTFS"},
    {0x08, L"AIX"},
    {0x09, L"AIX bootable"},
    {0x0A, L"OS/2 Boot Manager"},
    {0x0B, L"Win95 FAT-32"},
    {0x0C, L"Win95 FAT-32 (LBA"},
    {0x0E, L"Win95 FAT-16 (LBA"},
    {0x0F, L"Win95 Extended (LBA"},
    {0x10, L"OPUS"},
    {0x11, L"Hidden FAT-12"},
    {0x12, L"EISA / Compaq diagnostic"},
    {0x14, L"Hidden FAT-16 < 32 MBytes"},
    {0x16, L"Hidden FAT-16"},
    {0x17, L"Hidden HPFS/NTFS"},
    {0x18, L"AST SmartSleep"},
    {0x1B, L"Hidden Windows 95 FAT-32"},
    {0x1C, L"Hidden Windows 95 FAT-32"},
    {0x24, L"NEC DOS"},
    {0x39, L"Plan 9"},
    {0x3C, L"PartitionMagic"},
    {0x40, L"Venix 80286"},
    {0x41, L"PPC PRep Boot"},
    {0x42, L"Dynamic Disk"},
    {0x4D, L"QNX4.x"},
    {0x4E, L"QNX4.x 2nd part"},
    {0x4F, L"QNX4.x 3rd part"},
    {0x50, L"OnTrack DM"},
    {0x51, L"OnTrack DM6 Aux"},
    {0x52, L"CP/M"},
    {0x53, L"OnTrack DM6 Aux"},
    {0x54, L"OnTrackDM6"},
    {0x55, L"EZ-Drive"},
    {0x56, L"Golden Bow"},
    {0x5C, L"Priam Edisk"},
    {0x61, L"SpeedStor"},
    {0x63, L"GNU HURD or Sys"},
    {0x64, L"Novell Netware"},
    {0x65, L"Novell Netware"},
    {0x70, L"DiskSecure Mult"},
    {0x80, L"Old Minix"},
    {0x81, L"Minix / Old Linux"},
    {0x82, L"Linux swap"},
    {0x83, L"Linux ext2"},
    {0x84, L"OS/2 hidden C:"},
    {0x85, L"Linux extended"},
    {0x86, L"Legacy FT FAT-16"},
    {0x87, L"Legacy FT NTFS"},
    {0x8B, L"Legacy FT FAT-32"},
    {0x8C, L"Legacy FT FAT-32 (LBA"},
    {0x8E, L"Linux LVM"},
    {0x93, L"Amoeba"},
    {0x94, L"Amoeba BBT"},
    {0x9F, L"BSD/OS"},
    {0xA0, L"IBM Thinkpad hi"},
    {0xA5, L"FreeBSD"},
    {0xA6, L"OpenBSD"},
    {0xA7, L"NeXTSTEP"},
    {0xA8, L"Darwin UFS"},
    {0xA9, L"NetBSD"},
    {0xB7, L"BSDI fs"},
    {0xB8, L"BSDI swap"},
    {0xBB, L"Boot Wizard hid"},
    {0xBF, L"Solaris"},
    {0xC1, L"DRDOS/sec (FAT-"},
    {0xC4, L"DRDOS/sec (FAT-"},
    {0xC6, L"DRDOS/sec (FAT-"},
    {0xC7, L"Syrinx"},
    {0xDA, L"Non-FS data"},
    {0xDB, L"CP/M / CTOS"},
    {0xDE, L"Dell Utility"},
    {0xDF, L"BootIT"},
    {0xE1, L"DOS access"},
    {0xE3, L"DOS R/O"},
    {0xE4, L"SpeedStor"},
    {0xEB, L"BeOS fs"},
    {0xEE, L"EFI GPT"},
    {0xEF, L"EFI (FAT-12/16/32"},
    {0xF0, L"Linux/PA-RISC b"},
    {0xF1, L"SpeedStor"},
    {0xF2, L"DOS secondary"},
    {0xF4, L"SpeedStor"},
    {0xFD, L"Linux RAID auto"},
    {0xFE, L"LANstep"},
    {0xFF, L"BBT"},
};

struct GuidName {
  Guid guid;
  WideText name;
};

constexpr GuidName kGptTypes[] = {
    {Guid("00000000-0000-0000-0000-000000000000"), L"Unused Entry"},
    {Guid("024DEE41-33E7-11D3-9D69-0008C781F39F"), L"MBR Partition Scheme"},
    {kGptEfiSystem, L"EFI Partition Scheme"},
    {Guid("E3C9E316-0B5C-4DB8-817D-F92DF00215AE"), L"Windows : Microsoft Reserved Partition"},
    {kGptBasicData, L"Windows/Linux : Data Partition"},
    {Guid("DB97DBA9-0840-4BAE-97F0-FFB9A327C7E1"), L"Windows : Cluster Metadata Partition"},
    {kGptLdmMetadata, L"Windows : LDM Metadata Partition"},
    {Guid("AF9B60A0-1431-4F62-BC68-3311714A69AD"), L"Windows : LDM Data Partition"},
    {kGptRecovery, L"Windows : Recovery Partition"},
    {kGptStorageSpaces, L"Windows : Storage Space Partition"},
    {kGptStorageReplica, L"Microsoft Storage Replication Db"},
    {Guid("CADDEBF1-4400-4DE8-B103-12117DCF3CCF"), L"Microsoft Shadow Copy Partition"},
    {Guid("75894C1E-3AEB-11D3-B7C1-7B03A0000000"), L"HP-UX : Data Partition"},
    {Guid("E2A1E728-32E3-11D6-A682-7B03A0000000"), L"HP-UX : Service Partition"},
    {Guid("37AFFC90-EF7D-4E96-91C3-2D7AE055B174"), L"IBM General Parallel File System (GPFS) partition"},
    {Guid("A19D880F-05FC-4D3B-A006-743F0F84911E"), L"Linux : RAID Partition"},
    {Guid("0657FD6D-A4AB-43C4-84E5-0933C84B4F4F"), L"Linux : Swap Partition"},
    {Guid("E6D6D379-F507-44C2-A23C-238F2A3DF928"), L"Linux : LDM (LVM Partition)"},
    {Guid("8DA63339-0007-60C0-C436-083AC8230908"), L"Linux : Reserved Partition"},
    {Guid("516E7CB4-6ECF-11D6-8FF8-00022D09712B"), L"FreeBSD : Data Partition"},
    {Guid("516E7CB5-6ECF-11D6-8FF8-00022D09712B"), L"FreeBSD : Swap Partition"},
    {Guid("516E7CB6-6ECF-11D6-8FF8-00022D09712B"), L"FreeBSD : UFS Partition"},
    {Guid("516E7CB8-6ECF-11D6-8FF8-00022D09712B"), L"FreeBSD : Vinum Volume Manager Partition"},
    {Guid("48465300-0000-11AA-AA11-00306543ECAC"), L"Mac OS X : Hierarchical File System (HFS+ partition)"},
    {Guid("55465300-0000-11AA-AA11-00306543ECAC"), L"Mac OS X : Apple UFS Partition"},
    {Guid("52414944-0000-11AA-AA11-00306543ECAC"), L"Max OS X : Apple RAID Partition"},
    {Guid("6A82CB45-1DD2-11B2-99A6-080020736631"), L"Solaris : Boot Partition"},
    {Guid("6A85CF4D-1DD2-11B2-99A6-080020736631"), L"Solaris : Root Partition"},
    {Guid("6A87C46F-1DD2-11B2-99A6-080020736631"), L"Solaris : Swap Partition"},
    {Guid("6A8B642B-1DD2-11B2-99A6-080020736631"), L"Solaris : Backup Partition"},
    {Guid("6A898CC3-1DD2-11B2-99A6-080020736631"), L"Solaris : /usr Partition"},
    {Guid("6A8EF2E9-1DD2-11B2-99A6-080020736631"), L"Solaris : /var Partition"},
    {Guid("6A90BA39-1DD2-11B2-99A6-080020736631"), L"Solaris : /home Partition"},
    {Guid("6A9283A5-1DD2-11B2-99A6-080020736631"), L"Solaris : EFI_ALTSCTR"},
    {Guid("6A945A3B-1DD2-11B2-99A6-080020736631"), L"Solaris : Reserved Partition"},
    {Guid("6A9630D1-1DD2-11B2-99A6-080020736631"), L"Solaris : Reserved Partition"},
    {Guid("6A980767-1DD2-11B2-99A6-080020736631"), L"Solaris : Reserved Partition"},
    {Guid("6A96237F-1DD2-11B2-99A6-080020736631"), L"Solaris : Reserved Partition"},
    {Guid("6A8D2AC7-1DD2-11B2-99A6-080020736631"), L"Solaris : Reserved Partition"},
    {Guid("AA31E02A-400F-11DB-9590-000C2911D1B8"), L"VMFS Filesystem Partition"},
    {Guid("9D275380-40AD-11DB-BF97-000C2911D1B8"), L"vmkcore (coredump Partition"},
    {Guid("9198EFFC-31C0-11DB-8F78-000C2911D1B8"), L"VMWare Reserved Partition"},
};

WideText NameOfByte(std::span<const ByteName> table, u8 code) {
  for (const ByteName& row : table) {
    if (row.code == code) return row.name;
  }
  return kUnknown;
}

}  // namespace

WideText MediaTypeName(u8 mediaDescriptor) {
  return NameOfByte(kMediaTypes, mediaDescriptor);
}

WideText PartitionTypeName(u8 partitionType) {
  return NameOfByte(kPartitionTypes, partitionType);
}

WideText GptTypeName(FixedBytes<16> typeGuid) {
  for (const GuidName& row : kGptTypes) {
    if (row.guid == typeGuid) return row.name;
  }
  return kUnknown;
}

}  // namespace trovisk
