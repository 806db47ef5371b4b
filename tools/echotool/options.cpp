#include "tools/echotool/options.h"

#include <algorithm>
#include <iterator>

namespace tw::echotool {
namespace {

struct TaskName {
  std::string_view name;
  Task task;
};

constexpr TaskName kTasks[] = {
    {"info", Task::info}, {"segy", Task::segy},     {"text", Task::text}, {"csv", Task::csv},
    {"kml", Task::kml},   {"netcdf", Task::netcdf}, {"gpx", Task::gpx},   {"geojson", Task::geojson},
    {"xyz", Task::xyz},   {"nmea", Task::nmea},
};

constexpr std::string_view kHelp =
    "echotool: work on recordings of Tidewriter Echosounder Control Software\n"
    "\n"
    "  echotool info FILE...            what stands in each recording\n"
    "  echotool segy FILE... [-o DIR]   SEG-Y, one trace a ping (NAME.sgy)\n"
    "  echotool text FILE... [-o DIR]   binary recordings as text (NAME_txt.log)\n"
    "  echotool csv  FILE... [-o DIR]   one row a ping, for spreadsheets and GIS (NAME.csv)\n"
    "  echotool kml  FILE... [-o DIR]   the track (NAME.kml)\n"
    "  echotool gpx  FILE... [-o DIR]   the track with times and depths (NAME.gpx)\n"
    "  echotool geojson FILE... [-o DIR] the same for GIS (NAME.geojson)\n"
    "  echotool xyz  FILE... [-o DIR]   soundings, a line each (NAME.xyz)\n"
    "  echotool nmea FILE... [-o DIR]   depths and positions as NMEA 0183, to be replayed (NAME.nmea)\n"
    "  echotool netcdf FILE... [-o DIR] NetCDF for science (NAME.nc; of two channels NAME_ch1.nc and "
    "_ch2.nc)\n"
    "\n"
    "  -o DIR        where outputs are written; without it beside each recording\n"
    "  --pad         segy: every trace as long as the longest, zeros behind, for readers that want it so\n"
    "  --inline      segy: inline and crossline numbers, for readers that want a geometry\n"
    "  --columns LIST  xyz: other columns than longitude,latitude,depth; also time, ping, channel, "
    "altitude,\n"
    "                temperature, quality\n"
    "  --draught M   xyz: how deep the transducer is, added to its altitude\n"
    "  --tide FILE   xyz: heights of the water to be subtracted, a UTC and metres a line\n"
    "  --sound-speed V  xyz: altitudes at this speed of sound (m/s) instead of the recorded one\n"
    "  --median N    xyz: the median of so many depths around each\n"
    "  --every N     xyz: one sounding of so many\n"
    "  --no-clobber  no output replaces an older file\n"
    "  --force       an output may replace a file that is a recording itself\n"
    "  --version     which echotool this is\n"
    "  --help        this text\n"
    "\n"
    "An output appears whole or not at all, and never replaces a recording of the same call. What was\n"
    "replaced, left out or skipped as damaged is told on standard error. Exit code: 0 all files done,\n"
    "1 at least one failed, 2 the command line makes no sense, 130 interrupted.\n";

constexpr std::string_view kVersion = "echotool " TW_VERSION "\n";

bool TakeOption(const std::string& word, std::span<const std::string>& rest, Options& options,
                std::string& error) {
  if (word == "--help" || word == "-h") {
    options.help = true;
  } else if (word == "--version") {
    options.version = true;
  } else if (word == "--force") {
    options.force = true;
  } else if (word == "--no-clobber") {
    options.noClobber = true;
  } else if (word == "--pad") {
    options.pad = true;
  } else if (word == "--inline") {
    options.numbered = true;
  } else if (word == "-o") {
    if (rest.empty() || rest.front().empty()) {
      error = "-o needs a folder";
      return false;
    }
    options.folder = rest.front();
    rest = rest.subspan(1);
  } else if (ParseXyzOption(word, rest.empty() ? std::string_view() : rest.front(), options.xyz, error)) {
    options.xyzAsked = true;
    rest = rest.subspan(1);
  } else {
    if (error.empty()) error = "unknown option " + word;
    return false;
  }
  return true;
}

}  // namespace

bool ParseOptions(std::span<const std::string> arguments, Options& options, std::string& error) {
  options = Options{};
  bool hasTask = false;
  bool onlyFiles = false;
  for (auto rest = arguments; !rest.empty();) {
    const std::string& word = rest.front();
    rest = rest.subspan(1);
    if (word == "--" && !onlyFiles) {
      onlyFiles = true;
    } else if (!onlyFiles && word.size() > 1 && word[0] == '-') {
      if (!TakeOption(word, rest, options, error)) return false;
    } else if (!onlyFiles && word == "-") {
      error = "standard input cannot be read, a recording is a file (./- if one is named so)";
      return false;
    } else if (!hasTask) {
      const auto* const row = std::find_if(std::begin(kTasks), std::end(kTasks),
                                           [&](const TaskName& each) { return each.name == word; });
      if (row == std::end(kTasks)) {
        error = "unknown task " + word;
        return false;
      }
      options.task = row->task;
      hasTask = true;
    } else {
      options.files.push_back(word);
    }
  }
  if (options.help || options.version) return true;
  if (!hasTask) {
    error = "no task given";
  } else if (options.files.empty()) {
    error = "no recording given";
  } else if ((options.pad || options.numbered) && options.task != Task::segy) {
    error = "--pad and --inline belong to segy";
  } else if (options.xyzAsked && options.task != Task::xyz) {
    error = "--columns, --draught, --tide, --sound-speed, --every and --median belong to xyz";
  } else if (!options.folder.empty() && options.task == Task::info) {
    error = "info writes no files";
  } else if (options.force && options.noClobber) {
    error = "--force and --no-clobber exclude each other";
  }
  return error.empty();
}

std::string_view HelpText() {
  return kHelp;
}

std::string_view VersionText() {
  return kVersion;
}

}  // namespace tw::echotool
