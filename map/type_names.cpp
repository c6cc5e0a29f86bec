// Partition types and what they are called.
//
// Published lists: UEFI, "Defined GPT Partition Entry - Partition Type GUIDs"; Microsoft, "PARTITION_
// INFORMATION_GPT"; UAPI Group, "Discoverable Partitions Specification"; for the type bytes the conventions
// of the systems that write them, since nobody governs them.

#include "map/type_names.h"

namespace trovisk {
namespace {

struct MbrTypeName {
  u8 type;
  std::string_view name;
};

constexpr MbrTypeName kMbrTypes[] = {
    {0x00, "no type"},
    {0x01, "FAT12"},
    {0x04, "FAT16, below 32 MiB"},
    {0x05, "Extended"},
    {0x06, "FAT16"},
    {0x07, "NTFS or exFAT"},
    {0x0B, "FAT32"},
    {0x0C, "FAT32 (LBA)"},
    {0x0E, "FAT16 (LBA)"},
    {0x0F, "Extended (LBA)"},
    {0x11, "FAT12, hidden"},
    {0x12, "Diagnostics"},
    {0x14, "FAT16, below 32 MiB, hidden"},
    {0x16, "FAT16, hidden"},
    {0x17, "NTFS or exFAT, hidden"},
    {0x1B, "FAT32, hidden"},
    {0x1C, "FAT32 (LBA), hidden"},
    {0x1E, "FAT16 (LBA), hidden"},
    {0x27, "Windows recovery"},
    {0x39, "Plan 9"},
    {0x42, "Dynamic disk (LDM)"},
    {0x4D, "QNX 4"},
    {0x63, "Unix System V"},
    {0x82, "Linux swap"},
    {0x83, "Linux"},
    {0x84, "Hibernation"},
    {0x85, "Extended (Linux)"},
    {0x8E, "Linux LVM"},
    {0xA5, "FreeBSD"},
    {0xA6, "OpenBSD"},
    {0xA8, "Apple UFS"},
    {0xA9, "NetBSD"},
    {0xAB, "Apple boot"},
    {0xAF, "Apple HFS or HFS+"},
    {0xBF, "Solaris"},
    {0xDA, "Data without a file system"},
    {0xDE, "Dell utility"},
    {0xEA, "Linux extended boot"},
    {0xEB, "BeOS or Haiku"},
    {0xEE, "GPT protective"},
    {0xEF, "EFI system"},
    {0xFB, "VMFS"},
    {0xFC, "VMware core dump"},
    {0xFD, "Linux RAID"},
};

struct GptTypeName {
  std::string_view guid;
  std::string_view name;
};

constexpr GptTypeName kGptTypes[] = {
    {"c12a7328-f81f-11d2-ba4b-00a0c93ec93b", "EFI system"},
    {"024dee41-33e7-11d3-9d69-0008c781f39f", "MBR partition scheme"},
    {"21686148-6449-6e6f-744e-656564454649", "BIOS boot"},
    {"e3c9e316-0b5c-4db8-817d-f92df00215ae", "Microsoft reserved"},
    {"ebd0a0a2-b9e5-4433-87c0-68b6b72699c7", "Microsoft basic data"},
    {"5808c8aa-7e8f-42e0-85d2-e1e90434cfb3", "LDM metadata"},
    {"af9b60a0-1431-4f62-bc68-3311714a69ad", "LDM data"},
    {"de94bba4-06d1-4d40-a16a-bfd50179d6ac", "Windows recovery"},
    {"e75caf8f-f680-4cee-afa3-b001e56efc2d", "Storage Spaces"},
    {"558d43c5-a1ac-43c0-aac8-d1472b2923d1", "Storage Replica"},
    {"37affc90-ef7d-4e96-91c3-2d7ae055b174", "IBM GPFS"},
    {"0fc63daf-8483-4772-8e79-3d69d8477de4", "Linux file system"},
    {"4f68bce3-e8cd-4db1-96e7-fbcaf984b709", "Linux root (x86-64)"},
    {"44479540-f297-41b2-9af7-d131d5f0458a", "Linux root (x86)"},
    {"b921b045-1df0-41c3-af44-4c6f280d3fae", "Linux root (arm64)"},
    {"69dad710-2ce4-4e3c-b16c-21a1d49abed3", "Linux root (arm)"},
    {"933ac7e1-2eb4-4f13-b844-0e14e2aef915", "Linux home"},
    {"3b8f8425-20e0-4f3b-907f-1a25a76f98e8", "Linux server data"},
    {"4d21b016-b534-45c2-a9fb-5c16e091fd2d", "Linux variable data"},
    {"7ec6f557-3bc5-4aca-b293-16ef5df639d1", "Linux temporary data"},
    {"8484680c-9521-48c6-9c11-b0720656f69e", "Linux /usr (x86-64)"},
    {"bc13c2ff-59e6-4262-a352-b275fd6f7172", "Linux extended boot"},
    {"0657fd6d-a4ab-43c4-84e5-0933c84b4f4f", "Linux swap"},
    {"e6d6d379-f507-44c2-a23c-238f2a3df928", "Linux LVM"},
    {"a19d880f-05fc-4d3b-a006-743f0f84911e", "Linux RAID"},
    {"ca7d7ccb-63ed-4c53-861c-1742536059cc", "LUKS"},
    {"7ffec5c9-2d00-49b7-8941-3ea10a5586b7", "dm-crypt"},
    {"8da63339-0007-60c0-c436-083ac8230908", "Linux reserved"},
    {"83bd6b9d-7f41-11dc-be0b-001560b84f0f", "FreeBSD boot"},
    {"516e7cb4-6ecf-11d6-8ff8-00022d09712b", "FreeBSD data"},
    {"516e7cb5-6ecf-11d6-8ff8-00022d09712b", "FreeBSD swap"},
    {"516e7cb6-6ecf-11d6-8ff8-00022d09712b", "FreeBSD UFS"},
    {"516e7cb8-6ecf-11d6-8ff8-00022d09712b", "FreeBSD Vinum"},
    {"516e7cba-6ecf-11d6-8ff8-00022d09712b", "FreeBSD ZFS"},
    {"48465300-0000-11aa-aa11-00306543ecac", "Apple HFS or HFS+"},
    {"7c3457ef-0000-11aa-aa11-00306543ecac", "Apple APFS"},
    {"426f6f74-0000-11aa-aa11-00306543ecac", "Apple boot"},
    {"53746f72-6167-11aa-aa11-00306543ecac", "Apple Core Storage"},
    {"52414944-0000-11aa-aa11-00306543ecac", "Apple RAID"},
    {"55465300-0000-11aa-aa11-00306543ecac", "Apple UFS"},
    {"6a898cc3-1dd2-11b2-99a6-080020736631", "Solaris /usr or Apple ZFS"},
    {"6a82cb45-1dd2-11b2-99a6-080020736631", "Solaris boot"},
    {"6a85cf4d-1dd2-11b2-99a6-080020736631", "Solaris root"},
    {"aa31e02a-400f-11db-9590-000c2911d1b8", "VMFS"},
    {"9d275380-40ad-11db-bf97-000c2911d1b8", "VMware core dump"},
    {"9198effc-31c0-11db-8f78-000c2911d1b8", "VMware reserved"},
    {"fe3a2a5d-4f32-41a7-b725-accc3285a309", "ChromeOS kernel"},
    {"3cb8e202-3b7e-47dd-8a3c-7ff2a13cfcec", "ChromeOS root"},
    {"2e0a753d-9e48-43b0-8337-b15192cb1b5e", "ChromeOS reserved"},
};

}  // namespace

std::string_view NameOfMbrType(u8 type) {
  for (const MbrTypeName& row : kMbrTypes) {
    if (row.type == type) return row.name;
  }
  return "unknown";
}

std::string_view NameOfGptType(std::string_view guid) {
  for (const GptTypeName& row : kGptTypes) {
    if (row.guid == guid) return row.name;
  }
  return "unknown";
}

}  // namespace trovisk
