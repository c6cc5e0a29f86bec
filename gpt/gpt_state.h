// What the GPT header tells the decoder of the partition entries.

#ifndef TROVISK_GPT_GPT_STATE_H
#define TROVISK_GPT_GPT_STATE_H

#include "frame/bytes.h"

namespace trovisk {

// The last sector of the partition entry array of the header decoded most recently, primary or backup;
// 0 before the first.
inline u64 LastGptEntrySector = 0;

}  // namespace trovisk

#endif
