// The disk object's five operations, on a disk whose every call can be made to fail.

#include "frame/global.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "frame/report/report.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

// The error lines while it lives.
class ErrorText {
 public:
  ErrorText() { errors.DirectTo(&text_); }
  ErrorText(const ErrorText&) = delete;
  ErrorText& operator=(const ErrorText&) = delete;
  ~ErrorText() { errors.DirectTo(nullptr); }

  // What was printed since the last call.
  std::string Take() { return std::exchange(text_, {}); }

 private:
  std::string text_;
};

// A Global of the test's own, opened on the disk.
class GlobalTest : public ::testing::Test {
 protected:
  void Open(const MemoryDisk& memory) {
    InsertDisk(memory);
    ASSERT_TRUE(global_.Open(L"\\\\.\\PhysicalDrivemem", "mem"));
  }

  std::vector<u8> buffer_ = std::vector<u8>(16384, u8{0xEE});
  Global global_;
  ErrorText error_;
};

Disk DiskOf4096() {
  Disk disk(4, 4096);
  disk.At(0).Text(0, "first").Text(512, "middle");
  disk.At(1).Text(0, "second");
  return disk;
}

std::string TextAt(const std::vector<u8>& buffer, std::size_t offset, std::size_t count) {
  return {buffer.begin() + static_cast<std::ptrdiff_t>(offset),
          buffer.begin() + static_cast<std::ptrdiff_t>(offset + count)};
}

TEST(Global, StartsClosedAndEmpty) {
  const Global global;
  EXPECT_EQ(global.bytesPerSector, 0u);
  EXPECT_FALSE(global.toc.FirstAtOrAfter(0).has_value());
}

TEST_F(GlobalTest, OpenLearnsTheSectorSize) {
  Open({Disk(100, 4096)});
  EXPECT_EQ(global_.bytesPerSector, 4096u);
  EXPECT_EQ(error_.Take(), "");
}

TEST_F(GlobalTest, OpenThatFailsNamesThePathAndTheCode) {
  InsertDisk({Disk(), {{.call = Call::kOpen, .error = 13}}});
  EXPECT_FALSE(global_.Open(L"\\\\.\\PhysicalDrivemem", "mem"));
  EXPECT_EQ(error_.Take(), "Global::Open: couldn't open \\\\.\\PhysicalDrivemem for reading, error 13\n");
  EXPECT_EQ(global_.openError, 13u);
  EXPECT_EQ(CallsSinceInsertion().order, "O");
}

// The disk stays open until the process ends, which comes at once.
TEST_F(GlobalTest, GeometryThatFailsNamesThePathAndTheCode) {
  InsertDisk({Disk(), {{.call = Call::kSectorSize, .error = 25}}});
  EXPECT_FALSE(global_.Open(L"\\\\.\\PhysicalDrivemem", "mem"));
  EXPECT_EQ(error_.Take(),
            "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrivemem "
            "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error 25\n");
  EXPECT_EQ(global_.openError, 25u);
  EXPECT_EQ(CallsSinceInsertion().order, "OG");
}

TEST_F(GlobalTest, OpenThatSucceedsForgetsWhyAnotherFailed) {
  InsertDisk({Disk(), {{.call = Call::kOpen, .error = kErrorWithoutCode}}});
  EXPECT_FALSE(global_.Open(L"mem", "mem"));
  EXPECT_EQ(global_.openError, kErrorWithoutCode);
  Open({Disk()});
  EXPECT_EQ(global_.openError, 0u);
  InsertDisk({Disk(), {{.call = Call::kOpen, .error = 13}}});
  EXPECT_FALSE(global_.Open(L"mem", "mem"));
  global_.Reset();
  EXPECT_EQ(global_.openError, 0u);
  EXPECT_NE(error_.Take(), "");
}

