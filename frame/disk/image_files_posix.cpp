#include "frame/disk/image_files_posix.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

#include "frame/disk/file_posix.h"
#include "frame/disk/image_name.h"

namespace trovisk {
namespace {

// One file, or the start of one.
struct File {
  int descriptor;
  u64 length;
  int direct = -1;  // as ReadBytes keeps it
};

ErrorCode ReadFileSource(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  auto& file = *static_cast<File*>(state);
  const u64 rest = file.length - std::min(offset, file.length);
  return ReadBytes(file.descriptor, file.direct, offset, buffer, std::min<u64>(count, rest), got);
}

void CloseFileSource(void* state) {
  const std::unique_ptr<File> file(static_cast<File*>(state));
  if (file->direct >= 0) close(file->direct);
  close(file->descriptor);
}

// The pieces of one. There may be thousands, so that one is open at a time.
struct Piece {
  std::string path;
  u64 end;  // bytes from the start of the image
};

struct Pieces {
  std::vector<Piece> pieces;
  std::size_t current = 0;
  int descriptor = -1;
  int direct = -1;  // as ReadBytes keeps it
};

void CloseCurrent(Pieces& pieces) {
  for (int* const descriptor : {&pieces.descriptor, &pieces.direct}) {
    if (*descriptor >= 0) close(*descriptor);
    *descriptor = -1;
  }
}

// Opens the piece unless it is open.
ErrorCode SelectPiece(Pieces& pieces, std::size_t index) {
  if (pieces.current == index && pieces.descriptor >= 0) return 0;
  CloseCurrent(pieces);
  pieces.descriptor = OpenReadOnly(pieces.pieces[index].path);
  pieces.current = index;
  return pieces.descriptor < 0 ? LastError() : 0;
}

ErrorCode ReadPieces(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  auto& pieces = *static_cast<Pieces*>(state);
  got = 0;
  while (got < count) {
    const u64 at = offset + got;
    const auto piece = std::upper_bound(pieces.pieces.begin(), pieces.pieces.end(), at,
                                        [](u64 wanted, const Piece& each) { return wanted < each.end; });
    if (piece == pieces.pieces.end()) break;
    const u64 start = piece == pieces.pieces.begin() ? 0 : std::prev(piece)->end;
    const auto index = static_cast<std::size_t>(piece - pieces.pieces.begin());
    if (const ErrorCode error = SelectPiece(pieces, index); error != 0) return error;
    std::size_t more = 0;
    const std::size_t wanted = static_cast<std::size_t>(std::min<u64>(count - got, piece->end - at));
    const ErrorCode error =
        ReadBytes(pieces.descriptor, pieces.direct, at - start, buffer + got, wanted, more);
    if (error != 0) return error;
    got += more;
    if (more < wanted) break;  // the piece was made shorter meanwhile
  }
  return 0;
}

void ClosePieces(void* state) {
  const std::unique_ptr<Pieces> pieces(static_cast<Pieces*>(state));
  CloseCurrent(*pieces);
}

bool Exists(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

}  // namespace

ImageSource FileSource(int descriptor, u64 length) {
  return {new File{.descriptor = descriptor, .length = length}, length, ReadFileSource, CloseFileSource};
}

bool OpenPieces(const std::string& first, int descriptor, u64 length, ImageSource& source,
                std::string& refusal) {
  auto pieces = std::make_unique<Pieces>();
  pieces->pieces.push_back({first, length});
  PieceNames names(first);
  for (std::string path = names.Next(Exists); !path.empty(); path = names.Next(Exists)) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
      refusal = "is an image in pieces, of which " + path + " is no regular file";
      return false;
    }
    const auto size = static_cast<u64>(status.st_size);
    if (size > std::numeric_limits<i64>::max() - length) break;
    length += size;
    pieces->pieces.push_back({path, length});
  }
  if (const std::string missing = names.Missing(Exists); !missing.empty()) {
    refusal = "is an image in pieces, of which " + missing + " is missing";
    return false;
  }
  if (pieces->pieces.size() == 1) return false;
  pieces->descriptor = descriptor;
  source = {pieces.release(), length, ReadPieces, ClosePieces};
  return true;
}

}  // namespace trovisk
