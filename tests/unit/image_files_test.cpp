// Image files of a system that the test makes up: what is opened, in which order it is read, what is closed.

#include "frame/disk/image_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace trovisk::test {
namespace {

struct MadeUpFile {
  std::string bytes;
  u64 length = 0;       // where it is not that of the bytes
  ErrorCode opens = 0;  // what opening it gives
  bool regular = true;
};

std::map<std::string, MadeUpFile> files;
int openFiles = 0;

u64 LengthOf(const MadeUpFile& file) {
  return file.length != 0 ? file.length : file.bytes.size();
}

ErrorCode ReadMadeUp(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  const std::string& bytes = static_cast<const MadeUpFile*>(state)->bytes;
  const std::string part = offset < bytes.size() ? bytes.substr(offset, count) : "";
  std::copy(part.begin(), part.end(), buffer);
  got = part.size();
  return 0;
}

void CloseMadeUp(void* /*state*/) {
  --openFiles;
}

ErrorCode OpenMadeUp(const std::string& path, u64 length, ImageSource& file) {
  MadeUpFile& found = files.at(path);
  if (found.opens != 0) return found.opens;
  ++openFiles;
  file = {&found, length, ReadMadeUp, CloseMadeUp};
  return 0;
}

constexpr FileCalls kCalls = {
    .exists = [](const std::string& path) { return files.contains(path); },
    .length =
        [](const std::string& path, u64& bytes) {
          bytes = LengthOf(files.at(path));
          return files.at(path).regular;
        },
    .open = OpenMadeUp,
    .openContainer = [](const ContainerKind& kind, Bytes /*head*/, const std::string& path,
                        ImageSource& content, std::string& refusal) -> ErrorCode {
      if (kind.format == ContainerFormat::kVhdx) return OpenMadeUp("content of " + path, 7, content);
      refusal = NotRead(kind);
      return 95;
    },
};

// A test's own files; at the end none may be open.
class ImageFiles : public testing::Test {
 protected:
  void SetUp() override { files.clear(); }

  void TearDown() override {
    device = Device{};
    EXPECT_EQ(openFiles, 0);
  }

  ErrorCode Open(const std::string& path) {
    ImageSource file;
    EXPECT_EQ(OpenMadeUp(path, LengthOf(files.at(path)), file), 0U);
    return OpenImage(device, kCalls, path, file);
  }

  // So many bytes from an offset on, as far as there are any; what a failed read gives is "error N".
  std::string Read(u64 offset, u32 count) {
    std::string bytes(count, '\0');
    u32 got = 0;
    device.position = offset;
    const ErrorCode error = ReadImage(device, reinterpret_cast<u8*>(bytes.data()), count, got);
    if (error != 0) return "error " + std::to_string(error);
    EXPECT_EQ(device.position, offset + got);
    return bytes.substr(0, got);
  }

  Device device;
};

TEST_F(ImageFiles, OneFile) {
  files["disk.img"] = {"0123456789"};
  EXPECT_EQ(Open("disk.img"), 0U);
  EXPECT_EQ(device.image->Length(), 10U);
  EXPECT_EQ(Read(3, 4), "3456");
  EXPECT_EQ(Read(8, 4), "89");
  EXPECT_EQ(Read(10, 4), "");
  EXPECT_EQ(Read(~u64{0} >> 1, 4), "");
}

TEST_F(ImageFiles, PiecesAreReadAcrossTheirEnds) {
  files["x.001"] = {"012"};
  files["x.002"] = {"3"};
  files["x.003"] = {"456789"};
  EXPECT_EQ(Open("x.001"), 0U);
  EXPECT_EQ(device.image->Length(), 10U);
  EXPECT_EQ(Read(1, 6), "123456");
  EXPECT_EQ(Read(0, 10), "0123456789");
  EXPECT_EQ(Read(9, 4), "9");
  EXPECT_EQ(openFiles, 1);
}

// An empty piece has no place of its own.
TEST_F(ImageFiles, EmptyPieceIsPassedOver) {
  files["x.001"] = {"012"};
  files["x.002"] = {""};
  files["x.003"] = {"345"};
  EXPECT_EQ(Open("x.001"), 0U);
  EXPECT_EQ(Read(0, 6), "012345");
}

TEST_F(ImageFiles, PieceThatDoesNotOpenFailsTheReadAlone) {
  files["x.001"] = {"012"};
  files["x.002"] = {.bytes = "345", .opens = 13};
  EXPECT_EQ(Open("x.001"), 0U);
  EXPECT_EQ(Read(4, 1), "error 13");
  EXPECT_EQ(Read(1, 2), "12");
}

TEST_F(ImageFiles, PieceThatWasMadeShorterEndsTheRead) {
  files["x.001"] = {.bytes = "0", .length = 3};
  files["x.002"] = {"345"};
  EXPECT_EQ(Open("x.001"), 0U);
  EXPECT_EQ(Read(0, 6), "0");
  EXPECT_EQ(Read(3, 3), "345");
}

TEST_F(ImageFiles, PiecesEndWhereTheLargestPositionDoes) {
  files["x.001"] = {.bytes = "012", .length = u64{1} << 62};
  files["x.002"] = {.bytes = "345", .length = u64{1} << 62};
  EXPECT_EQ(Open("x.001"), 0U);
  EXPECT_EQ(device.image->Length(), u64{1} << 62);
}

TEST_F(ImageFiles, MissingPieceIsARefusal) {
  files["x.001"] = {"012"};
  files["x.003"] = {"456"};
  EXPECT_NE(Open("x.001"), 0U);
  EXPECT_EQ(device.refusal, "is an image in pieces, of which x.002 is missing");
}

TEST_F(ImageFiles, PieceThatIsNoFileIsARefusal) {
  files["x.001"] = {"012"};
  files["x.002"] = {.bytes = "", .regular = false};
  EXPECT_NE(Open("x.001"), 0U);
  EXPECT_EQ(device.refusal, "is an image in pieces, of which x.002 is no regular file");
}

TEST_F(ImageFiles, SaidSectorSizeMeansTheFilesOwnBytes) {
  files["x.001"] = {"vhdxfile"};
  files["x.002"] = {"345"};
  device.sectorSize = 4;
  EXPECT_EQ(Open("x.001"), 0U);
  EXPECT_EQ(device.image->Length(), 8U);
  EXPECT_EQ(device.image->SectorSize(), 4U);
  EXPECT_EQ(Read(0, 8), "vhdxfile");
}

TEST_F(ImageFiles, ContentTakesThePlaceOfTheContainer) {
  files["disk.vhdx"] = {"vhdxfile"};
  files["content of disk.vhdx"] = {"content"};
  EXPECT_EQ(Open("disk.vhdx"), 0U);
  EXPECT_EQ(openFiles, 1);
  EXPECT_EQ(Read(0, 7), "content");
}

TEST_F(ImageFiles, ContainerThatDoesNotOpenIsClosed) {
  files["disk.qcow2"] = {"QFI\xFB"};
  EXPECT_EQ(Open("disk.qcow2"), 95U);
  EXPECT_EQ(device.image, nullptr);
  EXPECT_EQ(openFiles, 0);
  EXPECT_EQ(device.refusal,
            "is a QCOW image, which this program does not read: convert it with \"qemu-img convert -O raw\"");
}

}  // namespace
}  // namespace trovisk::test
