#include <new>

#include "base/shared_value.h"
#include "platform/file.h"
#include "playback/conversion_run.h"
#include "playback/file_report.h"
#include "playback/played_rings.h"
#include "playback/worker_run.h"

namespace tw {
namespace {

// The window's conversion: its pings pass by in the view. They go onto the disk one by one, into a file that
// the operator can close at any time.
class ShownConversion final : public WorkerRun, public ConversionWatch, public PingConverter {
 public:
  ShownConversion(AppState& state, const WorkerSide& side, PingSource& recording, Conversion conversion)
      : WorkerRun(state, side),
        recording_(recording),
        conversion_(conversion),
        file_(LoadShared(state.segyCompanionA)),
        output_(file_),
        rings_(state, recording, false),
        report_(state, side.texts, true) {}

  [[nodiscard]] bool Run() override {
    ConversionEnd end = ConversionEnd::stopped;
    const bool prepared = Prepare();
    if (prepared) {
      StoreShared(globals.attitudePresent, 1);
      end = RunConversion(recording_, *this, *this);
    }
    report_.ShowSize(output_.Size());
    CloseOutput();
    if (Stale()) return end == ConversionEnd::exhausted;
    if (!prepared) TellFailure(state_, kPlaybackWithoutMemory);
    if (end == ConversionEnd::unread) TellFailure(state_, kPlaybackUnread);
    return end == ConversionEnd::exhausted;
  }

  // The field is emptied when the operator clears "Record Data", which closes all files that are written.
  [[nodiscard]] bool Append(const RecordedPing& ping) override {
    if (LoadShared(state_.segyCompanionA) != file_) return false;
    return converter_->Append(ping) && output_.Flush();
  }

  [[nodiscard]] bool IsStopped() override { return Stale() || StopAsked(); }

  [[nodiscard]] bool GoesOnWithoutOutput() override {
    StoreShared(state_.conversionCut, 1);
    CloseOutput();
    return true;
  }

  // Behind the conversion: what is shown of a ping changes nothing in the file.
  void NotePing(const RecordedPing& ping) override {
    static_cast<void>(rings_.PlaceInTime(ping));
    rings_.Show(ping);
    if (!report_.IsProgressDue(ping)) return;
    report_.PostPlace(LoadShared(side_.input), recording_);
    report_.ShowSize(output_.Size());
  }

 private:
  // False without memory.
  [[nodiscard]] bool Prepare() {
    if (output_.Failed()) return false;
    if (conversion_ == Conversion::segy) {
      converter_.reset(new (std::nothrow)
                           SegyConverter(output_, globals.segyTextHeader, state_.settings.soundSpeed_mps));
    } else {
      converter_.reset(new (std::nothrow) TextConverter(output_));
    }
    return converter_ != nullptr;
  }

  void CloseOutput() {
    StoreShared(state_.segyCompanionA, Handle::invalid);
    CloseFile(file_);
    file_ = Handle::invalid;
  }

  PingSource& recording_;
  const Conversion conversion_;
  Handle file_;
  OutputFile output_;
  std::unique_ptr<PingConverter> converter_;
  PlayedRings rings_;
  FileReport report_;
};

}  // namespace

std::unique_ptr<WorkerRun> MakeConversion(AppState& state, const WorkerSide& side, PingSource& recording,
                                          Conversion conversion) {
  return std::unique_ptr<WorkerRun>(new (std::nothrow) ShownConversion(state, side, recording, conversion));
}

}  // namespace tw
