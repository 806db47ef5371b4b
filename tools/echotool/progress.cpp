#include "tools/echotool/progress.h"

#include <algorithm>

#include "base/text_format.h"
#include "platform/console.h"
#include "tools/echotool/console.h"

namespace tw::echotool {
namespace {

constexpr size_t kColumns = 79;       // of all that is shown
constexpr size_t kLabelColumns = 48;  // with bar and percentage it fits

int PercentOf(uint64_t part, uint64_t whole) {
  return static_cast<int>(part >= whole ? 100 : part / (whole / 100 + 1));
}

std::string BarLine(std::string_view name, std::string_view work, int percent) {
  constexpr int kWidth = 20;
  const int full = percent * kWidth / 100;
  char bar[64];
  const size_t size =
      FormatText(bar, " [%.*s%*s] %3d %%", full, "####################", kWidth - full, "", percent);
  return FitColumns(name, kLabelColumns - std::min(kLabelColumns, work.size())) + std::string(work) +
         std::string(bar, size);
}

}  // namespace

Progress::Progress(size_t files, uint64_t bytes, bool isQuiet)
    : files_(files), bytes_(bytes), isShown_(!isQuiet && IsErrorTerminal()) {
  MakeLock(lock_);
}

Progress::~Progress() {
  Draw("");
  DestroyLock(lock_);
}

Progress::Pause::Pause(Progress& progress) : progress_(progress) {
  Enter(progress_.lock_);
  progress_.Draw("");
}

Progress::Pause::~Pause() {
  Leave(progress_.lock_);
}

void Progress::Begin() {
  const Locked held(lock_);
  ++atWork_;
}

void Progress::Show(const Shown& shown, uint64_t newBytes) {
  const Locked held(lock_);
  read_ += newBytes;
  Draw(Line(shown));
}

void Progress::End(uint64_t newBytes) {
  const Locked held(lock_);
  read_ += newBytes;
  --atWork_;
  ++done_;
}

std::string Progress::Line(const Shown& shown) const {
  if (files_ <= 1) return BarLine(shown.name, shown.work, shown.percent);
  const std::string counts = std::to_string(done_) + " of " + std::to_string(files_) + ", " +
                             std::to_string(atWork_) + " at work, " +
                             std::to_string(PercentOf(read_, bytes_)) + " % ";
  return counts + FitColumns(shown.name, kColumns - std::min(kColumns, counts.size()));
}

void Progress::Draw(const std::string& line) {
  if (!isShown_ || line == line_) return;
  const bool stood = !line_.empty();
  line_ = line;
  WriteError((stood ? "\r" + std::string(kColumns, ' ') : "") + "\r" + line);
}

FileProgress::FileProgress(Progress& all, uint64_t size) : all_(all), bytes_(size) {
  all_.Begin();
}

FileProgress::~FileProgress() {
  all_.End(NewBytes(bytes_));
}

uint64_t FileProgress::NewBytes(uint64_t counted) {
  const uint64_t more = counted - std::min(counted, counted_);
  counted_ += more;
  return more;
}

void FileProgress::BeginPass(std::string_view name, std::string_view work, uint64_t size) {
  shown_ = {std::string(name), work, -1};
  size_ = size;
  isMeasured_ = isMeasured_ || !work.empty();
}

// What is read twice counts half each time.
void FileProgress::Show(uint64_t position) {
  if (!all_.isShown_ || size_ == 0) return;
  const int percent = PercentOf(position, size_);
  if (percent == shown_.percent) return;
  shown_.percent = percent;
  const uint64_t passed = bytes_ / 100 * static_cast<uint64_t>(percent);
  const uint64_t counted = !isMeasured_ ? passed : shown_.work.empty() ? (bytes_ + passed) / 2 : passed / 2;
  all_.Show(shown_, NewBytes(counted));
}

}  // namespace tw::echotool
