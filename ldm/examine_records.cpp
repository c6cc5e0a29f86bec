// VBLK, the records of a dynamic disk's object database.
//
// Fields in the order of the disk, big-endian, each where the one before it ends; most in a length that a
// byte in front of them states. Layout: the Linux-NTFS project's LDM documentation, "VBLK". Checked: that all
// fields lie in the data that the record states and its slots have, and that numbers have no more than eight
// bytes. Not checked: what the fields say; the record in that case counts as it is read.

#include "ldm/examine_records.h"

#include <algorithm>
#include <utility>

#include "ldm/examine_words.h"
#include "ldm/vblk_fields.h"
#include "ldm/vblk_records.h"

namespace trovisk {
namespace {

constexpr u64 kAboutToBeDeleted = 1;
constexpr u64 kCreated = 2;

constexpr u8 kComponentStriped = 0x10;
constexpr u8 kPartitionIndexed = 0x08;
constexpr u8 kVolumeDriveHint = 0x02;
constexpr u8 kVolumeId1 = 0x08;
constexpr u8 kVolumeId2 = 0x20;
constexpr u8 kVolumeChildSize = 0x80;
constexpr u64 kVolumeStateSize = 14;

// The fields of a record, and whether all so far were there.
class Reader {
 public:
  explicit Reader(const LdmRecord& record, u64 position = 0)
      : data_(SliceAt(record.data, 0, record.dataLength)),
        fields_(data_, position),
        whole_(record.dataLength <= record.data.size()) {}

  void Skip(u64 count) { fields_.Skip(count); }
  u64 Number(u64 width) { return fields_.Number(width).value; }
  std::string Text(u64 width) { return SafeAscii(fields_.Take(width)); }
  std::string SizedText() { return Text(fields_.Byte()); }
  std::string Guid() { return StoredGuidText(fields_.Take(16)); }
  u64 SizedNumber() {
    const u8 width = fields_.Byte();
    whole_ = whole_ && width <= 8;
    return fields_.Number(width).value;
  }

  bool Whole() const { return whole_ && fields_.Position() <= data_.size(); }

 private:
  Bytes data_;
  FieldCursor fields_;
  bool whole_;
};

void ReadObject(Reader& fields, const LdmRecord& record, LdmObject& object) {
  object.sector = record.sector;
  object.id = fields.SizedNumber();
  object.name = fields.SizedText();
}

bool ReadVolume(const LdmRecord& record, LdmVolume& volume) {
  Reader fields(record, FirstField(record.flags));
  ReadObject(fields, record, volume);
  volume.type = fields.SizedText();
  fields.SizedText();  // attributes
  volume.state = fields.Text(kVolumeStateSize);
  fields.Skip(7);  // type, number and flags, with what lies between
  volume.children = fields.SizedNumber();
  fields.Skip(16);  // two transaction numbers
  volume.size = fields.SizedNumber();
  fields.Skip(4);
  volume.partitionType = fields.Number(1);
  volume.guid = fields.Guid();
  for (const u8 flag : {kVolumeId1, kVolumeId2, kVolumeChildSize}) {
    if ((record.flags & flag) != 0) fields.SizedNumber();
  }
  if ((record.flags & kVolumeDriveHint) != 0) volume.hint = fields.SizedText();
  return fields.Whole();
}

bool ReadComponent(const LdmRecord& record, LdmComponent& component) {
  Reader fields(record, FirstField(record.flags));
  ReadObject(fields, record, component);
  component.state = fields.SizedText();
  component.type = fields.Number(1);
  fields.Skip(4);
  component.children = fields.SizedNumber();
  fields.Skip(16);  // transaction number, zeros
  component.volume = fields.SizedNumber();
  if ((record.flags & kComponentStriped) != 0) {
    fields.Skip(1);
    component.stripeSize = fields.SizedNumber();
    component.columns = fields.SizedNumber();
  }
  return fields.Whole();
}

bool ReadPartition(const LdmRecord& record, LdmPartition& partition) {
  Reader fields(record, FirstField(record.flags));
  ReadObject(fields, record, partition);
  fields.Skip(12);  // zeros, transaction number
  partition.start = fields.Number(8);
  partition.volumeOffset = fields.Number(8);
  partition.size = fields.SizedNumber();
  partition.component = fields.SizedNumber();
  partition.disk = fields.SizedNumber();
  if ((record.flags & kPartitionIndexed) != 0) partition.column = fields.SizedNumber();
  return fields.Whole();
}

// The GUID of form 3 is a text, that of form 4 sixteen bytes.
bool ReadDisk3(const LdmRecord& record, LdmDisk& disk) {
  Reader fields(record);
  ReadObject(fields, record, disk);
  disk.guid = SmallLetters(fields.SizedText());
  disk.device = fields.SizedText();
  return fields.Whole();
}
bool ReadDisk4(const LdmRecord& record, LdmDisk& disk) {
  Reader fields(record);
  ReadObject(fields, record, disk);
  disk.guid = fields.Guid();
  return fields.Whole();
}
bool ReadGroup3(const LdmRecord& record, LdmGroup& group) {
  Reader fields(record);
  ReadObject(fields, record, group);
  group.guid = SmallLetters(fields.SizedText());
  return fields.Whole();
}
bool ReadGroup4(const LdmRecord& record, LdmGroup& group) {
  Reader fields(record);
  ReadObject(fields, record, group);
  group.guid = fields.Guid();
  return fields.Whole();
}

// Reads one object and puts it with its like; created: the count of those that are not in force yet.
template <typename Object>
void Take(const LdmRecord& record, bool (*read)(const LdmRecord&, Object&), std::vector<Object>& objects,
          u64& created, ManyChecks& damaged) {
  Object object;
  if (!read(record, object)) {
    damaged.Add(Verdict::kBad, record.sector,
                "object " + std::to_string(object.id) + ": fields beyond its data",
                "fields in " + std::to_string(record.dataLength) + " bytes");
  }
  if (record.status == kCreated) {
    ++created;
  } else {
    objects.push_back(std::move(object));
  }
}

}  // namespace

void TakeLdmRecord(const LdmRecord& record, LdmObjects& objects, ManyChecks& damaged) {
  LdmCounts& created = objects.created;
  u64 createdGroups = 0;
  if (record.status == kAboutToBeDeleted) ++objects.aboutToBeDeleted;
  switch (record.type) {
    case 0x51:
      return Take(record, ReadVolume, objects.volumes, created.volumes, damaged);
    case 0x32:
      return Take(record, ReadComponent, objects.components, created.components, damaged);
    case 0x33:
      return Take(record, ReadPartition, objects.partitions, created.partitions, damaged);
    case 0x34:
      return Take(record, ReadDisk3, objects.disks, created.disks, damaged);
    case 0x44:
      return Take(record, ReadDisk4, objects.disks, created.disks, damaged);
    case 0x35:
      return Take(record, ReadGroup3, objects.groups, createdGroups, damaged);
    case 0x45:
      return Take(record, ReadGroup4, objects.groups, createdGroups, damaged);
    default:
      ++objects.unknown[record.type];
  }
}

}  // namespace trovisk
