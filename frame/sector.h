// What nearly every decoder begins and ends with: the header line, the record that it reads, the check of its
// signature, the raw dump of its sector. Also here: the raw dumps themselves (frame/decoders.h declares
// them).

#ifndef TROVISK_FRAME_SECTOR_H
#define TROVISK_FRAME_SECTOR_H

#include <optional>
#include <span>
#include <string_view>

#include "frame/bytes.h"
#include "frame/decoders.h"

namespace trovisk {

// Moves the disk to the first byte of a sector.
bool SeekToSector(u64 sector);

// Reads the whole record at the disk's position. A failure says "Error reading sector" on standard error,
// after the disk layer's own message; what the record holds is of no use then.
bool ReadRecord(std::span<u8> record);

// The same for a record of fixed size; none after a failure.
template <std::size_t Size>
std::optional<RecordBuffer<Size>> ReadRecord() {
  std::optional<RecordBuffer<Size>> record(std::in_place);
  if (!ReadRecord(*record)) record.reset();
  return record;
}

// What stands below a header line.
enum class Below { kNothing, kEmptyLine };

// The header line of a sector's report, where there is one: in front of the read, so that it also stands in
// front of its failure.
void PrintOpening(WideText description, u64 sector, bool print, Below below = Below::kNothing);

// The opening of a decoder: the header line where print is set, and the record.
template <std::size_t Size = 512>
std::optional<RecordBuffer<Size>> OpenRecord(WideText description, u64 sector, bool print,
                                             Below below = Below::kNothing) {
  PrintOpening(description, sector, print, below);
  return ReadRecord<Size>();
}

// Whether the stored bytes are the signature. If not, the error line "**** No ... magic found ****" says so;
// name: what it calls the structure.
bool CheckSignature(Bytes stored, std::string_view signature, std::string_view name);

// The description under which a decoder's own sector is dumped.
inline constexpr WideText kAsRawSector = L"as a raw sector";

// Seeks back to the start of the sector and hands it to DumpRawSector as kAsRawSector. Gives that
// decoder's result, or kEndPass when the seek fails.
u64 DumpAsRawSector(u64 sector, bool print);

// The same for decoders that go on although their dump could not be read: the next sector, or kEndPass when
// the seek fails.
u64 DumpAsRawSectorAndGoOn(u64 sector, bool print);

}  // namespace trovisk

#endif
