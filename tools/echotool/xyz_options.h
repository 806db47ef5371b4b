// What soundings are told how, as the command line says it. Pure; any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tw::echotool {

enum class Column : uint8_t {
  longitude,
  latitude,
  depth,
  time,
  ping,
  channel,
  altitude,
  temperature,
  quality
};

// "time,longitude,latitude,depth"; false when one of them is unknown, or there is none.
[[nodiscard]] bool ParseColumns(std::string_view text, std::vector<Column>& columns);

struct XyzOptions {
  std::vector<Column> columns = {Column::longitude, Column::latitude, Column::depth};
  double draught_m = 0;       // of the transducer, added
  std::string tide;           // name of a file; its heights are subtracted
  double soundSpeed_mps = 0;  // instead of the recorded one; 0: as recorded
  uint32_t every = 1;         // so many soundings give one line
  uint32_t median = 1;        // odd: of so many depths around each
};

// Reads one of the options, its leading dashes included: the word behind it. False, and `error` says why,
// when the word makes no sense or the option is none of these; the error is empty then.
[[nodiscard]] bool ParseXyzOption(std::string_view option, std::string_view value, XyzOptions& options,
                                  std::string& error);

}  // namespace tw::echotool
