#include "tools/echotool/work.h"

#include <algorithm>
#include <list>
#include <map>
#include <memory>

#include "platform/file.h"
#include "platform/system_error.h"
#include "playback/conversion_run.h"
#include "tools/echotool/checking.h"
#include "tools/echotool/job.h"
#include "tools/echotool/joining.h"
#include "tools/echotool/replacing.h"
#include "tools/echotool/report_index.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/whole_file.h"
#include "tools/echotool/writers.h"

namespace tw::echotool {
namespace {

constexpr size_t kPointsOfIndex = 64;  // of each recording: a season has thousands

bool LooksConvertible(Task task, const RecordingKind& kind, std::string& error) {
  if ((task == Task::segy || task == Task::text || task == Task::png) && !kind.hasSamples)
    error = "holds no echoes to convert";
  if (task == Task::text && kind.isText) error = "is text already";
  return error.empty();
}

// An output of a recording: all of it, or one of its channels.
struct Output {
  Place place;
  WholeFile file;
  int32_t channel = 0;
  ReportPage page;
};

// Judges a recording that has been read to its end. What has neither settings nor a binary mark and hardly a
// ping is something else, in which a few bytes look like a line.
bool IsRecording(const PingSource& recording, uint64_t pings, std::string& error) {
  constexpr uint64_t kFewestPings = 3;
  constexpr uint64_t kLargestPart = 100;  // at least a hundredth of the bytes is known
  const RecordingKind& kind = recording.Kind();
  const uint64_t known = recording.Size() - recording.Skipped();
  if (!kind.isText || kind.hasInfo || (pings >= kFewestPings && known * kLargestPart >= recording.Size()))
    return true;
  error = "is no recording: " + std::to_string(pings) + " pings in " + std::to_string(recording.Size()) +
          " bytes";
  return false;
}

// Once, however many outputs are made of the recording.
void Note(const std::string& note, Result& result) {
  if (std::find(result.notes.begin(), result.notes.end(), note) == result.notes.end())
    result.notes.push_back(note);
}

void NoteDamage(const PingSource& recording, Result& result) {
  if (recording.Skipped() != 0) Note("damaged: " + DamageText(recording), result);
}

void NoteSampling(const PingSource& recording, Result& result) {
  if (recording.IsSamplingAssumed())
    Note("warning: tells no sampling frequency, " + std::to_string(kUsualSampling_hz) + " Hz is assumed",
         result);
}

bool Inform(const Job& job, Result& result) {
  std::string& error = result.text;
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr) return false;
  Summary summary;
  RecordingFigures figures;
  const bool whole = ForEachPing(job, *recording, "", [&](const RecordedPing& ping) {
    summary.Add(ping);
    figures.Add(ping);
    return true;
  });
  if (!whole) return false;
  if (recording->Failed()) error = FaultText(RecordingFault::unread);
  if (!error.empty() || !IsRecording(*recording, summary.Pings(), error)) return false;
  job.batch.totals.Add(*recording, figures);
  switch (job.options.form) {
    case InfoForm::lines:
      result.text = job.file + "\n" + summary.Text(*recording) + FiguresText(*recording, figures);
      break;
    case InfoForm::json:
      job.batch.told.push_back(FiguresJson(ReadableText(job.file), *recording, figures));
      break;
    case InfoForm::csv:
      job.batch.told.push_back(FiguresCsvRow(ReadableText(job.file), *recording, figures));
      break;
  }
  NoteDamage(*recording, result);
  NoteSampling(*recording, result);
  return true;
}

bool LookForFaults(const Job& job, Result& result) {
  std::string& error = result.text;
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr) return false;
  Check check;
  uint64_t pings = 0;
  const bool whole = ForEachPing(job, *recording, "", [&](const RecordedPing& ping) {
    ++pings;
    check.Add(ping, recording->Kind().hasSamples);  // others are counted by their reader
    return true;
  });
  if (!whole) return false;
  if (recording->Failed()) error = FaultText(RecordingFault::unread);
  if (!error.empty() || !IsRecording(*recording, pings, error)) return false;
  result.text = check.Text(job.file, *recording);
  result.sound = result.text.empty();
  return true;
}

// Counts the pings of a conversion for its bar, and ends it when the user wants that.
class Watch final : public ConversionWatch {
 public:
  Watch(const Job& job, const PingSource& recording)
      : job_(job),
        recording_(recording),
        bar_({job.batch.number, job.options.files.size()}, ShownName(job.file), "", recording.Size()) {}

