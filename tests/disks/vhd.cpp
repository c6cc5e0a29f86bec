// Layout: Microsoft, "Virtual Hard Disk Image Format Specification". Big-endian. Footer, header, parent's
// path, block allocation table, blocks with a bitmap in front of each, footer.

#include "tests/disks/vhd.h"

#include <map>

namespace trovisk::test {
namespace {

constexpr u64 kSector = 512;
constexpr u64 kHeader = 1;   // its sector; it has two
constexpr u64 kLocator = 3;  // one
constexpr u64 kTable = 4;
constexpr u32 kDifferencing = 4;
constexpr u32 kDynamic = 3;
constexpr u32 kFixed = 2;

// The ones' complement of the sum of the structure's bytes, which has zeros in place of the checksum.
u32 Checksum(std::initializer_list<Bytes> sectors) {
  u32 sum = 0;
  for (const Bytes sector : sectors) {
    for (const u8 byte : sector)
      sum += byte;
  }
  return ~sum;
}

void PutFooter(Sector& footer, u64 size, u32 type, const Vhd& vhd) {
  footer.Text(0, "conectix")
      .Be32(8, 2)                                              // features: one that is always set
      .Be32(12, 0x00010000)                                    // version
      .Be64(16, type == kFixed ? ~u64{0} : kHeader * kSector)  // data offset
      .Be32(24, vhd.timestamp)
      .Text(28, "win ")
      .Be32(32, 0x00060001)  // creator version
      .Text(36, "Wi2k")
      .Be64(40, size)  // original
      .Be64(48, size)  // current
      .Be16(56, 0xFFFF)
      .U8(58, 16)
      .U8(59, 255)
      .Be32(60, type)
      .Bytes(68, vhd.identity);
  footer.Be32(64, Checksum({footer.View()}));
}

void PutHeader(Disk& file, u32 blocks, const Vhd& vhd) {
  Sector& first = file.At(kHeader);
  Sector& second = file.At(kHeader + 1);
  first.Text(0, "cxsparse")
      .Be64(8, ~u64{0})
      .Be64(16, kTable * kSector)
      .Be32(24, 0x00010000)
      .Be32(28, blocks)
      .Be32(32, vhd.blockSize);
  if (!vhd.parent.empty()) {
    first.Bytes(40, vhd.parentIdentity).Be32(56, vhd.timestamp);
    for (std::size_t i = 0; i < vhd.parent.size(); ++i)
      first.Be16(64 + 2 * i, vhd.parent[i]);
    const std::u16string path = u".\\" + vhd.parent.substr(vhd.parent.rfind(u'\\') + 1);
    second.Text(64, "W2ru")
        .Be32(68, kSector)
        .Be32(72, static_cast<u32>(2 * path.size()))
        .Be64(80, kLocator * kSector);
    file.At(kLocator).Utf16(0, path);
  }
  first.Be32(36, Checksum({first.View(), second.View()}));
}

}  // namespace

Disk MakeVhd(const Disk& content, const Vhd& vhd) {
  const u64 size = vhd.claimedSize != 0 ? vhd.claimedSize : content.Sectors() * kSector;
  const u64 blockSectors = vhd.blockSize / kSector;
  const u64 bitmapSectors = (blockSectors / 8 + kSector - 1) / kSector;
  const u64 blocks = (content.Sectors() + blockSectors - 1) / blockSectors;
  const u64 tableSectors = (blocks * 4 + kSector - 1) / kSector;

  Disk file(~u64{0});
  for (u64 i = 0; i < tableSectors; ++i)
    file.At(kTable + i).Fill(0, kSector, 0xFF);
  std::map<u64, u64> places;  // of the blocks that are stored: the sector where the bitmap begins
  u64 end = kTable + tableSectors;
  for (const auto& [number, sector] : content.Touched()) {
    const u64 block = number / blockSectors;
    const u64 within = number % blockSectors;
    if (const auto [place, isNew] = places.try_emplace(block, end); isNew) {
      file.At(kTable + block / 128).Be32(block % 128 * 4, end);
      end += bitmapSectors + blockSectors;
    }
    const u64 place = places[block];
    Sector& bitmap = file.At(place + within / 8 / kSector);
    const std::size_t byte = within / 8 % kSector;
    bitmap.U8(byte, bitmap.View()[byte] | 0x80 >> within % 8);
    file.At(place + bitmapSectors + within).Bytes(0, sector.View());
  }
  PutHeader(file, static_cast<u32>(blocks), vhd);
  const u32 type = vhd.parent.empty() ? kDynamic : kDifferencing;
  PutFooter(file.At(0), size, type, vhd);
  PutFooter(file.At(end), size, type, vhd);
  file.Resize(end + 1);
  return file;
}

Disk MakeFixedVhd(const Disk& content, const Vhd& vhd) {
  Disk file = content;
  file.Resize(content.Sectors() + 1);
  PutFooter(file.At(content.Sectors()), content.Sectors() * kSector, kFixed, vhd);
  return file;
}

}  // namespace trovisk::test
