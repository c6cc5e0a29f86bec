// SHA-256 (FIPS 180-4), by which known boot code is recognised.

#ifndef TROVISK_REFIMAGES_SHA256_H
#define TROVISK_REFIMAGES_SHA256_H

#include <array>

#include "frame/bytes.h"

namespace trovisk {

using Sha256Digest = std::array<u8, 32>;

Sha256Digest Sha256(Bytes message);

}  // namespace trovisk

#endif
