// Reads the JSON of a map that somebody else may have written: item by item, so that memory stays small, and
// within limits.

#ifndef TROVISK_MAP_DOCUMENT_READER_H
#define TROVISK_MAP_DOCUMENT_READER_H

#include <functional>
#include <istream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace trovisk {

using DocumentJson = nlohmann::json;

// What is said of a document that is sound and needs more memory than there should be.
inline constexpr std::string_view kTooMuch = "is too large to be compared";

// Calls back for each object that is an item of a list of the document's own members, with the member's name,
// and does not keep it; false ends the reading, for want of memory. The rest of the document becomes root,
// with at most 8 MiB of texts. The texts of structures are left out. Gives what is wrong with the document,
// in words that go on behind the file's name; empty: nothing.
std::string ReadDocument(std::istream& text,
                         const std::function<bool(const std::string& list, const DocumentJson& item)>& take,
                         DocumentJson& root);

}  // namespace trovisk

#endif
