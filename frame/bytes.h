// Bounded views of what was read from a disk, and the readers of their fields.
//
// Two kinds of position, two kinds of reader:
//   - a field at a fixed offset of its structure: Le32<kOffset>(view), where the view has a size known
//     at compile time; a field that does not lie wholly inside does not compile;
//   - a position that was computed from disk data: Le32At(bytes, position); bytes outside the view
//     read as zero, so a field across the end keeps its inner bytes.
// Nothing here reads outside a view, whatever the position.

#ifndef TROVISK_FRAME_BYTES_H
#define TROVISK_FRAME_BYTES_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace trovisk {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;
using i32 = std::int32_t;
using i64 = std::int64_t;

// Bytes of any number; of a number known at compile time; the records that most decoders read.
using Bytes = std::span<const u8>;
template <std::size_t Size>
using FixedBytes = std::span<const u8, Size>;
using SectorView = FixedBytes<512>;

// What the buffer of a read begins at a multiple of, in bytes: a raw disk's adapter writes into it by itself,
// and the system refuses one that does not lie as the adapter asks; those of today ask for 1 to 16. What is
// allocated lies so anyway.
inline constexpr std::size_t kBufferAlignment = 16;

// Room for a record that is read.
template <std::size_t Size>
struct alignas(kBufferAlignment) RecordBuffer : std::array<u8, Size> {};

// Descriptions of sectors, names of codes, the disk's path: text that is printed in the C locale's narrow
// characters.
using WideText = std::wstring_view;

// The byte at a computed position; 0 outside the view.
inline u8 U8At(Bytes bytes, u64 position) {
  return position < bytes.size() ? bytes[position] : u8{0};
}

// At most count bytes from a computed position, cut at the view's end; empty when the position lies outside.
inline Bytes SliceAt(Bytes bytes, u64 position, u64 count) {
  if (position >= bytes.size()) return {};
  return bytes.subspan(static_cast<std::size_t>(position),
                       static_cast<std::size_t>(std::min<u64>(count, bytes.size() - position)));
}

// The bytes as a number, least or most significant byte first; of more than eight the eight least
// significant.
inline u64 LittleEndian(Bytes field) {
  u64 value = 0;
  for (std::size_t i = field.size(); i-- > 0;)
    value = value << 8 | field[i];
  return value;
}
inline u64 BigEndian(Bytes field) {
  u64 value = 0;
  for (const u8 byte : field)
    value = value << 8 | byte;
  return value;
}

// Integers of Width bytes at a computed position.
template <std::size_t Width>
u64 LittleEndianAt(Bytes bytes, u64 position) {
  return LittleEndian(SliceAt(bytes, position, Width));
}
template <std::size_t Width>
u64 BigEndianAt(Bytes bytes, u64 position) {
  const Bytes field = SliceAt(bytes, position, Width);
  u64 value = 0;
  for (std::size_t i = 0; i < Width; ++i)
    value = value << 8 | U8At(field, i);
  return value;
}
inline u16 Le16At(Bytes bytes, u64 position) {
  return static_cast<u16>(LittleEndianAt<2>(bytes, position));
}
inline u32 Le32At(Bytes bytes, u64 position) {
  return static_cast<u32>(LittleEndianAt<4>(bytes, position));
}
inline u64 Le64At(Bytes bytes, u64 position) {
  return LittleEndianAt<8>(bytes, position);
}
inline u16 Be16At(Bytes bytes, u64 position) {
  return static_cast<u16>(BigEndianAt<2>(bytes, position));
}
inline u32 Be32At(Bytes bytes, u64 position) {
  return static_cast<u32>(BigEndianAt<4>(bytes, position));
}
inline u64 Be64At(Bytes bytes, u64 position) {
  return BigEndianAt<8>(bytes, position);
}

// From a computed position to the view's end.
inline Bytes FromAt(Bytes bytes, u64 position) {
  return SliceAt(bytes, position, bytes.size());
}

// Count bytes at a fixed offset of a structure.
template <std::size_t Offset, std::size_t Count, std::size_t Size>
FixedBytes<Count> Part(FixedBytes<Size> bytes) {
  static_assert(Size != std::dynamic_extent && Offset + Count <= Size,
                "the field lies outside its structure");
  return bytes.template subspan<Offset, Count>();
}

// Integers at a fixed offset of a structure.
template <std::size_t Offset, std::size_t Size>
u8 U8(FixedBytes<Size> bytes) {
  return Part<Offset, 1>(bytes)[0];
}
template <std::size_t Offset, std::size_t Size>
u16 Le16(FixedBytes<Size> bytes) {
  return Le16At(Part<Offset, 2>(bytes), 0);
}
template <std::size_t Offset, std::size_t Size>
u32 Le32(FixedBytes<Size> bytes) {
  return Le32At(Part<Offset, 4>(bytes), 0);
}
template <std::size_t Offset, std::size_t Size>
u64 Le64(FixedBytes<Size> bytes) {
  return Le64At(Part<Offset, 8>(bytes), 0);
}
template <std::size_t Offset, std::size_t Size>
u16 Be16(FixedBytes<Size> bytes) {
  return Be16At(Part<Offset, 2>(bytes), 0);
}
template <std::size_t Offset, std::size_t Size>
u32 Be32(FixedBytes<Size> bytes) {
  return Be32At(Part<Offset, 4>(bytes), 0);
}
template <std::size_t Offset, std::size_t Size>
u64 Be64(FixedBytes<Size> bytes) {
  return Be64At(Part<Offset, 8>(bytes), 0);
}

// The first byte is zero and every other one equals the one before it.
inline bool AllZero(Bytes bytes) {
  return bytes.empty() ||
         (bytes[0] == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0);
}

// Whether the bytes are exactly these characters.
inline bool EqualsText(Bytes bytes, std::string_view text) {
  return std::equal(bytes.begin(), bytes.end(), text.begin(), text.end(),
                    [](u8 byte, char character) { return byte == static_cast<u8>(character); });
}

}  // namespace trovisk

#endif
