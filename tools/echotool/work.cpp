#include "tools/echotool/work.h"

#include <algorithm>

#include "tools/echotool/checking.h"
#include "tools/echotool/info_output.h"
#include "tools/echotool/job.h"
#include "tools/echotool/joining.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/writing.h"

namespace tw::echotool {
namespace {

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
  if (!error.empty() || !IsRecording(job, *recording, summary.Pings(), result)) return false;
  result.told = {recording->Size(), recording->Skipped(), figures};
  switch (job.options.form) {
    case InfoForm::lines:
      result.text = job.file + "\n" + summary.Text(*recording) + FiguresText(*recording, figures);
      break;
    case InfoForm::json:
      result.row = FiguresJson(ReadableText(job.file), *recording, figures);
      break;
    case InfoForm::csv:
      result.row = FiguresCsvRow(ReadableText(job.file), *recording, figures);
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
  if (!error.empty() || !IsRecording(job, *recording, pings, result)) return false;
  result.text = check.Text(job.file, *recording);
  result.sound = result.text.empty();
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

// Describes all recordings of the call, what is none and was found in a folder left out.
bool DescribeAll(const Job& job, std::vector<Part>& parts, Result& result) {
  for (const Input& input : job.call.inputs) {
    if (input.isFound && input.fault.empty() && IsAnotherFile(input.file)) {
      ++result.others;
      continue;
    }
    result.text = input.fault;
    if (input.fault.empty() && Describe({job.call, input, job.progress}, parts, result.text)) continue;
    result.text = input.file + ": " + result.text;
    return false;
  }
  if (parts.size() < 2) result.text = "join needs two recordings or more";
  return result.text.empty();
}

// All recordings of the call in order of time, as one.
bool Join(const Job& job, Result& result) {
  std::vector<Part> parts;
  if (!DescribeAll(job, parts, result) || !PutInOrder(parts, result.text)) return false;
  const auto first = std::find_if(job.call.inputs.begin(), job.call.inputs.end(),
                                  [&](const Input& input) { return input.file == parts.front().file; });
  Job all{job.call, *first, job.progress};
  for (size_t i = 1; i < parts.size(); ++i) all.following.push_back(WideName(parts[i].file));
  const bool done = WriteOutputs(all, result);
  for (std::string& note : result.notes) note = all.file + ": " + note;
  if (!done) result.text = all.file + ": " + result.text;
  return done;
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
      return WriteOutputs(job, result);
  }
  return false;
}

// A file that was found in a folder need not be a recording: what fails is looked at again.
bool DoOne(const Job& job, Result& result) {
  const Input& input = job.input;
  result.text = input.fault;
  if (!result.text.empty()) return false;
  if (Do(job, result)) {
    if (input.isAlike) result.alike = input.file;
    return true;
  }
  if (result.others == 0 && input.isFound && IsAnotherFile(input.file)) ++result.others;
  if (result.others == 0) return false;
  result.text.clear();
  result.notes.clear();
  return true;
}

}  // namespace

Result WorkOn(const Call& call, const Input& input) {
  FileProgress progress(call.progress, input.size);
  const Job job{call, input, progress};
  const bool joins = call.options.task == Task::join;
  Result result;
  result.done = joins ? Join(job, result) : DoOne(job, result);
  if (call.interrupted.load() && !result.done) result.text = "interrupted";
  if (joins) return result;  // its texts name the recordings themselves
  if (!result.done) result.text = input.file + ": " + result.text;
  for (std::string& note : result.notes) note = input.file + ": " + note;
  return result;
}

}  // namespace tw::echotool
