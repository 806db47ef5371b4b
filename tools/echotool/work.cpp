#include "tools/echotool/work.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "app/file_naming.h"
#include "base/text_format.h"
#include "platform/file.h"
#include "playback/converter.h"
#include "playback/ping_source.h"
#include "playback/segy_text_header.h"
#include "tools/echotool/console.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/track_output.h"
#include "tools/echotool/whole_file.h"

namespace tw::echotool {
namespace {

constexpr size_t kPathSize = 4'096;

std::wstring Wide(const std::string& text) {
  std::wstring out(text.size() + 1, L'\0');
  out.resize(WidenText(out, text));
  return out;
}

std::string Narrow(const std::wstring& text) {
  std::string out(4 * text.size() + 1, '\0');
  out.resize(NarrowText(out, text));
  return out;
}

// A converter of the program behind the interface of the other writers.
class ConverterWriter final : public PingWriter {
 public:
  ConverterWriter(OutputFile& output, std::unique_ptr<PingConverter> converter)
      : output_(output), converter_(std::move(converter)) {}
  [[nodiscard]] bool Begin() override { return true; }
  [[nodiscard]] bool Append(const RecordedPing& ping) override {
    return converter_->Append(ping.header, ping.samples);
  }
  [[nodiscard]] bool End() override { return output_.Flush(); }

