// Any bytes as a record file: what kind it is, its pings, SEG-Y, text and report of them, and places to go on
// from.
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

#include "platform/file.h"
#include "platform/virtual/file_sink.h"
#include "platform/virtual/virtual_clock.h"
#include "playback/converter.h"
#include "playback/ping_source.h"
#include "tools/echotool/report_output.h"

namespace tw {
namespace {

constexpr uint64_t kMaxOfPing = 3'600 + 240 + 2 * 130'000;

void Require(bool holds) {
  if (!holds) std::abort();
}

// The outputs' place, which takes everything and keeps nothing.
class Nowhere final : public FileSink {
 public:
  void Written(std::wstring_view, uint64_t, std::span<const uint8_t>) override {}
};

class Files {
 public:
  Files() {
    StartVirtualClock(1'700'000'000'000);  // a file that tells nothing is looked at again after a while
    const std::string name = "/dev/shm/recordings_fuzz_" + std::to_string(getpid());
    input_ = Make(name);
    static Nowhere nowhere;
    SinkFiles(L"/dev/shm/recordings_fuzz_", &nowhere);
    segy_ = Make(name + ".sgy");
    text_ = Make(name + ".txt");
    Require(input_ != Handle::invalid && segy_ != Handle::invalid && text_ != Handle::invalid);
  }

  // Without a name from then on, so that nothing of it stays.
  static Handle Make(const std::string& name) {
    const Handle file = CreateFileAnew(std::wstring(name.begin(), name.end()).c_str());
    unlink(name.c_str());
    return file;
  }

  [[nodiscard]] Handle Fill(std::span<const uint8_t> bytes) const {
    uint32_t written = 0;
    Require(TruncateFile(input_, 0));
    Require(WriteFileBytes(input_, bytes.data(), static_cast<uint32_t>(bytes.size()), written));
    return input_;
  }
  [[nodiscard]] Handle Segy() const { return segy_; }
  [[nodiscard]] Handle Text() const { return text_; }

 private:
  Handle input_;
  Handle segy_;
  Handle text_;
};

void RequireSense(const RecordedPing& ping, const PingSource& recording) {
  Require(ping.begin < recording.Position() && recording.Position() <= recording.Size());
  Require(ping.samples.size() <= 130'000 && (ping.samples.empty() || ping.factor >= 1));
  Require(ping.channel == 0 || ping.channel == 1);
}

void Convert(PingSource& recording, const Files& files) {
  static const std::array<uint8_t, kSegyTextHeaderSize> cards{};
  OutputFile segyOutput(files.Segy());
  OutputFile textOutput(files.Text());
  SegyConverter segy(segyOutput, cards, recording.Kind().soundSpeed_mps);
  TextConverter text(textOutput);
  OutputFile pageOutput(files.Text());
  echotool::ReportPage page;
  echotool::ReportWriter report(pageOutput, recording, L"/dev/shm/none/recording", page);
  uint64_t pings = 0;
  uint64_t begin = 0;
  for (RecordedPing ping{}; recording.Next(ping); ++pings) {
    RequireSense(ping, recording);
    Require(pings == 0 || ping.begin > begin);
    begin = ping.begin;
    Require(segy.Append(ping) && text.Append(ping) && report.Append(ping));
    Require(segyOutput.Size() <= (pings + 1) * kMaxOfPing);
  }
  Require(report.End() && pageOutput.Size() > 0);
  Require(pings > 0 && recording.Skipped() <= recording.Size());
}

// A seek gives the first ping that begins there or behind.
void Search(PingSource& recording, uint64_t size) {
  for (const uint64_t place : {uint64_t{0}, size / 3, size / 2, size}) {
    RecordedPing ping{};
    Require(recording.Seek(place));
    if (recording.Next(ping)) Require(ping.begin >= place);
  }
}

}  // namespace
}  // namespace tw

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static const tw::Files files;
  tw::RecordingFault fault{};
  const tw::Handle file = files.Fill({bytes, size});
  const auto recording = tw::MakeRecording(file, tw::CandidatesOf(file, tw::kGrowingRetries), fault);
  tw::Require((recording == nullptr) == (fault != tw::RecordingFault::none));
  if (recording == nullptr) return 0;
  tw::Convert(*recording, files);
  tw::Search(*recording, size);
  return 0;
}
