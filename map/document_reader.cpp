#include "map/document_reader.h"

#include <vector>

#include "frame/bytes.h"
#include "frame/report/report.h"

namespace trovisk {
namespace {

constexpr std::size_t kDeepest = 16;           // twice what a map needs
constexpr u64 kMostValues = u64{1} << 23;      // of the whole document
constexpr u64 kMostItems = u64{1} << 17;       // of its lists
constexpr u64 kMostKept = u64{1} << 18;        // values at the same time
constexpr u64 kMostKeptBytes = u64{1} << 23;   // of their texts and names
constexpr std::string_view kTextKey = "text";  // of structures

// What the parser calls, value by value. Each function gives whether it should go on.
class Reader {
 public:
  using Take = std::function<bool(const std::string& list, const DocumentJson& item)>;

  Reader(const std::istream& text, const Take& take, DocumentJson& root)
      : text_(text), take_(take), root_(root) {}

  const std::string& Complaint() const { return complaint_; }

  // NOLINTBEGIN(readability-identifier-naming): the parser's names
  bool null() { return Add(nullptr); }
  bool boolean(bool value) { return Add(value); }
  bool number_integer(DocumentJson::number_integer_t value) { return Add(value); }
  bool number_unsigned(DocumentJson::number_unsigned_t value) { return Add(value); }
  bool number_float(DocumentJson::number_float_t value, const std::string& /*digits*/) { return Add(value); }
  bool string(std::string& value) {
    const bool needless = open_.size() == 3 && key_ == kTextKey;
    if (needless) value.clear();
    keptBytes_ += value.size();
    return Add(std::move(value));
  }
  bool binary(DocumentJson::binary_t& /*value*/) { return false; }
  bool start_object(std::size_t /*size*/) { return Open(DocumentJson::object()); }
  bool start_array(std::size_t /*size*/) { return Open(DocumentJson::array()); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  bool key(std::string& value) {
    key_ = std::move(value);
    keptBytes_ += key_.size();
    if (open_.size() == 1) list_ = key_;
    return true;
  }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const DocumentJson::exception& /*why*/) {
    complaint_ = text_.eof() ? "is cut off: the document has no end"
                             : "is damaged: no JSON at byte " + std::to_string(position);
    return false;
  }
  // NOLINTEND(readability-identifier-naming)

 private:
  DocumentJson* Put(DocumentJson value) {
    EndIfInterrupted();
    if (++values_ > kMostValues || ++kept_ > kMostKept || items_ > kMostItems) {
      complaint_ = "is too large: no map holds so many values";
      return nullptr;
    }
    if (keptBytes_ > kMostKeptBytes) {
      complaint_ = kTooMuch;
      return nullptr;
    }
    DocumentJson* place = &root_;
    if (!open_.empty()) {
      DocumentJson& around = *open_.back();
      if (around.is_array()) around.emplace_back();
      place = around.is_array() ? &around.back() : &around[key_];
    }
    *place = std::move(value);
    return place;
  }
  bool Add(DocumentJson value) { return Put(std::move(value)) != nullptr; }
  bool Open(DocumentJson value) {
    if (open_.size() == 2) {
      keptBeforeItem_ = kept_;
      keptBytesBeforeItem_ = keptBytes_;
    }
    if (open_.size() == kDeepest) {
      complaint_ = "is no map: its values are nested too deeply";
      return false;
    }
    DocumentJson* place = Put(std::move(value));
    if (place != nullptr) open_.push_back(place);
    return place != nullptr;
  }
  bool Close() {
    const DocumentJson& closed = *open_.back();
    open_.pop_back();
    if (open_.size() == 2 && open_[1]->is_array() && closed.is_object()) {
      const bool room = take_(list_, closed);
      if (!room) complaint_ = kTooMuch;
      open_[1]->erase(open_[1]->size() - 1);
      kept_ = keptBeforeItem_;
      keptBytes_ = keptBytesBeforeItem_;
      ++items_;
      return room;
    }
    return true;
  }

  const std::istream& text_;
  const Take& take_;
  DocumentJson& root_;
  std::vector<DocumentJson*> open_;  // from the root on
  std::string key_;                  // of the next value
  std::string list_;                 // the root's member
  u64 values_ = 0;
  u64 items_ = 0;
  u64 kept_ = 0;  // values that are in memory now
  u64 keptBytes_ = 0;
  u64 keptBeforeItem_ = 0;  // those of them that do not belong to the item that is read
  u64 keptBytesBeforeItem_ = 0;
  std::string complaint_;
};

}  // namespace

std::string ReadDocument(std::istream& text,
                         const std::function<bool(const std::string& list, const DocumentJson& item)>& take,
                         DocumentJson& root) {
  Reader reader(text, take, root);
  if (DocumentJson::sax_parse(text, &reader)) return {};
  return reader.Complaint().empty() ? "is no document" : reader.Complaint();
}

}  // namespace trovisk