TEST_F(GlobalTest, LastSectorIsTheLengthRoundedDownLessOne) {
  Open({Disk(100)});
  EXPECT_EQ(global_.GetLastSector(), 99u);
  for (const auto& [length, last] : {std::pair<u64, u64>{512, 0},
                                     {1023, 0},
                                     {1024, 1},
                                     {511, ~u64{0}},
                                     {0, ~u64{0}},
                                     {~u64{0}, (u64{1} << 55) - 2}}) {
    InsertDisk({Disk(), {{.call = Call::kLength, .amount = length}}});
    EXPECT_EQ(global_.GetLastSector(), last) << length;
  }
  EXPECT_EQ(error_.Take(), "");
}

// The closing parenthesis stands before the number.
TEST_F(GlobalTest, LengthThatFailsIsAllOnes) {
  Open({Disk(), {{.call = Call::kLength, .error = 4294967295}}});
  EXPECT_EQ(global_.GetLastSector(), ~u64{0});
  EXPECT_EQ(error_.Take(), "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )4294967295\n");
}

TEST_F(GlobalTest, SeekRefusedNamesTheSectorRoundedDown) {
  Open({Disk(), {{.call = Call::kSeek, .calls = 9, .error = 22}}});
  EXPECT_FALSE(global_.Seek(3584));
  EXPECT_EQ(error_.Take(), "Global::Seek failed to seek to sector 7, error 22\n");
  EXPECT_FALSE(global_.Seek(4095));
  EXPECT_EQ(error_.Take(), "Global::Seek failed to seek to sector 7, error 22\n");
  EXPECT_FALSE(global_.Seek(~u64{0}));
  EXPECT_EQ(error_.Take(), "Global::Seek failed to seek to sector 36028797018963967, error 22\n");
}

TEST_F(GlobalTest, SeekThatLandsElsewhereHasNoCode) {
  Open({Disk(), {{.call = Call::kSeek, .amount = 3583}}});
  EXPECT_FALSE(global_.Seek(3584));
  EXPECT_EQ(error_.Take(), "Global::Seek failed to seek to sector 7\n");
}

// A system that refuses without a code, and stands where it should, has moved.
TEST_F(GlobalTest, SeekThatLandsWhereItShouldSucceeds) {
  Open({Disk(), {{.call = Call::kSeek, .amount = 3584}}});
  EXPECT_TRUE(global_.Seek(3584));
  EXPECT_EQ(error_.Take(), "");
}

// The layer does not compare with the disk's length.
TEST_F(GlobalTest, SeekBeyondTheEndIsTheSystemsAffair) {
  Open({Disk(10)});
  EXPECT_TRUE(global_.Seek(u64{1} << 62));
  EXPECT_FALSE(global_.Read(buffer_.data(), 512));
  EXPECT_EQ(error_.Take(), "Global::Read short read, needed 512, got 0\n");
}

TEST_F(GlobalTest, ReadBelowTheSectorSizeMovesOnByAWholeSector) {
  Open({DiskOf4096()});
  ASSERT_TRUE(global_.Seek(0));
  ASSERT_TRUE(global_.Read(buffer_.data(), 512));
  EXPECT_EQ(TextAt(buffer_, 0, 5), "first");
  EXPECT_EQ(buffer_[511], 0);
  EXPECT_EQ(buffer_[512], 0xEE);  // nothing beyond what was asked for
  ASSERT_TRUE(global_.Read(buffer_.data(), 512));
  EXPECT_EQ(TextAt(buffer_, 0, 6), "second");
  EXPECT_EQ(CallsSinceInsertion().order, "OGSRR");
}

TEST_F(GlobalTest, ReadOfNothingPassesOverASector) {
  Open({DiskOf4096()});
  ASSERT_TRUE(global_.Read(buffer_.data(), 0));
  EXPECT_EQ(buffer_[0], 0xEE);
  ASSERT_TRUE(global_.Read(buffer_.data(), 6));
  EXPECT_EQ(TextAt(buffer_, 0, 6), "second");
}

