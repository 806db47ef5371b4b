// Any bytes as a record file: what echotool hands on of it to other programs, NetCDF of each channel, tracks,
// soundings, NMEA; and as a file of tides.
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>

#include "platform/file.h"
#include "platform/virtual/file_sink.h"
#include "platform/virtual/virtual_clock.h"
#include "playback/ping_source.h"
#include "tools/echotool/map_output.h"
#include "tools/echotool/netcdf_output.h"
#include "tools/echotool/nmea_output.h"
#include "tools/echotool/xyz_output.h"

namespace tw::echotool {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// The outputs' place, which takes everything and keeps nothing.
class Nowhere final : public FileSink {
 public:
  void Written(std::wstring_view, uint64_t, std::span<const uint8_t>) override {}
};

Handle MakeFile(const char* ending) {
  const std::string name = "/dev/shm/handed_on_fuzz_" + std::to_string(getpid()) + ending;
  const Handle file = CreateFileAnew(std::wstring(name.begin(), name.end()).c_str());
  unlink(name.c_str());
  Require(file != Handle::invalid);
  return file;
}

void Run(PingSource& recording, PingWriter& writer) {
  Require(recording.Rewind() && writer.Begin());
  for (RecordedPing ping{}; recording.Next(ping);) Require(writer.Append(ping));
  Require(writer.End());
}

// The file is as long as its header says.
void RunNetcdf(PingSource& recording, Handle file) {
  static const std::atomic<bool> interrupted = false;
  RecordingSurvey survey;
  Require(recording.Rewind());
  for (RecordedPing ping{}; recording.Next(ping);) survey.Add(ping);
  for (int32_t channel = 0; channel < 2; ++channel) {
    OutputFile output(file);
    NetcdfWriter writer(output, {recording, survey, "name", channel}, {L"", file, interrupted});
    std::string error;
    Require(writer.Prepare(error));
    Run(recording, writer);
    Require(writer.Emptiness().empty() && output.Size() == writer.Size());
  }
}

void RunOthers(PingSource& recording, Handle file, std::string_view text) {
  OutputFile output(file);
  NmeaWriter nmea(output);
  Run(recording, nmea);
  GpxWriter gpx(output, text.substr(0, 64), {});
  Run(recording, gpx);
  GeoJsonWriter geoJson(output, text.substr(0, 64), {});
  Run(recording, geoJson);
  KmlWriter kml(output, text.substr(0, 64));
  Run(recording, kml);
  XyzOptions options;
  options.median = 5;
  for (const Column column : {Column::time, Column::temperature, Column::quality})
    options.columns.push_back(column);
  XyzWriter xyz(output, options, 1.0, Tide());
  Run(recording, xyz);
}

struct Files {
  Files() {
    StartVirtualClock(1'700'000'000'000);  // a file that tells nothing is looked at again after a while
    input = MakeFile("");
    static Nowhere nowhere;
    SinkFiles(L"/dev/shm/handed_on_fuzz_", &nowhere);
    output = MakeFile(".out");
  }
  Handle input;
  Handle output;
};

void HandOn(std::span<const uint8_t> bytes) {
  static const Files files;
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  std::string error;
  Require(Tide().Parse(text, error) == error.empty());
  uint32_t written = 0;
  Require(TruncateFile(files.input, 0) &&
          WriteFileBytes(files.input, bytes.data(), static_cast<uint32_t>(bytes.size()), written));
  RecordingFault fault{};
  const auto recording = MakeRecording(files.input, CandidatesOf(files.input, kGrowingRetries), fault);
  if (recording == nullptr) return;
  RunNetcdf(*recording, files.output);
  RunOthers(*recording, files.output, text);
}

}  // namespace
}  // namespace tw::echotool

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  tw::echotool::HandOn({bytes, size});
  return 0;
}
