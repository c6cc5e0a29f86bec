// Text in HTML.

#ifndef TROVISK_MAP_PAGE_TEXT_H
#define TROVISK_MAP_PAGE_TEXT_H

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

}  // namespace trovisk

#endif
