// The command line of echotool.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/echotool/selection.h"
#include "tools/echotool/xyz_options.h"

namespace tw::echotool {

enum class Task : uint8_t {
  info,
  segy,
  text,
  csv,
  kml,
  netcdf,
  gpx,
  geojson,
  xyz,
  nmea,
  check,
  repair,
  cut,
  join,
  png,
  report
};
enum class InfoForm : uint8_t { lines, json, csv };

inline constexpr uint32_t kMostJobs = 64;
inline constexpr uint32_t kMostPictureColumns = 4'000;  // of a picture whose width is not asked for

// Of the bare echogram.
struct PictureOptions {
  uint32_t width = 0;  // 0: a column a ping, or one for 2, 4, 8 … of them
  uint32_t height = 600;
  double from_m = 0;
  double to_m = 0;  // 0: as deep as the echoes go
  uint32_t channel = 1;
  bool any = false;  // one of these has been asked for
};

struct Options {
  Task task = Task::info;
  std::vector<std::string> files;
  std::string folder;     // of the outputs; empty: each beside its input
  bool pad = false;       // SEG-Y: all traces as long as the longest
  bool numbered = false;  // SEG-Y: inline and crossline numbers
  InfoForm form = InfoForm::lines;
  PictureOptions picture;
  Selection selection;     // cut: which pings
  bool force = false;      // an output may replace a recording
  bool noClobber = false;  // no output replaces anything
  bool recursive = false;  // folders are searched
  uint32_t jobs = 0;       // recordings side by side; 0: one a processor
  bool quiet = false;      // neither notes nor progress
  bool dryRun = false;     // nothing is written, but told what would be
  XyzOptions xyz;
  bool xyzAsked = false;  // one of them was given
  bool help = false;
  bool version = false;
};

// Reads the arguments (the program's own name left out). False with a sentence in `error` when they make no
// sense.
[[nodiscard]] bool ParseOptions(std::span<const std::string> arguments, Options& options, std::string& error);

[[nodiscard]] std::string_view HelpText();
[[nodiscard]] std::string_view VersionText();

}  // namespace tw::echotool
