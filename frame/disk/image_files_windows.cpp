#include "frame/disk/image_files_windows.h"

#include <memory>

#include "frame/disk/file_windows.h"
#include "frame/disk/image_files.h"
#include "frame/disk/image_name.h"

namespace trovisk {
namespace {

ErrorCode ReadFileSource(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  return ReadAt(*static_cast<File*>(state), offset, buffer, count, got);
}

void CloseFileSource(void* state) {
  const std::unique_ptr<File> file(static_cast<File*>(state));
  CloseHandle(file->handle);
}

ImageSource FileSource(const File& file) {
  return {new File(file), file.length, ReadFileSource, CloseFileSource};
}

bool FileExists(const std::string& path) {
  return Exists(FromUtf8(path));
}

bool LengthOfFile(const std::string& path, u64& bytes) {
  const File file = OpenReadOnly(FromUtf8(path));
  if (!file.IsOpen()) return false;
  CloseHandle(file.handle);
  bytes = file.length;
  return true;
}

ErrorCode OpenFileSource(const std::string& path, u64 length, ImageSource& source) {
  File file = OpenReadOnly(FromUtf8(path));
  if (!file.IsOpen()) return Failure();
  file.length = length;
  source = FileSource(file);
  return 0;
}

// The libraries that read containers are those of other systems.
ErrorCode RefuseContainer(const ContainerKind& kind, Bytes /*head*/, const std::string& /*path*/,
                          ImageSource& /*content*/, std::string& refusal) {
  refusal = NotRead(kind);
  return ERROR_NOT_SUPPORTED;
}

constexpr FileCalls kWindowsFiles = {FileExists, LengthOfFile, OpenFileSource, RefuseContainer};

}  // namespace

bool OpenImageFile(Device& device, const std::wstring& argument) {
  std::wstring path = argument;
  File file = OpenReadOnly(path);
  if (!file.IsOpen() && IsNotThere(Failure())) {  // no file of the whole name
    device.sectorSize = SectorSizeOfName(argument, path);
    if (device.sectorSize != 0) file = OpenReadOnly(path);
  }
  return file.IsOpen() && OpenImage(device, kWindowsFiles, ToUtf8(path), FileSource(file)) == 0;
}

}  // namespace trovisk
