#include "tools/echotool/xyz_options.h"

#include <algorithm>
#include <iterator>

#include "base/text_scan.h"

namespace tw::echotool {
namespace {

constexpr std::string_view kColumns[] = {"longitude", "latitude", "depth",       "time",   "ping",
                                         "channel",   "altitude", "temperature", "quality"};
static_assert(std::size(kColumns) == static_cast<size_t>(Column::quality) + 1);

constexpr uint32_t kMostEvery = 1'000'000;
constexpr uint32_t kMostMedian = 999;

// The whole word as a number within the bounds.
bool TakeNumber(std::string_view text, double low, double high, double& number) {
  double told = 0;
  if (!ScanDouble(text, told) || !text.empty() || !(told >= low && told <= high)) return false;
  number = told;
  return true;
}

bool TakeCount(std::string_view text, uint32_t high, uint32_t& count) {
  uint32_t told = 0;
  if (!ScanUint(text, told) || !text.empty() || told < 1 || told > high) return false;
  count = told;
  return true;
}

struct Row {
  std::string_view option;
  const char* wanted;
  bool (*take)(std::string_view value, XyzOptions& options);
};

constexpr Row kRows[] = {
    {"--columns",
     "columns with commas between: longitude, latitude, depth, time, ping, channel, altitude, temperature, "
     "quality",
     [](std::string_view value, XyzOptions& options) { return ParseColumns(value, options.columns); }},
    {"--draught", "metres from -100 to 100",
     [](std::string_view value, XyzOptions& options) {
       return TakeNumber(value, -100, 100, options.draught_m);
     }},
    {"--tide", "the name of a file",
     [](std::string_view value, XyzOptions& options) {
       options.tide = value;
       return !value.empty();
     }},
    {"--sound-speed", "metres a second from 1000 to 2000",
     [](std::string_view value, XyzOptions& options) {
       return TakeNumber(value, 1000, 2000, options.soundSpeed_mps);
     }},
    {"--every", "a number from 1 to 1000000",
     [](std::string_view value, XyzOptions& options) { return TakeCount(value, kMostEvery, options.every); }},
    {"--median", "an odd number from 1 to 999",
     [](std::string_view value, XyzOptions& options) {
       return TakeCount(value, kMostMedian, options.median) && options.median % 2 == 1;
     }},
};

}  // namespace

bool ParseColumns(std::string_view text, std::vector<Column>& columns) {
  columns.clear();
  for (bool more = true; more;) {
    const size_t comma = text.find(',');
    more = comma != text.npos;
    const auto* const row = std::find(std::begin(kColumns), std::end(kColumns), text.substr(0, comma));
    if (row == std::end(kColumns)) return false;
    columns.push_back(static_cast<Column>(row - kColumns));
    if (more) text.remove_prefix(comma + 1);
  }
  return columns.size() <= std::size(kColumns);
}

bool ParseXyzOption(std::string_view option, std::string_view value, XyzOptions& options,
                    std::string& error) {
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [&](const Row& each) { return each.option == option; });
  if (row == std::end(kRows)) return false;
  if (row->take(value, options)) return true;
  error = std::string(option) + " needs " + row->wanted;
  return false;
}

}  // namespace tw::echotool
