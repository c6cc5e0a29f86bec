// Reads the JSON of a map that somebody else may have written: item by item, so that memory stays small, and
// within limits.

#ifndef TROVISK_MAP_DOCUMENT_READER_H
#define TROVISK_MAP_DOCUMENT_READER_H

#include <functional>
#include <istream>
#include <nlohmann/json.hpp>
#include <string>

namespace trovisk {

using DocumentJson = nlohmann::json;

// Calls back for each object that is an item of a list of the document's own members, with the member's name,
// and does not keep it. The rest of the document becomes root. The texts of structures are left out. Gives
// what is wrong with the document, in words that go on behind the file's name; empty: nothing.
std::string ReadDocument(std::istream& text,
                         const std::function<void(const std::string& list, const DocumentJson& item)>& take,
                         DocumentJson& root);

}  // namespace trovisk

#endif
