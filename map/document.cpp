#include "map/document.h"

#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <sstream>

#include "frame/examination.h"
#include "map/base64.h"
#include "map/document_reader.h"
#include "map/json_map.h"

namespace trovisk {
namespace {

constexpr u64 kMostBytes = u64{24} << 20;  // of one document; two are compared

// Whether there is room for more of them.
bool Keep(Document& document, DocumentItems& items, DocumentItem item) {
  document.bytes += sizeof item + item.values.Bytes() + item.contents.size();
  items.push_back(std::move(item));
  return document.bytes <= kMostBytes;
}

// A word of the document as text; a list's joined.
std::string TextOf(const DocumentJson& value) {
  if (value.is_null()) return {};
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return value.dump(-1, ' ', false, DocumentJson::error_handler_t::replace);
  std::string text;
  for (const DocumentJson& each : value) {
    if (!text.empty()) text.append(",");
    text.append(TextOf(each));
  }
  return text;
}

std::string MemberText(const DocumentJson& object, std::string_view key) {
  const auto found = object.find(key);
  return found == object.end() ? std::string() : TextOf(*found);
}

std::optional<u64> NumberIn(std::string_view text) {
  u64 number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

DocumentItem ItemOf(const DocumentJson& object, std::span<const std::string_view> labels) {
  DocumentItem item;
  for (const std::string_view label : labels)
    item.values.Add(MemberText(object, label));
  return item;
}

bool AddExtent(Document& document, const DocumentJson& object) {
  DocumentItem item = ItemOf(object, kExtentLabels);
  if (item.values[kExtentKind] == "gap") return true;
  const auto first = NumberIn(item.values[kExtentFirst]);
  const auto last = NumberIn(item.values[kExtentLast]);
  const bool sized = first && last && *first <= *last && *last - *first != ~u64{0};
  item.values.Add(sized ? std::to_string(*last - *first + 1) : std::string());
  return Keep(document, document.extents, std::move(item));
}

bool AddStructure(Document& document, const DocumentJson& object) {
  DocumentItem item = ItemOf(object, kStructureLabels);
  ItemContents contents{.bytes = FromBase64(MemberText(object, "bytes"))};
  const auto sum = crc32(0, contents.bytes.data(), static_cast<uInt>(contents.bytes.size()));
  item.values.Add(contents.bytes.empty() ? std::string() : Hex32(sum));
  if (const auto fields = object.find("fields"); fields != object.end() && fields->is_array()) {
    for (const DocumentJson& field : *fields) {
      if (!field.is_object()) continue;
      contents.fields.push_back({MemberText(field, "label"), MemberText(field, "value"),
                                 NumberIn(MemberText(field, "offset")),
                                 NumberIn(MemberText(field, "length")).value_or(0)});
    }
  }
  item.contents = Pack(contents);
  return Keep(document, document.structures, std::move(item));
}

// Objects in lists are called by their names where they have one, so that one more in front of them makes no
// difference.
std::string NameOf(const DocumentJson& object, std::size_t index) {
  for (const std::string_view key : {"name", "id", "first"}) {
    if (std::string name = MemberText(object, key); !name.empty()) return name;
  }
  return std::string("#").append(std::to_string(index + 1));
}

// An item for the object and for each that it holds, as long as there is room: the name of what holds others
// is in the way to each of them.
void AddObject(Document& document, const DocumentJson& object, const std::string& path) {
  DocumentItems& items = document.others;
  const std::size_t place = items.size();
  if (!Keep(document, items, {{path}})) return;
  ItemContents contents;
  for (const auto& [key, value] : object.items()) {
    if (value.is_object()) {
      std::string way = path;
      AddObject(document, value, way.append(".").append(key));
    } else if (value.is_array() && !value.empty() && value.front().is_object()) {
      for (std::size_t i = 0; i < value.size() && document.bytes <= kMostBytes; ++i) {
        if (!value[i].is_object()) continue;
        std::string way = path;
        AddObject(document, value[i],
                  way.append(".").append(key).append("[").append(NameOf(value[i], i)).append("]"));
      }
    } else if (value.is_array()) {
      for (const DocumentJson& each : value)
        contents.fields.push_back({key, TextOf(each)});
    } else {
      contents.fields.push_back({key, TextOf(value)});
    }
  }
  items[place].contents = Pack(contents);
  document.bytes += items[place].contents.size();
}

void AddOthers(Document& document, DocumentJson& root) {
  if (const auto disk = root.find("disk"); disk != root.end() && disk->is_object()) {
    disk->erase("path");  // two disks are never at the same place
    AddObject(document, *disk, "disk");
  }
  for (const std::string key : {"dynamic_disk", "storage_spaces"}) {
    if (const auto part = root.find(key); part != root.end() && part->is_object())
      AddObject(document, *part, key);
  }
  ItemContents cut;
  if (const auto sentences = root.find("cut"); sentences != root.end() && sentences->is_array()) {
    for (const DocumentJson& sentence : *sentences)
      cut.fields.push_back({"cut", TextOf(sentence)});
  }
  if (!cut.fields.empty()) document.cut = cut.fields.front().value;
  Keep(document, document.others, {{"cut"}, Pack(cut)});
}

}  // namespace

std::optional<Document> ParseDocument(std::istream& text, std::string& complaint) {
  Document document;
  DocumentJson root;
  const auto take = [&](const std::string& list, const DocumentJson& item) {
    if (list == "extents") return AddExtent(document, item);
    if (list == "structures") return AddStructure(document, item);
    if (list == "checks") return Keep(document, document.checks, ItemOf(item, kCheckLabels));
    return true;
  };
  complaint = ReadDocument(text, take, root);
  if (!complaint.empty()) return std::nullopt;
  const std::string schema = root.is_object() ? MemberText(root, "schema") : std::string();
  if (schema != kMapSchema) {
    complaint = "is a document of another kind: its schema is not \"" + std::string(kMapSchema) + "\"";
    return std::nullopt;
  }
  AddOthers(document, root);
  if (document.bytes <= kMostBytes) return document;
  complaint = kTooMuch;
  return std::nullopt;
}

std::optional<Document> DocumentOf(const DiskMap& map, const StructureVisitor& structures,
                                   std::string& complaint) {
  // One structure at a time: all of them as text are more than their items.
  Document shown;
  const auto visit = [&](const std::function<void(const Structure&)>& /*visit*/) {
    return structures([&](const Structure& structure) {
      if (shown.bytes > kMostBytes) return;
      Structure shortened = structure;
      shortened.text.clear();
      AddStructure(shown, DocumentJson::parse(StructureAsText(shortened)));
    });
  };
  std::stringstream text;
  WriteMapAsJson(map, visit, [&](std::string_view piece) { text << piece; });
  std::optional<Document> document = ParseDocument(text, complaint);
  if (!document) return document;
  document->bytes += shown.bytes;
  document->structures = std::move(shown.structures);
  if (document->bytes <= kMostBytes) return document;
  complaint = kTooMuch;
  return std::nullopt;
}

}  // namespace trovisk