 private:
  OutputFile& output_;
  std::unique_ptr<PingConverter> converter_;
};

struct Job {
  const std::string& file;
  const Options& options;
  const std::atomic<bool>& interrupted;
  Outputs& outputs;
};

std::string NameOf(const std::string& path) {
  const size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

// However the file is named; empty when it is not there.
std::wstring FullPath(const std::wstring& path) {
  const Handle file = OpenFileForReading(path.c_str(), WriteSharing::allowed);
  wchar_t full[kPathSize];
  const bool told = file != Handle::invalid && PathOfFile(file, full);
  CloseFile(file);
  return told ? full : L"";
}

std::string FaultText(RecordingFault fault) {
  switch (fault) {
    case RecordingFault::none:
      return "";
    case RecordingFault::notOpened:
      return "cannot be opened";
    case RecordingFault::unknown:
      return "is no recording of a known kind";
    case RecordingFault::noPing:
      return "holds no ping";
    case RecordingFault::unread:
      return "cannot be read";
    case RecordingFault::noMemory:
      return "needs more memory than there is";
  }
  return "";
}

std::unique_ptr<PingSource> Open(const std::string& file, std::string& error) {
  RecordingFault fault = RecordingFault::none;
  auto recording = OpenRecording(Wide(file).c_str(), fault);
  if (recording == nullptr) error = FaultText(fault);
  return recording;
}

// Hands each ping to `take` until it declines. False when interrupted, be it in the middle of garbage.
template <typename Take>
bool ForEachPing(const Job& job, PingSource& recording, const char* label, Take take) {
  const auto isInterrupted = [](void* watched) {
    return static_cast<const Job*>(watched)->interrupted.load();
  };
  Job watched = job;
  recording.SetInterruption({isInterrupted, &watched});
  ProgressBar bar(NameOf(job.file) + label, recording.Size());
  RecordedPing ping{};
  while (!job.interrupted.load(std::memory_order_relaxed) && recording.Next(ping)) {
    bar.Show(recording.Position());
    if (!take(ping)) break;
  }
  recording.SetInterruption({});
  return !job.interrupted.load();
}

bool LooksConvertible(Task task, const RecordingKind& kind, std::string& error) {
  if ((task == Task::segy || task == Task::text) && !kind.hasSamples) error = "holds no echoes to convert";
  if (task == Task::text && kind.isText) error = "is text already";
  return error.empty();
}

// Where the output goes: the folder asked for or the input's own, the program's names, and likewise for the
// kinds that the program itself does not write.
std::wstring OutputPath(const Job& job) {
  const std::wstring input = Wide(job.file);
  wchar_t name[kPathSize];
  NameConversion(name, input, job.options.task == Task::text ? Conversion::text : Conversion::segy);
  std::wstring file = name;
  const wchar_t* const extension = job.options.task == Task::csv ? L".csv" : L".kml";
  if (job.options.task == Task::csv || job.options.task == Task::kml) {
    file.resize(file.size() - 4);  // ".sgy"
    file += extension;
  }
  if (!job.options.folder.empty()) return Wide(job.options.folder) + kPathSeparator + file;
  const size_t separator = input.find_last_of(L"/\\");
  return separator == std::wstring::npos ? file : input.substr(0, separator + 1) + file;
}

bool LongestTrace(const Job& job, uint32_t& longest, std::string& error) {
  const auto recording = Open(job.file, error);
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

std::unique_ptr<PingWriter> MakeWriter(const Job& job, const RecordingKind& kind, OutputFile& output,
                                       std::string& error) {
  switch (job.options.task) {
    case Task::info:
      return nullptr;
    case Task::csv:
      return std::make_unique<CsvWriter>(output);
    case Task::kml:
      return std::make_unique<KmlWriter>(output, NameOf(job.file));
    case Task::text:
      return std::make_unique<ConverterWriter>(output, std::make_unique<TextConverter>(output));
    case Task::segy: {
      SegyOptions segy{.paddedLength = 0, .numbered = job.options.numbered};
      if (job.options.pad && !LongestTrace(job, segy.paddedLength, error)) return nullptr;
      static const auto textHeader = [] {
        std::array<uint8_t, kSegyTextHeaderSize> header;
        BuildSegyTextHeader(header);
        return header;
      }();
      return std::make_unique<ConverterWriter>(
          output, std::make_unique<SegyConverter>(output, textHeader, kind.soundSpeed_mps, segy));
    }
  }
  return nullptr;
}

std::string WarningOf(const Job& job, const PingSource& recording) {
  if (!recording.IsSamplingAssumed()) return "";
  return job.file + ": tells no sampling frequency, " + std::to_string(kUsualSampling_hz) + " Hz is assumed";
}

Result Inform(const Job& job) {
  std::string error;
  const auto recording = Open(job.file, error);
  if (recording == nullptr) return {false, job.file + ": " + error};
  Summary summary;
  const bool whole = ForEachPing(job, *recording, "", [&](const RecordedPing& ping) {
    summary.Add(ping);
    return true;
  });
  if (!whole) return {false, job.file + ": interrupted"};
  if (recording->Failed()) return {false, job.file + ": " + FaultText(RecordingFault::unread)};
  return {true, job.file + "\n" + summary.Text(*recording), WarningOf(job, *recording)};
}

Result Write(const Job& job) {
  std::string error;
  const auto failed = [&](const std::string& why) { return Result{false, job.file + ": " + why}; };
  const auto recording = Open(job.file, error);
  if (recording == nullptr) return failed(error);
  if (!LooksConvertible(job.options.task, recording->Kind(), error)) return failed(error);

  const std::wstring path = OutputPath(job);
  const std::wstring older = FullPath(path);
  if (!older.empty() && older == FullPath(Wide(job.file))) return failed("the output would replace it");
  if (!older.empty() && std::find(job.outputs.begin(), job.outputs.end(), older) != job.outputs.end())
    return failed(Narrow(path) + " has just been made of another recording");
  WholeFile file;
  if (!file.Create(path)) return failed(Narrow(path) + " cannot be made");
  OutputFile output(file.File());
  const auto writer = MakeWriter(job, recording->Kind(), output, error);
  if (job.interrupted.load()) return failed("interrupted");
  if (writer == nullptr) return failed(error);
  bool written = writer->Begin();
  const bool whole = ForEachPing(job, *recording, "", [&](const RecordedPing& ping) {
    written = written && writer->Append(ping);
    return written;
  });
  if (!whole) return failed("interrupted");
  if (recording->Failed()) return failed(FaultText(RecordingFault::unread));
  if (!written || !writer->End() || !file.Complete()) return failed(Narrow(path) + " cannot be written");
  job.outputs.push_back(FullPath(path));
  return {true, "", job.options.task == Task::segy ? WarningOf(job, *recording) : ""};
}

}  // namespace

Result WorkOn(const std::string& file, const Options& options, const std::atomic<bool>& interrupted,
              Outputs& outputs) {
  const Job job{file, options, interrupted, outputs};
  return options.task == Task::info ? Inform(job) : Write(job);
}

}  // namespace tw::echotool
