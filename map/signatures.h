#ifndef TROVISK_MAP_SIGNATURES_H
#define TROVISK_MAP_SIGNATURES_H
#include "frame/examination.h"
namespace trovisk {
struct ForeignContent {
  std::string type;
  std::string label;
  u64 sectors = 0;
  u64 sector = 0;
};
inline std::optional<ForeignContent> NameContent(const VolumePlace&) {
  return std::nullopt;
}
}  // namespace trovisk
#endif