  [[nodiscard]] bool IsStopped() override { return job_.interrupted.load(std::memory_order_relaxed); }
  [[nodiscard]] bool GoesOnWithoutOutput() override { return false; }
  void NotePing(const RecordedPing&) override {
    ++pings_;
    bar_.Show(recording_.Position());
  }
  [[nodiscard]] uint64_t Pings() const { return pings_; }

 private:
  const Job& job_;
  const PingSource& recording_;
  ProgressBar bar_;
  uint64_t pings_ = 0;
};

// All pings, from the recording into the output.
bool Convert(const Job& job, PingSource& recording, Output& to, const RecordingSurvey& survey,
             Result& result) {
  std::string& error = result.text;
  OutputFile output(to.file.File());
  const auto writer = MakeWriter(job, recording, to.channel, survey, to.file.File(), output, to.page, error);
  if (writer == nullptr) return false;
  Watch watch(job, recording);
  const ConversionEnd end = RunConversion(recording, *writer, watch);
  if (job.interrupted.load()) return false;
  if (end == ConversionEnd::unread) {
    error = FaultText(RecordingFault::unread);
  } else if (end == ConversionEnd::unwritten) {
    error = NarrowName(to.place.path) + " cannot be written: " +
            (output.Error() != 0 ? ReasonText(output.Error()) : "there is no memory");
  } else if (IsRecording(recording, watch.Pings(), error)) {
    error = writer->Emptiness();
  }
  NoteDamage(recording, result);
  const Task task = job.options.task;
  if (task == Task::segy || task == Task::netcdf || task == Task::png || task == Task::report)
    NoteSampling(recording, result);
  const std::string note = writer->Note();
  if (!note.empty()) Note(note, result);
  return error.empty();
}

// Gives the output its name, if it may have it.
bool Complete(WholeFile& file, const Place& place, Result& result) {
  const std::string name = NarrowName(place.path);
  if (!MayReplace(place, file.File())) {
    result.text = IsRecordingText(place);
  } else if (!file.Complete(place.taken ? Existing::replaced : Existing::kept)) {
    result.text = name + " cannot be completed: " + ReasonText(file.Error());
  } else if (place.taken) {
    result.notes.push_back(name + " has been replaced");
  }
  return result.text.empty();
}

// Which outputs there are to be: NetCDF has one a channel, those without a ping left out.
std::vector<int32_t> ChannelsOf(const Job& job, const PingSource& recording, const RecordingSurvey& survey) {
  std::vector<int32_t> channels;
  if (job.options.task != Task::netcdf || recording.Kind().channels < 2) return {0};
  for (int32_t channel = 0; channel < 2; ++channel)
    if (survey.channels[channel].pings != 0) channels.push_back(channel);
  return channels;
}

// Makes the file of an output under its temporary name.
bool Begin(const Job& job, Output& output, const std::wstring& part, std::string& error) {
  output.place.path = OutputPath(job.file, job.options, part);
  if (!LookAt(output.place, job.file, job.options, job.batch, error)) return false;
  if (output.file.Create(output.place.path)) return true;
  error = NarrowName(output.place.path) + " cannot be made: " + ReasonText(output.file.Error());
  return false;
}

bool Write(const Job& job, Result& result) {
  std::string& error = result.text;
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr || !LooksConvertible(job.options.task, recording->Kind(), error)) return false;
  RecordingSurvey survey;
  if (job.options.task == Task::netcdf && !SurveyLayout(job, survey, error)) return false;
  std::list<Output> outputs;
  for (const int32_t channel : ChannelsOf(job, *recording, survey)) {
    const bool oneOfTwo = job.options.task == Task::netcdf && recording->Kind().channels > 1;
    const std::wstring part = oneOfTwo ? L"_ch" + std::to_wstring(channel + 1) : L"";
    Output& output = outputs.emplace_back();
    output.channel = channel;
    output.page.recording = ShownName(job.file);
    if (!Begin(job, output, part, error)) return false;
    output.page.path = output.place.path;
    if (outputs.size() > 1 && !recording->Rewind()) error = FaultText(RecordingFault::unread);
    if (!error.empty() || !Convert(job, *recording, output, survey, result)) return false;
  }
  for (Output& output : outputs) {
    if (!Complete(output.file, output.place, result)) return false;
    job.batch.outputs.push_back(FullPath(output.place.path));
    if (job.options.task != Task::report) continue;
    output.page.track.ThinTo(kPointsOfIndex);
    job.batch.pages.push_back(std::move(output.page));
  }
  return true;
}

