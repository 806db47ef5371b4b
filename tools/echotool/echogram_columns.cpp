#include "tools/echotool/echogram_columns.h"

#include <algorithm>
#include <cmath>

namespace tw::echotool {
namespace {

constexpr float kUsualSoundSpeed_mps = 1'500.0f;
constexpr float kSlowest_mps = 100.0f;
constexpr float kFastest_mps = 10'000.0f;
constexpr double kFirstHeight_m = 1.0 / 16;
constexpr uint16_t kFirstVisible = 64;  // amplitudes below are black
constexpr uint32_t kAmplitudeOfStep = 16;
constexpr uint32_t kStrongest = 4'095;

// Also for what is no number.
double UsableSoundSpeed(float soundSpeed_mps) {
  const bool usable = soundSpeed_mps >= kSlowest_mps && soundSpeed_mps <= kFastest_mps;
  return static_cast<double>(usable ? soundSpeed_mps : kUsualSoundSpeed_mps);
}

// In pieces of a fixed length, which compilers turn into a few instructions.
void TakeStrongest(const uint16_t* samples, size_t count, uint16_t* strongest) {
  constexpr size_t kPiece = 32;
  size_t i = 0;
  for (; i + kPiece <= count; i += kPiece) {
    for (size_t k = 0; k < kPiece; ++k)
      strongest[i + k] = samples[i + k] > strongest[i + k] ? samples[i + k] : strongest[i + k];
  }
  for (; i < count; ++i) strongest[i] = std::max(samples[i], strongest[i]);
}

uint8_t StepOf(uint32_t amplitude) {
  return static_cast<uint8_t>(amplitude < kFirstVisible ? 0
                                                        : std::min(amplitude, kStrongest) / kAmplitudeOfStep);
}

}  // namespace

EchogramColumns::EchogramColumns(size_t mostColumns, size_t rows, float soundSpeed_mps, double from_m,
                                 double to_m)
    : mostColumns_(mostColumns),
      rows_(rows),
      soundSpeed_mps_(UsableSoundSpeed(soundSpeed_mps)),
      from_m_(to_m > from_m ? from_m : 0),
      fixed_(to_m > from_m),
      height_m_(to_m > from_m ? to_m - from_m : kFirstHeight_m) {}

void EchogramColumns::Gather(std::span<const uint16_t> samples) {
  if (gathered_.size() < samples.size()) gathered_.resize(samples.size());
  TakeStrongest(samples.data(), samples.size(), gathered_.data());
}

// Every row takes the strongest of its samples, at least the one at its top.
void EchogramColumns::Spread() {
  if (gathered_.empty() || scale_.sampling_hz == 0) return;
  const double samplesOfMetre = 2.0 * scale_.sampling_hz / soundSpeed_mps_;
  const double reach_m = std::min(static_cast<double>(gathered_.size()) / samplesOfMetre, kDeepestRow_m);
  if (!fixed_ && reach_m > height_m_) Deepen(reach_m);
  deepest_m_ = std::max(deepest_m_, reach_m);
  const double samplesOfRow = height_m_ / static_cast<double>(rows_) * samplesOfMetre;
  const double first = from_m_ * samplesOfMetre;
  const auto count = static_cast<double>(gathered_.size());
  uint16_t* const column = Column(columns_ - 1);
  for (size_t row = 0; row < rows_; ++row) {
    const double top = first + samplesOfRow * static_cast<double>(row);
    if (top >= count) break;
    const auto begin = static_cast<size_t>(top);
    const auto end = std::max(begin + 1, static_cast<size_t>(std::min(top + samplesOfRow, count)));
    const uint32_t strongest = *std::max_element(gathered_.begin() + static_cast<std::ptrdiff_t>(begin),
                                                 gathered_.begin() + static_cast<std::ptrdiff_t>(end));
    const uint32_t amplitude = std::min(strongest * scale_.factor, kStrongest);
    column[row] = std::max(column[row], static_cast<uint16_t>(amplitude));
  }
  gathered_.clear();
}

void EchogramColumns::Deepen(double to_m) {
  while (height_m_ < to_m) {
    for (size_t i = 0; i < columns_; ++i) {
      uint16_t* const column = Column(i);
      for (size_t row = 0; row < rows_ / 2; ++row)
        column[row] = std::max(column[2 * row], column[2 * row + 1]);
      std::fill(column + rows_ / 2, column + rows_, uint16_t{0});
    }
    height_m_ *= 2;
  }
}

void EchogramColumns::HalveColumns() {
  for (size_t i = 0; i < columns_ / 2; ++i) {
    const uint16_t* const left = Column(2 * i);
    const uint16_t* const right = Column(2 * i + 1);
    std::transform(left, left + rows_, right, Column(i),
                   [](uint16_t a, uint16_t b) { return std::max(a, b); });
  }
  columns_ /= 2;
  cells_.resize(columns_ * rows_);
  pingsOfColumn_ *= 2;
}

void EchogramColumns::CloseColumn() {
  Spread();
  pingsOfOpen_ = 0;
}

void EchogramColumns::Add(const RecordedPing& ping) {
  if (pingsOfOpen_ == 0) {
    if (columns_ == mostColumns_) HalveColumns();
    if (cells_.capacity() == 0) cells_.reserve(mostColumns_ * rows_);
    ++columns_;
    cells_.resize(columns_ * rows_);
  }
  const Scale scale{ping.header.samplingFrequency_hz, ping.factor};
  if (!ping.samples.empty()) {
    if (scale != scale_) Spread();
    scale_ = scale;
    Gather(ping.samples);
  }
  if (++pingsOfOpen_ >= pingsOfColumn_) CloseColumn();
}

void EchogramColumns::End() {
  CloseColumn();
}

void EchogramColumns::DrawRow(size_t y, size_t height, std::span<uint8_t> out) const {
  const double rowsOfPixel =
      (To_m() - from_m_) / height_m_ * static_cast<double>(rows_) / static_cast<double>(height);
  const auto top = std::min(rows_ - 1, static_cast<size_t>(rowsOfPixel * static_cast<double>(y)));
  const auto bottom =
      std::clamp(static_cast<size_t>(rowsOfPixel * static_cast<double>(y + 1)), top + 1, rows_);
  const size_t width = out.size();
  for (size_t x = 0; x < width; ++x) {
    const size_t left = x * columns_ / width;
    const size_t right = std::max(left + 1, (x + 1) * columns_ / width);
    uint32_t strongest = 0;
    for (size_t i = left; i < right && i < columns_; ++i) {
      const uint16_t* const column = cells_.data() + i * rows_;
      for (size_t row = top; row < bottom; ++row) strongest = std::max<uint32_t>(strongest, column[row]);
    }
    out[x] = StepOf(strongest);
  }
}

}  // namespace tw::echotool
