#include "map/command.h"

#include "frame/report/report.h"
#include "map/survey.h"
#include "map/text_map.h"

namespace trovisk {

int RunMap(int argc, char** argv) {
  if (argc < 2) return 1;
  const auto map = SurveyDisk(argv[1]);
  if (!map) return 1;
  report << MapAsText(*map, {});
  report.Flush();
  return map->ExitStatus();
}

}  // namespace trovisk