TEST_F(GlobalTest, ReadOfASectorAndMoreIsPassedOnUnchanged) {
  Open({DiskOf4096()});
  ASSERT_TRUE(global_.Read(buffer_.data(), 4096 + 6));
  EXPECT_EQ(TextAt(buffer_, 0, 5), "first");
  EXPECT_EQ(TextAt(buffer_, 512, 6), "middle");
  EXPECT_EQ(TextAt(buffer_, 4096, 6), "second");
  EXPECT_EQ(buffer_[4102], 0xEE);
  // 4102 bytes on, in the middle of a sector
  ASSERT_TRUE(global_.Read(buffer_.data(), 4096));
  EXPECT_EQ(TextAt(buffer_, 0, 1), std::string(1, '\0'));
}

TEST_F(GlobalTest, ReadThatFailsNamesTheCode) {
  Open({DiskOf4096(), {{.call = Call::kRead, .calls = 2, .error = 1117}}});
  EXPECT_FALSE(global_.Read(buffer_.data(), 4096));
  EXPECT_EQ(error_.Take(), "Global::Read failed, error 1117\n");
  EXPECT_FALSE(global_.Read(buffer_.data(), 512));
  EXPECT_EQ(error_.Take(), "Global::Read failed, error 1117\n");
  EXPECT_EQ(buffer_[0], 0xEE);
}

// At or above the sector size the message names the count asked for, below it the sector's.
TEST_F(GlobalTest, ShortReadNamesWhatWasNeeded) {
  Open({DiskOf4096(), {{.call = Call::kRead, .calls = 3, .amount = 100}}});
  EXPECT_FALSE(global_.Read(buffer_.data(), 5000));
  EXPECT_EQ(error_.Take(), "Global::Read short read, needed 5000, got 100\n");
  std::fill(buffer_.begin(), buffer_.end(), u8{0xEE});
  EXPECT_FALSE(global_.Read(buffer_.data(), 512));
  EXPECT_EQ(error_.Take(), "Global::Read short read, needed 4096, got 100\n");
  // Enough for what was asked, but not the whole sector.
  EXPECT_FALSE(global_.Read(buffer_.data(), 50));
  EXPECT_EQ(error_.Take(), "Global::Read short read, needed 4096, got 100\n");
  EXPECT_EQ(buffer_[0], 0xEE);
}

// The system is asked for the low 32 bits of the count; the message shows the whole of it.
TEST_F(GlobalTest, CountIsCutTo32Bits) {
  Open({DiskOf4096(), {{.call = Call::kRead, .nth = 2, .amount = 7}}});
  EXPECT_TRUE(global_.Read(buffer_.data(), (u64{1} << 32) + 8192));
  EXPECT_EQ(TextAt(buffer_, 4096, 6), "second");
  EXPECT_FALSE(global_.Read(buffer_.data(), (u64{1} << 32) + 8192));
  EXPECT_EQ(error_.Take(), "Global::Read short read, needed 4294975488, got 7\n");
}

TEST_F(GlobalTest, CloseOfAClosedDiskDoesNothing) {
  InsertDisk({Disk()});
  EXPECT_TRUE(global_.Close());
  EXPECT_EQ(CallsSinceInsertion().order, "");
  Open({Disk()});
  EXPECT_TRUE(global_.Close());
  EXPECT_TRUE(global_.Close());
  EXPECT_EQ(CallsSinceInsertion().order, "OGC");
}

TEST_F(GlobalTest, CloseThatFailsLeavesTheDiskClosedAndSaysNothing) {
  Open({Disk(), {{.call = Call::kClose, .error = 6}}});
  EXPECT_FALSE(global_.Close());
  EXPECT_TRUE(global_.Close());
  EXPECT_EQ(CallsSinceInsertion().order, "OGC");
  EXPECT_EQ(error_.Take(), "");
}

TEST(Global, ClosesTheDiskWhenItGoes) {
  {
    Global global;
    InsertDisk({Disk()});
    ASSERT_TRUE(global.Open(L"mem", "mem"));
  }
  EXPECT_EQ(CallsSinceInsertion().order, "OGC");
}

}  // namespace
}  // namespace trovisk::test
