// What the GPT header tells the decoder of the partition entries. ResetGptState puts it back.

#ifndef TROVISK_GPT_GPT_STATE_H
#define TROVISK_GPT_GPT_STATE_H

#include "frame/bytes.h"

namespace trovisk {

// The last sector of the partition entry array of the header decoded most recently, primary or backup;
// 0 before the first.
extern u64 LastGptEntrySector;

}  // namespace trovisk

#endif
