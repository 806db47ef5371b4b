#include "tools/echotool/writing.h"

#include <algorithm>
#include <list>

#include "platform/system_error.h"
#include "playback/conversion_run.h"
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

bool HasTwoOutputs(const Job& job, const PingSource& recording) {
  return job.options.task == Task::netcdf && recording.Kind().channels > 1;
}

// Which outputs there are to be: NetCDF has one a channel, those without a ping left out.
std::vector<int32_t> ChannelsOf(const Job& job, const PingSource& recording, const RecordingSurvey& survey) {
  std::vector<int32_t> channels;
  if (!HasTwoOutputs(job, recording)) return {0};
  for (int32_t channel = 0; channel < 2; ++channel)
    if (survey.channels[channel].pings != 0) channels.push_back(channel);
  return channels;
}

// Counts the pings of a conversion for its bar, and ends it when the user wants that.
class Watch final : public ConversionWatch {
 public:
  Watch(const Job& job, const PingSource& recording) : job_(job), recording_(recording) {
    job.progress.BeginPass(ShownName(job.file), "", recording.Size());
  }

  [[nodiscard]] bool IsStopped() override { return job_.interrupted.load(std::memory_order_relaxed); }
  [[nodiscard]] bool GoesOnWithoutOutput() override { return false; }
  void NotePing(const RecordedPing&) override {
    ++pings_;
    job_.progress.Show(recording_.Position());
  }
  [[nodiscard]] uint64_t Pings() const { return pings_; }

 private:
  const Job& job_;
  const PingSource& recording_;
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
  } else if (IsRecording(job, recording, watch.Pings(), result)) {
    error = writer->Emptiness();
  }
  const Task task = job.options.task;
  if (task != Task::repair && task != Task::join) NoteDamage(recording, result);  // these tell what they drop
  if (task == Task::segy || task == Task::netcdf || task == Task::png || task == Task::report)
    NoteSampling(recording, result);
  const std::string note = writer->Note();
  if (!note.empty()) Note(note, result);
  return error.empty();
}

// Where the output of a channel goes. False with the reason when none may be written there.
bool ChoosePlace(const Job& job, const PingSource& recording, int32_t channel, Place& place,
                 std::string& error) {
  const std::wstring part = HasTwoOutputs(job, recording) ? L"_ch" + std::to_wstring(channel + 1) : L"";
  place.path = OutputPath(job.file, job.input.folder, job.options.task, part);
  return LookAt(place, job.input, job.call, error);
}

// Makes the file of an output under its temporary name; folders of a tree that is mirrored come with it.
bool Begin(const Job& job, Output& output, std::string& error) {
  const Place& place = output.place;
  uint32_t fault = 0;
  const bool mirrors = job.input.isFound && !job.input.folder.empty();
  if (mirrors && !MakeFolders(job.input.folder, fault)) {
    error = NarrowName(job.input.folder) + " cannot be made: " + ReasonText(fault);
  } else if (!output.file.Create(place.path)) {
    error = NarrowName(place.path) + " cannot be made: " + ReasonText(output.file.Error());
  }
  return error.empty();
}

// What a dry run has to find out by reading: which channels have pings, and whether it is a recording at all.
bool Skim(const Job& job, PingSource& recording, RecordingSurvey& survey, Result& result) {
  const bool isCertain = !IsDoubtful(recording.Kind());
  const bool two = HasTwoOutputs(job, recording);
  if (isCertain && !two) return true;
  uint64_t pings = 0;
  const bool whole = ForEachPing(job, recording, "", [&](const RecordedPing& ping) {
    ++pings;
    for (int32_t channel = 0; channel < 2; ++channel)
      if (Concerns(ping, channel)) ++survey.channels[channel].pings;
    return !isCertain || survey.channels[0].pings == 0 || survey.channels[1].pings == 0;
  });
  if (recording.Failed()) result.text = FaultText(RecordingFault::unread);
  return whole && result.text.empty() && (isCertain || IsRecording(job, recording, pings, result));
}

// Tells what would be written, and takes the places for it.
bool Foresee(const Job& job, PingSource& recording, Result& result) {
  RecordingSurvey survey;
  if (!Skim(job, recording, survey, result)) return false;
  std::string text;
  for (const int32_t channel : ChannelsOf(job, recording, survey)) {
    Place place;
    if (!ChoosePlace(job, recording, channel, place, result.text)) return false;
    const std::wstring folder = FolderOfPath(place.path);
    if (!job.input.isFound && !folder.empty() && !IsFolder(folder.c_str())) {
      result.text = NarrowName(place.path) + " cannot be made: its folder is not there";
      return false;
    }
    job.call.claims.NoteMade(FullPathToBe(place.path));
    text += job.file + ": " + ForeseenText(place) + "\n";
    if (job.options.task == Task::report) result.page.emplace().path = place.path;
  }
  result.text = text;
  return true;
}

// All outputs under their temporary names.
bool WriteAll(const Job& job, PingSource& recording, std::list<Output>& outputs, Result& result) {
  std::string& error = result.text;
  RecordingSurvey survey;
  if (job.options.task == Task::netcdf && !SurveyLayout(job, survey, error)) return false;
  for (const int32_t channel : ChannelsOf(job, recording, survey)) {
    Output& output = outputs.emplace_back();
    output.channel = channel;
    output.page.recording = ShownName(job.file);
    if (!ChoosePlace(job, recording, channel, output.place, error) || !Begin(job, output, error))
      return false;
    output.page.path = output.place.path;
    if (outputs.size() > 1 && !recording.Rewind()) error = FaultText(RecordingFault::unread);
    if (!error.empty() || !Convert(job, recording, output, survey, result)) return false;
  }
  return true;
}

}  // namespace

bool WriteOutputs(const Job& job, Result& result) {
  std::string& error = result.text;
  const auto recording = OpenInput(job.file, error);
  if (recording == nullptr || !LooksConvertible(job.options.task, recording->Kind(), error)) return false;
  if (job.options.dryRun) return Foresee(job, *recording, result);
  std::list<Output> outputs;
  if (!WriteAll(job, *recording, outputs, result)) return false;
  for (Output& output : outputs) {
    if (!Complete(output.file, output.place, result)) return false;
    job.call.claims.NoteMade(FullPath(output.place.path));
    if (job.options.task != Task::report) continue;
    output.page.track.ThinTo(kPointsOfIndex);
    result.page = std::move(output.page);
  }
  return true;
}

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

std::string ForeseenText(const Place& place) {
  const std::string name = NarrowName(place.path);
  if (!place.taken) return "would write " + name;
  return "would replace " + name + (place.mustHold ? ", if that holds nothing else" : "");
}

}  // namespace tw::echotool
