#include "gpt/gpt_state.h"

#include "frame/decoders.h"

namespace trovisk {

u64 LastGptEntrySector = 0;

void ResetGptState() {
  LastGptEntrySector = 0;
}

}  // namespace trovisk
