// Bytes as text, as RFC 4648 lays it down.

#ifndef TROVISK_MAP_BASE64_H
#define TROVISK_MAP_BASE64_H

#include <string>
#include <string_view>
#include <vector>

#include "frame/bytes.h"

namespace trovisk {

std::string Base64(Bytes bytes);

// Ends in front of the first character that is none of the alphabet.
std::vector<u8> FromBase64(std::string_view text);

}  // namespace trovisk

#endif
