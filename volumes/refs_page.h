// What the metadata pages of a ReFS volume have in common: the page header and the reference to a page.

#ifndef TROVISK_VOLUMES_REFS_PAGE_H
#define TROVISK_VOLUMES_REFS_PAGE_H

#include <string_view>

#include "frame/bytes.h"

namespace trovisk {

inline constexpr std::size_t kReFsPageHeaderSize = 0x50;

// The lines of a page header. lcnPrefix: what stands in front of the cluster numbers' digits.
void PrintReFsPageHeader(FixedBytes<kReFsPageHeaderSize> header, std::string_view lcnPrefix);

// The self-descriptor, a page's reference to itself: its bytes and, where it is long enough, its fields.
// page: what was read of the page; offset and length: as the page states them. A length that is negative as
// a signed number gives no bytes, but the fields all the same.
void PrintSelfDescriptor(Bytes page, u32 offset, u32 length);

// The fields of a page reference: its cluster numbers and checksum. reference: from its first byte to the end
// of what was read; fields beyond it are zero, checksum bytes beyond it are left out.
void PrintPageReference(Bytes reference);

}  // namespace trovisk

#endif
