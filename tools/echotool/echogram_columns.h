// The echogram of a whole recording in one pass and bounded memory: a picture of few columns, of each of
// which the strongest echo of its pings is kept. Pings come one by one and nobody knows how many there will
// be, so when all columns are taken two become one. Depths likewise: the rows reach twice as deep when a ping
// does not fit. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "playback/ping_source.h"

namespace tw::echotool {

inline constexpr double kDeepestRow_m = 15'000.0;  // nothing on earth is below; samples beyond are left out

class EchogramColumns {
 public:
  // At most so many columns and rows (both even). `to_m` above 0: the rows are the depths from `from_m` on to
  // that one.
  EchogramColumns(size_t mostColumns, size_t rows, float soundSpeed_mps, double from_m = 0, double to_m = 0);

  void Add(const RecordedPing& ping);
  void End();  // behind the last ping

  // Every column stands for so many pings, the last one for as many or fewer.
  [[nodiscard]] uint64_t PingsOfColumn() const { return pingsOfColumn_; }
  [[nodiscard]] size_t Columns() const { return columns_; }
  [[nodiscard]] bool IsEmpty() const { return deepest_m_ <= 0; }
  [[nodiscard]] double From_m() const { return from_m_; }
  // Up to the last sample of all pings, where no depths were asked for.
  [[nodiscard]] double To_m() const { return fixed_ ? from_m_ + height_m_ : deepest_m_; }

  // The picture that wide and high, as steps of 0 to 255 of the amplitudes up to 4,095; a pixel is the
  // strongest of all that it stands for. Calls `row(bytes)` for each row, from the top, until it declines.
  template <typename Row>
  [[nodiscard]] bool Draw(size_t width, size_t height, Row row) const {
    std::vector<uint8_t> bytes(width);
    for (size_t y = 0; y < height; ++y) {
      DrawRow(y, height, bytes);
      if (!row(std::span<const uint8_t>(bytes))) return false;
    }
    return true;
  }

 private:
  // What pings must have in common to be compared sample by sample.
  struct Scale {
    uint32_t sampling_hz;
    uint16_t factor;
    bool operator==(const Scale&) const = default;
  };

  void Gather(std::span<const uint16_t> samples);
  void Spread();  // what has been gathered, into the column
  void CloseColumn();
  void HalveColumns();
  void Deepen(double to_m);
  void DrawRow(size_t y, size_t height, std::span<uint8_t> out) const;
  [[nodiscard]] uint16_t* Column(size_t index) { return cells_.data() + index * rows_; }

  const size_t mostColumns_;
  const size_t rows_;
  const double soundSpeed_mps_;
  const double from_m_;
  const bool fixed_;
  double height_m_;
  double deepest_m_ = 0;
  size_t columns_ = 0;  // that are closed, and the open one if a ping is in it
  uint64_t pingsOfColumn_ = 1;
  uint64_t pingsOfOpen_ = 0;  // of the last column; 0: none is open
  Scale scale_{};
  std::vector<uint16_t> gathered_;
  std::vector<uint16_t> cells_;  // column by column, from the top
};

}  // namespace tw::echotool
