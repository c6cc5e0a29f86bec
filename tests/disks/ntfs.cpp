#include "tests/disks/ntfs.h"

namespace trovisk::test {
namespace {

std::size_t FirstMessage(BootCode code) {
  switch (code) {
    case BootCode::kNtfsW1999:
      return 0x183;
    case BootCode::kNtfsVista:
      return 0x180;
    case BootCode::kNtfsWindows7:
    case BootCode::kNtfsWindows8Beta:
      return 0x18C;
    default:
      return 0x18A;
  }
}

void PutMessages(Sector& bytes, BootCode code, const std::vector<std::string>& messages) {
  const bool words = code == BootCode::kNtfsWindows8;
  std::size_t position = FirstMessage(code);
  std::size_t offset = words ? 0x1F6 : 0x1F8;
  for (const std::string& message : messages) {
    if (offset == 0x1FC) break;
    if (words) {
      bytes.Le16(offset, position);
    } else {
      bytes.U8(offset, position);
    }
    offset += words ? 2 : 1;
    bytes.Text(position, message);
    position += message.size() + 1;
  }
}

std::size_t PutName(Sector& bytes, std::size_t offset, std::u16string_view name) {
  bytes.Le16(offset, name.size()).Utf16(offset + 2, name);
  return offset + 2 + 2 * name.size();
}

}  // namespace

Sector& PutNtfsBootSector(Disk& disk, u64 sector, const NtfsBootSector& boot) {
  Sector& bytes = disk.At(sector);
  bytes.Bytes(0x000, {0xEB, 0x52, 0x90}).Text(0x003, boot.oemName);
  bytes.Le16(0x00B, boot.bytesPerSector).U8(0x00D, boot.sectorsPerCluster).Le16(0x00E, boot.reservedSectors);
  bytes.U8(0x015, boot.mediaDescriptor).Le16(0x018, boot.sectorsPerTrack).Le16(0x01A, boot.heads);
  bytes.Le32(0x01C, boot.hiddenSectors).Le64(0x028, boot.totalSectors);
  bytes.Le64(0x030, boot.mftCluster).Le64(0x038, boot.mftMirrorCluster);
  bytes.Le32(0x040, boot.clustersPerRecordSegment).Le32(0x044, boot.clustersPerIndexBlock);
  bytes.Le64(0x048, boot.volumeSerial);
  if (boot.code) {
    PutInventedCode(bytes, *boot.code);
    PutMessages(bytes, *boot.code, boot.messages);
  }
  return bytes.Le16(0x1FE, boot.endMark);
}

Sector& PutNtfsBootCode(Disk& disk, u64 sector, const NtfsBootCode& code) {
  Sector& bytes = disk.At(sector);
  PutName(bytes, PutName(bytes, 0x000, code.loader), code.index);
  std::size_t offset = 0x05A;
  for (const std::u16string& name : code.furtherNames)
    offset = PutName(bytes, offset, name);
  bytes.Text(0x09A, code.message);
  for (std::size_t i = code.codeOffset; i < 0x200; ++i)
    bytes.U8(i, (i & 0xFF) * 3);
  return bytes;
}

}  // namespace trovisk::test
