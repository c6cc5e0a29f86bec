// Text in HTML.

#ifndef TROVISK_MAP_PAGE_TEXT_H
#define TROVISK_MAP_PAGE_TEXT_H

#include <initializer_list>
#include <string>
#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

// For text and for attributes in double quotes.
std::string HtmlText(std::string_view text);

// Digits in groups of three for the eye alone: copied, they are one number.
std::string HtmlNumber(u64 number);

// <td>, with a class where one is given. content: HTML.
std::string HtmlCell(std::string_view content, std::string_view name = {});

// A link to the sector's place on the page.
std::string HtmlPlace(u64 sector);

struct HtmlColumn {
  std::string_view name;
  bool number = false;
};
std::string HtmlHead(std::initializer_list<HtmlColumn> columns);

// A list of facts; those without a value are left out. value: HTML.
struct HtmlFact {
  std::string_view label;
  std::string value;
};
std::string HtmlFacts(std::initializer_list<HtmlFact> facts);

// That so many rows or items were left out.
std::string HtmlCutLine(std::size_t left);

}  // namespace trovisk

#endif
