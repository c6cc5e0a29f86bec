// The survey: walks a disk with the decoders of the report and never stops early.

#ifndef TROVISK_MAP_SURVEY_H
#define TROVISK_MAP_SURVEY_H

#include <functional>

#include "map/model.h"

namespace trovisk {

// Opens the disk and surveys it; none, after the error lines of the report, where it cannot be opened.
// The disk stays open for VisitStructures, until CloseSurvey or the next survey. argument: as the command
// line has it.
std::optional<DiskMap> SurveyDisk(const char* argument);

// Calls back for each structure of the surveyed disk, by sector, one at a time: nothing is kept. Gives the
// sector behind which structures are left out, as there are too many; none where all were shown.
std::optional<u64> VisitStructures(const std::function<void(const Structure&)>& visit);

void CloseSurvey();

}  // namespace trovisk

#endif
