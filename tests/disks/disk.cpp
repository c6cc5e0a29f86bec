#include "tests/disks/disk.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace trovisk::test {
namespace {

void Require(bool condition, const std::string& what) {
  if (condition) return;
  std::cerr << "test disk: " << what << '\n';
  std::abort();
}

}  // namespace

Sector& Sector::LittleEndian(std::size_t offset, u64 value, std::size_t width) {
  Require(offset + width <= bytes_.size(), "a field lies outside its sector");
  for (std::size_t i = 0; i < width; ++i)
    bytes_[offset + i] = static_cast<u8>(value >> (8 * i));
  return *this;
}

Sector& Sector::BigEndian(std::size_t offset, u64 value, std::size_t width) {
  Require(offset + width <= bytes_.size(), "a field lies outside its sector");
  for (std::size_t i = 0; i < width; ++i)
    bytes_[offset + i] = static_cast<u8>(value >> (8 * (width - 1 - i)));
  return *this;
}

Sector& Sector::Bytes(std::size_t offset, std::initializer_list<int> bytes) {
  for (const int byte : bytes)
    LittleEndian(offset++, static_cast<u64>(byte), 1);
  return *this;
}

Sector& Sector::Bytes(std::size_t offset, trovisk::Bytes bytes) {
  for (const u8 byte : bytes)
    LittleEndian(offset++, byte, 1);
  return *this;
}

Sector& Sector::Fill(std::size_t offset, std::size_t count, u8 value) {
  for (std::size_t i = 0; i < count; ++i)
    LittleEndian(offset + i, value, 1);
  return *this;
}

Sector& Sector::Text(std::size_t offset, std::string_view text) {
  for (const char character : text)
    LittleEndian(offset++, static_cast<u8>(character), 1);
  return *this;
}

Sector& Sector::Utf16(std::size_t offset, std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i)
    LittleEndian(offset + 2 * i, text[i], 2);
  return *this;
}

Sector& Sector::GuidAt(std::size_t offset, const trovisk::Guid& guid) {
  return Bytes(offset, guid.bytes);
}

std::vector<std::string> WithOneWrongCharacter(const std::string& text) {
  std::vector<std::string> wrong(text.size(), text);
  for (std::size_t i = 0; i < text.size(); ++i)
    wrong[i][i] = static_cast<char>(text[i] ^ 0x20);
  return wrong;
}

Sector& Disk::At(u64 sector) {
  return touched_.try_emplace(sector, sectorSize_).first->second;
}

void Disk::Write(const std::string& path) const {
  {
    std::ofstream image(path, std::ios::binary | std::ios::trunc);
    for (const auto& [number, sector] : touched_) {
      if (number >= sectors_) continue;
      const trovisk::Bytes bytes = sector.View();
      image.seekp(static_cast<std::streamoff>(number * sectorSize_));
      image.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    image.flush();
    Require(image.good(), "cannot write " + path);
  }
  std::filesystem::resize_file(path, sectors_ * sectorSize_);
}

}  // namespace trovisk::test
