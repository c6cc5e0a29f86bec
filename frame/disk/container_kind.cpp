// Signatures: the formats' published descriptions (EWF as the libyal project describes it, VHD and VHDX by
// Microsoft, VMDK by VMware, QCOW and VDI as QEMU and VirtualBox document them, the archives by their
// makers).

#include "frame/disk/container_kind.h"

#include <algorithm>

namespace trovisk {
namespace {

using namespace std::string_view_literals;

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  ContainerKind kind;
};

constexpr std::string_view kConvert = "convert it with \"qemu-img convert -O raw\"";
constexpr std::string_view kUnpack = "unpack it first";
constexpr std::string_view kItsProgram = "write it as a raw or an E01 image with the program that made it";
constexpr std::string_view kFiles = "look into it with the program that made it";
constexpr std::string_view kExport = "write it as a raw image with \"ewfexport\"";

constexpr Signature kSignatures[] = {
    {0, "EVF\x09\x0D\x0A\xFF\x00"sv, {ContainerFormat::kEwf, "an E01 (EWF) image", kExport}},
    {0, "vhdxfile"sv, {ContainerFormat::kVhdx, "a VHDX image", kConvert}},
    {0, "conectix"sv, {ContainerFormat::kVhd, "a VHD image", kConvert}},
    {0, "KDMV"sv, {ContainerFormat::kVmdk, "a VMDK image", kConvert}},
    {0, "COWD"sv, {ContainerFormat::kVmdk, "a VMDK image", kConvert}},
    {0, "# Disk DescriptorFile"sv, {ContainerFormat::kVmdk, "a VMDK image", kConvert}},
    {0, "QFI\xFB"sv, {ContainerFormat::kQcow, "a QCOW image", kConvert}},
    {0, "EVF2\x0D\x0A\x81\x00"sv, {ContainerFormat::kOther, "an Ex01 (EWF2) image", kItsProgram}},
    {0, "LVF\x09\x0D\x0A\xFF\x00"sv, {ContainerFormat::kOther, "an L01 image of files", kFiles}},
    {0, "LEF2\x0D\x0A\x81\x00"sv, {ContainerFormat::kOther, "an Lx01 image of files", kFiles}},
    {0x40, "\x7F\x10\xDA\xBE"sv, {ContainerFormat::kOther, "a VDI image", kConvert}},
    {0, "WithoutFreeSpace"sv, {ContainerFormat::kOther, "a Parallels image", kConvert}},
    {0, "WithouFreSpacExt"sv, {ContainerFormat::kOther, "a Parallels image", kConvert}},
    {0, "QED\x00"sv, {ContainerFormat::kOther, "a QED image", kConvert}},
    {0,
     "AFF10\x0D\x0A\x00"sv,
     {ContainerFormat::kOther, "an AFF image", "write it as a raw image with \"affconvert -r\""}},
    {0, "\xFD\x37zXZ\x00"sv, {ContainerFormat::kOther, "an xz file", kUnpack}},
    {0, "PK\x03\x04"sv, {ContainerFormat::kOther, "a zip file", kUnpack}},
    {0, "\x1F\x8B\x08"sv, {ContainerFormat::kOther, "a gzip file", kUnpack}},
    {4, "1AY&SY"sv, {ContainerFormat::kOther, "a bzip2 file", kUnpack}},
    {0, "7z\xBC\xAF\x27\x1C"sv, {ContainerFormat::kOther, "a 7z file", kUnpack}},
    {0, "\x28\xB5\x2F\xFD"sv, {ContainerFormat::kOther, "a Zstandard file", kUnpack}},
};

constexpr ContainerKind kFixedVhd = {ContainerFormat::kFixedVhd, "a VHD image", kConvert};

// The footer of a VHD of fixed size, which has nothing in front of the disk's bytes. The checksum is the
// ones' complement of the sum of the other bytes.
bool IsVhdFooter(Bytes footer) {
  constexpr std::size_t kChecksum = 0x40;  // u32, big-endian
  if (footer.size() != kContainerTail || !EqualsText(footer.first(8), "conectix")) return false;
  u32 sum = 0;
  for (std::size_t i = 0; i < footer.size(); ++i) {
    if (i < kChecksum || i >= kChecksum + 4) sum += footer[i];
  }
  return ~sum == Be32At(footer, kChecksum);
}

}  // namespace

const ContainerKind* ContainerKindOf(Bytes head, Bytes tail) {
  const auto* const found =
      std::find_if(std::begin(kSignatures), std::end(kSignatures), [&](const Signature& signature) {
        return EqualsText(SliceAt(head, signature.offset, signature.bytes.size()), signature.bytes);
      });
  if (found != std::end(kSignatures)) return &found->kind;
  return IsVhdFooter(tail) ? &kFixedVhd : nullptr;
}

u64 FixedVhdLength(Bytes tail, u64 fileLength) {
  constexpr std::size_t kCurrentSize = 0x30;  // u64, big-endian
  return std::min(Be64At(tail, kCurrentSize), fileLength - kContainerTail);
}

u16 EwfSegment(Bytes head) {
  constexpr std::size_t kSegmentNumber = 9;  // u16, little-endian
  return Le16At(head, kSegmentNumber);
}

std::string NotRead(const ContainerKind& kind) {
  return "is " + std::string(kind.name) + ", which this program does not read: " + std::string(kind.advice);
}

}  // namespace trovisk
