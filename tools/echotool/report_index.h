// The index over the pages of a call: a table with a row a recording, and all tracks. Pure; one thread.
#pragma once

#include <string>
#include <vector>

#include "tools/echotool/report_output.h"

namespace tw::echotool {

// Of pages that stand in one folder, in their order.
[[nodiscard]] std::string ReportIndex(const std::vector<const ReportPage*>& pages);

}  // namespace tw::echotool
