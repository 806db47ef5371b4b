#include "tools/echotool/options.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>

namespace tw::echotool {
namespace {

struct TaskName {
  std::string_view name;
  Task task;
};

constexpr TaskName kTasks[] = {
    {"info", Task::info}, {"segy", Task::segy},     {"text", Task::text},   {"csv", Task::csv},
    {"kml", Task::kml},   {"netcdf", Task::netcdf}, {"gpx", Task::gpx},     {"geojson", Task::geojson},
    {"xyz", Task::xyz},   {"nmea", Task::nmea},     {"check", Task::check}, {"repair", Task::repair},
    {"cut", Task::cut},   {"join", Task::join},     {"png", Task::png},     {"report", Task::report},
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
    "  echotool png  FILE... [-o DIR]   the echogram as a picture (NAME.png)\n"
    "  echotool report FILE... [-o DIR] a page to read each (NAME.html), and index.html over all\n"
    "  echotool check FILE...           a line for each fault of a recording, exit code 1 if there is one\n"
    "  echotool repair FILE... [-o DIR] the whole pings of a damaged recording (NAME_repaired.log)\n"
    "  echotool cut FILE... [-o DIR]    the pings chosen (NAME_cut.log), which all that is given must fit:\n"
    "      --from T --to T  from T on, before T: UTC as 2025-03-14T09:30:00, or seconds from the start\n"
    "      --pings A-B      by their numbers, both included\n"
    "      --area W,S,E,N   by position, degrees; W greater than E: across the 180th meridian\n"
    "  echotool join FILE... [-o DIR]   one recording of several of one channel, in order of time\n"
    "                                   (the first one's NAME_joined.log)\n"
    "\n"
    "  -o DIR        where outputs are written; without it beside each recording\n"
    "  -r            search folders, those below too; with -o, outputs lie below DIR as recordings in "
    "theirs\n"
    "  -j N          so many recordings side by side, up to 64; without it one a processor. Each takes its\n"
    "                memory\n"
    "  --dry-run     write nothing, tell what would be written, replaced and refused\n"
    "  --quiet       neither progress nor what was replaced, left out or skipped; errors are told\n"
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
    "  --json, --csv info: for programs; one document, or a table of one row a file\n"
    "  --width N     png: columns of the picture; without it one a ping or one for 2, 4, 8 ... pings, up to "
    "4000\n"
    "  --height N    png: rows of the picture, without it 600; width times height up to 4 million\n"
    "  --depth A-B   png: depths in metres, without it all that the echoes reach\n"
    "  --channel N   png: 1, or 2 for the low frequency of a recording of both\n"
    "  --no-clobber  no output replaces an older file\n"
    "  --force       an output may replace a file that is a recording itself\n"
    "  --version     which echotool this is\n"
    "  --help        this text\n"
    "\n"
    "An output appears whole or not at all, and never replaces a recording of the same call. What was\n"
    "replaced, left out or skipped as damaged is told on standard error. Exit code: 0 all files done,\n"
    "1 at least one failed or, of check, has a fault, 2 the command line makes no sense, 130 interrupted.\n";

constexpr std::string_view kVersion = "echotool " TW_VERSION "\n";

constexpr uint32_t kMostWidth = 8'000;
constexpr uint32_t kMostHeight = 4'000;
constexpr uint64_t kMostPixels = 4'000'000;
constexpr double kDeepest_m = 15'000.0;

bool IsWhole(const std::string& word, uint32_t most, uint32_t& value) {
  const char* const end = word.data() + word.size();
  const auto [stopped, fault] = std::from_chars(word.data(), end, value);
  return fault == std::errc{} && stopped == end && value >= 1 && value <= most;
}

bool IsDepths(const std::string& word, double& from_m, double& to_m) {
  const char* const end = word.data() + word.size();
  const auto from = std::from_chars(word.data(), end, from_m, std::chars_format::fixed);
  if (from.ec != std::errc{} || from.ptr == end || *from.ptr != '-') return false;
  const auto to = std::from_chars(from.ptr + 1, end, to_m, std::chars_format::fixed);
  return to.ec == std::errc{} && to.ptr == end && from_m >= 0 && to_m > from_m && to_m <= kDeepest_m;
}

// Those of a picture, each with a value behind it; nothing when the word is none of them.
std::optional<bool> TakePictureOption(const std::string& word, std::span<const std::string>& rest,
                                      PictureOptions& picture, std::string& error) {
  const std::string value = rest.empty() ? "" : rest.front();
  bool sound = false;
  if (word == "--width") {
    sound = IsWhole(value, kMostWidth, picture.width);
    error = "--width needs a number of columns up to " + std::to_string(kMostWidth);
  } else if (word == "--height") {
    sound = IsWhole(value, kMostHeight, picture.height);
    error = "--height needs a number of rows up to " + std::to_string(kMostHeight);
  } else if (word == "--depth") {
    sound = IsDepths(value, picture.from_m, picture.to_m);
    error = "--depth needs two depths in metres, as 0-25.5";
  } else if (word == "--channel") {
    sound = IsWhole(value, 2, picture.channel);
    error = "--channel needs 1 or 2";
  } else {
    return std::nullopt;
  }
  if (!sound) return false;
  error.clear();
  picture.any = true;
  rest = rest.subspan(1);
  return true;
}

// Those of many recordings.
bool TakeBatchOption(const std::string& word, std::span<const std::string>& rest, Options& options,
                     std::string& error) {
  if (word == "-r") {
    options.recursive = true;
  } else if (word == "--quiet") {
    options.quiet = true;
  } else if (word == "--dry-run") {
    options.dryRun = true;
  } else if (word != "-j") {
    return false;
  } else if (rest.empty() || !IsWhole(rest.front(), kMostJobs, options.jobs)) {
    error = "-j needs a number from 1 to " + std::to_string(kMostJobs);
  } else {
    rest = rest.subspan(1);
  }
  return true;
}

bool TakeOption(const std::string& word, std::span<const std::string>& rest, Options& options,
                std::string& error) {
  if (const auto taken = TakePictureOption(word, rest, options.picture, error)) return *taken;
  if (const auto taken = TakeSelectionOption(word, rest, options.selection, error)) return *taken;
  if (TakeBatchOption(word, rest, options, error)) return error.empty();
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
  } else if (word == "--json") {
    options.form = InfoForm::json;
  } else if (word == "--csv") {
    options.form = InfoForm::csv;
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
  } else if (options.form != InfoForm::lines && options.task != Task::info) {
    error = "--json and --csv belong to info";
  } else if (options.picture.any && options.task != Task::png) {
    error = "--width, --height, --depth and --channel belong to png";
  } else if (uint64_t{options.picture.width} * options.picture.height > kMostPixels) {
    error = "width times height is more than 4 million";
  } else if (options.selection.Any() != (options.task == Task::cut)) {
    error = "--from, --to, --pings and --area belong to cut, which needs one of them";
  } else if (!options.folder.empty() && options.task == Task::check) {
    error = "check writes no files";
  } else if (options.dryRun && (options.task == Task::info || options.task == Task::check)) {
    error = "--dry-run belongs to tasks that write files";
  } else if (options.task == Task::join && options.files.size() < 2 && !options.recursive) {
    error = "join needs two recordings or more";
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
