// The index over the pages of a call: a table with a row a recording, and all tracks. Pure; one thread.
#pragma once

#include <string>
#include <vector>

#include "tools/echotool/report_output.h"

namespace tw::echotool {

// Of pages in the folder (ending in its separator, or empty) and those below, in their order.
[[nodiscard]] std::string ReportIndex(const std::wstring& folder,
                                      const std::vector<const ReportPage*>& pages);

}  // namespace tw::echotool
