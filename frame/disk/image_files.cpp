#include "frame/disk/image_files.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <vector>

#include "frame/disk/image_name.h"

namespace trovisk {
namespace {

// The pieces of an image. There may be thousands, so that one is open at a time.
struct Piece {
  std::string path;
  u64 end;  // bytes from the start of the image
};

struct Pieces {
  const FileCalls* calls = nullptr;
  std::vector<Piece> pieces;
  std::size_t current = 0;
  ImageSource file;  // the current piece; it cannot be read where none is open
};

void Close(ImageSource& file) {
  if (file.close != nullptr) file.close(file.state);
  file = {};
}

u64 StartOf(const Pieces& pieces, std::size_t index) {
  return index == 0 ? 0 : pieces.pieces[index - 1].end;
}

// Opens the piece unless it is open.
ErrorCode SelectPiece(Pieces& pieces, std::size_t index) {
  if (pieces.current == index && pieces.file.read != nullptr) return 0;
  Close(pieces.file);
  pieces.current = index;
  const Piece& piece = pieces.pieces[index];
  return pieces.calls->open(piece.path, piece.end - StartOf(pieces, index), pieces.file);
}

ErrorCode ReadPieces(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  auto& pieces = *static_cast<Pieces*>(state);
  got = 0;
  while (got < count) {
    const u64 at = offset + got;
    const auto piece = std::upper_bound(pieces.pieces.begin(), pieces.pieces.end(), at,
                                        [](u64 wanted, const Piece& each) { return wanted < each.end; });
    if (piece == pieces.pieces.end()) break;
    const auto index = static_cast<std::size_t>(piece - pieces.pieces.begin());
    if (const ErrorCode error = SelectPiece(pieces, index); error != 0) return error;
    std::size_t more = 0;
    const auto wanted = static_cast<std::size_t>(std::min<u64>(count - got, piece->end - at));
    const ErrorCode error =
        pieces.file.read(pieces.file.state, at - StartOf(pieces, index), buffer + got, wanted, more);
    if (error != 0) return error;
    got += more;
    if (more < wanted) break;  // the piece was made shorter meanwhile
  }
  return 0;
}

void ClosePieces(void* state) {
  const std::unique_ptr<Pieces> pieces(static_cast<Pieces*>(state));
  Close(pieces->file);
}

// The pieces one behind the other. file: the first one, open.
ImageSource SourceOf(const FileCalls& calls, std::vector<Piece> pieces, const ImageSource& file) {
  const u64 length = pieces.back().end;
  return {new Pieces{&calls, std::move(pieces), 0, file}, length, ReadPieces, ClosePieces};
}

// The pieces that follow a first one, as far as there are any. refusal: which of them cannot be part of an
// image.
std::vector<Piece> FindPieces(const FileCalls& calls, const std::string& first, u64 length,
                              std::string& refusal) {
  std::vector<Piece> pieces = {{first, length}};
  PieceNames names(first);
  for (std::string path = names.Next(calls.exists); !path.empty(); path = names.Next(calls.exists)) {
    u64 size = 0;
    if (!calls.length(path, size)) {
      refusal = "is an image in pieces, of which " + path + " is no regular file";
      return pieces;
    }
    if (size > std::numeric_limits<i64>::max() - length) break;
    length += size;
    pieces.push_back({path, length});
  }
  if (const std::string missing = names.Missing(calls.exists); !missing.empty()) {
    refusal = "is an image in pieces, of which " + missing + " is missing";
  }
  return pieces;
}

// The first bytes of a file, or those from an offset on: as many as can be read.
template <std::size_t Size>
Bytes ReadSome(const ImageSource& file, u64 offset, std::array<u8, Size>& bytes) {
  std::size_t got = 0;
  if (file.read(file.state, offset, bytes.data(), bytes.size(), got) != 0) got = 0;
  return Bytes(bytes).first(got);
}

// Puts what the file holds in the place of its own bytes.
ErrorCode OpenContent(const FileCalls& calls, const std::string& path, ImageSource& file,
                      std::string& refusal) {
  std::array<u8, kContainerHead> headRoom;
  std::array<u8, kContainerTail> tailRoom;
  const Bytes head = ReadSome(file, 0, headRoom);
  const Bytes tail = ReadSome(file, file.length - std::min<u64>(file.length, kContainerTail), tailRoom);
  const auto* const kind = ContainerKindOf(head, tail);
  if (kind != nullptr && kind->format == ContainerFormat::kFixedVhd) {
    file = SourceOf(calls, {{path, FixedVhdLength(tail, file.length)}}, file);
  } else if (kind != nullptr) {
    ImageSource content;
    if (const ErrorCode error = calls.openContainer(*kind, head, path, content, refusal); error != 0)
      return error;
    Close(file);
    file = content;
  } else if (const std::string before = PieceNames::Before(path, calls.exists);
             !before.empty() && calls.exists(before)) {
    refusal = "is a further piece of an image, behind " + before + ": name the first one";
    return kErrorWithoutCode;
  } else if (PieceNames::IsFirst(path)) {
    std::vector<Piece> pieces = FindPieces(calls, path, file.length, refusal);
    if (!refusal.empty()) return kErrorWithoutCode;
    if (pieces.size() > 1) file = SourceOf(calls, std::move(pieces), file);
  }
  return 0;
}

}  // namespace

ErrorCode OpenImage(Device& device, const FileCalls& calls, const std::string& path,
                    const ImageSource& file) {
  ImageSource source = file;
  const ErrorCode error =
      device.sectorSize == 0 ? OpenContent(calls, path, source, device.refusal) : ErrorCode{0};
  if (error != 0) {
    Close(source);
    return error;
  }
  device.image = std::make_unique<Image>(source, device.sectorSize);
  return 0;
}

Bytes TakeOfImage(Device& device, u32 count) {
  const Bytes taken = device.image->Take(device.position, count);
  device.position += taken.size();
  return taken;
}

ErrorCode ReadImage(Device& device, u8* buffer, u32 count, u32& got) {
  std::size_t bytes = 0;
  const ErrorCode error = device.image->Read(device.position, buffer, count, bytes);
  got = static_cast<u32>(bytes);
  device.position += got;
  return error;
}

}  // namespace trovisk
