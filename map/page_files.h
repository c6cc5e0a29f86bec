// The files of map/page, as the build has put them into the program.

#ifndef TROVISK_MAP_PAGE_FILES_H
#define TROVISK_MAP_PAGE_FILES_H

#include <string_view>

namespace trovisk {

extern const std::string_view kPageTemplate;  // page.html: what stands in {{braces}} is put in
extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;  // all modules in one

}  // namespace trovisk

#endif
