#include "tools/echotool/writers.h"

#include <cmath>
#include <utility>
#include <vector>

#include "playback/recording_marks.h"
#include "tools/echotool/converter_output.h"
#include "tools/echotool/file_names.h"
#include "tools/echotool/file_sum.h"
#include "tools/echotool/map_output.h"
#include "tools/echotool/nmea_output.h"
#include "tools/echotool/ping_copy.h"
#include "tools/echotool/png_output.h"
#include "tools/echotool/recording_output.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/xyz_output.h"

namespace tw::echotool {
namespace {

bool LongestTrace(const Job& job, uint32_t& longest, std::string& error) {
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr) return false;
  Summary summary;
  const bool whole = ForEachPing(job, *recording, " (measuring)", [&](const RecordedPing& ping) {
    summary.Add(ping);
    return true;
  });
  longest = summary.LongestTrace();
  if (recording->Failed()) error = FaultText(RecordingFault::unread);
  return whole && !recording->Failed();
}

// The operator's marks from the first ping's time to the second of the last one's. False when the recording
// cannot be read to find these.
bool FindMarks(const Job& job, std::vector<EventMark>& marks, std::string& error) {
  marks = ReadMarksBeside(WideName(job.file));
  RecordingSurvey survey;
  if (marks.empty()) return true;
  if (!Survey(job, survey, error)) return false;
  constexpr int64_t kSecond_ms = 1'000;
  std::erase_if(marks, [&](const EventMark& mark) {
    return !survey.first_ms || mark.time_ms < *survey.first_ms ||
           mark.time_ms >= *survey.last_ms + kSecond_ms;
  });
  return true;
}

std::unique_ptr<PingWriter> MakeMap(const Job& job, OutputFile& output, std::string& error) {
  std::vector<EventMark> marks;
  if (!FindMarks(job, marks, error)) return nullptr;
  const std::string name = ShownName(job.file);
  if (job.options.task == Task::gpx) return std::make_unique<GpxWriter>(output, name, std::move(marks));
  if (job.options.task == Task::geojson)
    return std::make_unique<GeoJsonWriter>(output, name, std::move(marks));
  return std::make_unique<KmlWriter>(output, name, std::move(marks));
}

std::unique_ptr<PingWriter> MakeXyz(const Job& job, const RecordingKind& kind, OutputFile& output,
                                    std::string& error) {
  const XyzOptions& options = job.options.xyz;
  Tide tide;
  if (!options.tide.empty() && !tide.Read(options.tide, error)) return nullptr;
  double scale = 1;
  if (options.soundSpeed_mps > 0) {
    scale = options.soundSpeed_mps / static_cast<double>(kind.soundSpeed_mps);
    if (!kind.hasInfo || !(kind.soundSpeed_mps > 0.0f) || !std::isfinite(kind.soundSpeed_mps))
      error = "tells no speed of sound, which --sound-speed needs";
  }
  if (!error.empty()) return nullptr;
  return std::make_unique<XyzWriter>(output, options, scale, std::move(tide));
}

std::unique_ptr<PingWriter> MakeNetcdf(const Job& job, const PingSource& recording, int32_t channel,
                                       const RecordingSurvey& survey, Handle file, OutputFile& output,
                                       std::string& error) {
  auto writer =
      std::make_unique<NetcdfWriter>(output, NetcdfTold{recording, survey, ShownName(job.file), channel},
                                     NetcdfFiles{WideName(job.file), file, job.interrupted});
  if (!writer->Prepare(error)) return nullptr;
  return writer;
}

}  // namespace

bool Survey(const Job& job, RecordingSurvey& survey, std::string& error) {
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr) return false;
  const bool whole = ForEachPing(job, *recording, " (measuring)", [&](const RecordedPing& ping) {
    survey.Add(ping);
    return true;
  });
  survey.samplingAssumed = recording->IsSamplingAssumed();
  if (whole && recording->Failed()) error = FaultText(RecordingFault::unread);
  return whole && error.empty();
}

bool SurveyLayout(const Job& job, RecordingSurvey& survey, std::string& error) {
  constexpr int kFirstPings = 256;
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr) return false;
  if (recording->Kind().channels > 1) {
    if (!Survey(job, survey, error)) return false;
    const auto sum = SumOfFile(WideName(job.file), job.interrupted);
    if (sum) survey.sha256 = sum->digits;
    if (!sum && !job.interrupted.load()) error = FaultText(RecordingFault::unread);
    return sum.has_value();
  }
  recording->SetInterruption(InterruptionBy(job.interrupted));
  RecordedPing ping{};
  for (int i = 0; i < kFirstPings && recording->Next(ping); ++i) survey.Add(ping);
  survey.samplingAssumed = recording->IsSamplingAssumed();
  survey.whole = false;
  return true;
}

std::unique_ptr<PingWriter> MakeWriter(const Job& job, const PingSource& recording, int32_t channel,
                                       const RecordingSurvey& survey, Handle file, OutputFile& output,
                                       ReportPage& page, std::string& error) {
  const RecordingKind& kind = recording.Kind();
  switch (job.options.task) {
    case Task::info:
    case Task::check:
      return nullptr;
    case Task::repair:
    case Task::cut:
    case Task::join:
      return std::make_unique<RecordingWriter>(CopiedFiles{recording, WideName(job.file), job.following},
                                               file, output, job.options.selection, job.interrupted);
    case Task::csv:
      return std::make_unique<CsvWriter>(output);
    case Task::kml:
    case Task::gpx:
    case Task::geojson:
      return MakeMap(job, output, error);
    case Task::xyz:
      return MakeXyz(job, kind, output, error);
    case Task::nmea:
      return std::make_unique<NmeaWriter>(output);
    case Task::text:
      return std::make_unique<TextWriter>(output);
    case Task::netcdf:
      return MakeNetcdf(job, recording, channel, survey, file, output, error);
    case Task::png:
      return std::make_unique<PngWriter>(output, kind.soundSpeed_mps, job.options.picture);
    case Task::report:
      return std::make_unique<ReportWriter>(output, recording, WideName(job.file), page);
    case Task::segy: {
      SegyOptions segy{.paddedLength = 0, .numbered = job.options.numbered};
      if (job.options.pad && !LongestTrace(job, segy.paddedLength, error)) return nullptr;
      return std::make_unique<SegyWriter>(output, kind.soundSpeed_mps, segy);
    }
  }
  return nullptr;
}

}  // namespace tw::echotool