constexpr const wchar_t* kIndexName = L"index.html";

// The index over the pages in one folder (ending in its separator, or empty).
bool WriteIndex(const std::wstring& folder, const std::vector<const ReportPage*>& pages,
                const Options& options, const Batch& batch, Result& result) {
  Place place{.path = folder + kIndexName};
  if (!LookAt(place, "", options, batch, result.text)) return false;
  WholeFile file;
  if (!file.Create(place.path)) {
    result.text = NarrowName(place.path) + " cannot be made: " + ReasonText(file.Error());
    return false;
  }
  OutputFile output(file.File());
  if (!PutText(output, ReportIndex(pages)) || !output.Flush()) {
    result.text = NarrowName(place.path) + " cannot be written: " + ReasonText(output.Error());
    return false;
  }
  return Complete(file, place, result);
}

// One in each folder that has pages.
bool WriteIndexes(const Options& options, const Batch& batch, Result& result) {
  std::map<std::wstring, std::vector<const ReportPage*>> folders;
  for (const ReportPage& page : batch.pages)
    folders[page.path.substr(0, page.path.size() - LastOfPath(page.path).size())].push_back(&page);
  for (const auto& [folder, pages] : folders) {
    if (!WriteIndex(folder, pages, options, batch, result)) return false;
  }
  return true;
}

bool Describe(const Job& job, std::vector<Part>& parts, std::string& error) {
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr) return false;
  Part& part = parts.emplace_back(job.file, *recording);
  const bool whole = ForEachPing(job, *recording, " (measuring)", [&](const RecordedPing& ping) {
    part.Add(ping);
    return true;
  });
  if (whole && recording->Failed()) error = FaultText(RecordingFault::unread);
  return whole && error.empty();
}

// All recordings of the call in order of time, as one.
bool Join(const Job& job, Result& result) {
  std::vector<Part> parts;
  for (const std::string& file : job.options.files) {
    if (!Describe({file, job.options, job.interrupted, job.batch}, parts, result.text)) {
      result.text = file + ": " + result.text;
      return false;
    }
  }
  if (!PutInOrder(parts, result.text)) return false;
  Job all{parts.front().file, job.options, job.interrupted, job.batch};
  for (size_t i = 1; i < parts.size(); ++i) all.following.push_back(WideName(parts[i].file));
  if (Write(all, result)) return true;
  result.text = all.file + ": " + result.text;
  return false;
}

bool Do(const Job& job, Result& result) {
  switch (job.options.task) {
    case Task::info:
      return Inform(job, result);
    case Task::check:
      return LookForFaults(job, result);
    case Task::join:
      return Join(job, result);
    case Task::segy:
    case Task::text:
    case Task::csv:
    case Task::kml:
    case Task::netcdf:
    case Task::gpx:
    case Task::geojson:
    case Task::xyz:
    case Task::nmea:
    case Task::repair:
    case Task::cut:
    case Task::png:
    case Task::report:
      return Write(job, result);
  }
  return false;
}

}  // namespace

Result EndBatch(const Options& options, Batch& batch) {
  Result result;
  result.done = true;
  if (options.task == Task::report) {
    result.done = WriteIndexes(options, batch, result);
  } else if (options.task == Task::info && options.form == InfoForm::json) {
    result.text = DocumentJson(batch.told, batch.totals);
  } else if (options.task == Task::info && options.form == InfoForm::csv) {
    result.text = FiguresCsvHeader();
    for (const std::string& row : batch.told) result.text += row;
  } else if (options.task == Task::info && options.files.size() > 1) {
    result.text = TotalsText(batch.totals);
  }
  return result;
}

Batch BeginBatch(const Options& options) {
  Batch batch;
  if (options.task == Task::info || options.task == Task::check) return batch;
  for (const std::string& file : options.files) batch.inputs.push_back(FullPath(WideName(file)));
  return batch;
}

Result WorkOn(const std::string& file, const Options& options, const std::atomic<bool>& interrupted,
              Batch& batch) {
  ++batch.number;
  const Job job{file, options, interrupted, batch};
  Result result;
  result.done = Do(job, result);
  if (interrupted.load() && !result.done) result.text = "interrupted";
  if (!result.done && options.task != Task::join) result.text = file + ": " + result.text;
  for (std::string& note : result.notes) note = file + ": " + note;
  return result;
}

}  // namespace tw::echotool
