#include "acquisition/synthetic_pulse.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "base/bytes.h"

namespace tw {
namespace {

constexpr double kSampleInterval_s = 0.00001;
constexpr uint16_t kPulse[] = {0, 921, 1842, 2764, 3685, 3685, 3685, 3685, 2764, 1842, 921, 0};

}  // namespace

void DrawPulse(SlotImage& image, double altitude_m, double soundSpeed_mps) {
  if (!(altitude_m >= 0) || !(soundSpeed_mps > 0)) return;
  // kept: the two divisions in this order and precision; 7.5 m at 1,500 m/s is sample 999, not 1,000.
  const double position = (altitude_m * 2 / soundSpeed_mps) / kSampleInterval_s;
  if (!(position < static_cast<double>(kMaxSlotSamples))) return;
  const auto first = static_cast<size_t>(position);
  // The leading zero stands one sample earlier; at 0 m that is the last word of the gap.
  const size_t start = kSlotSamples + 2 * first - 2;
  const size_t count = std::min(std::size(kPulse), (kSlotSize - start) / 2);
  if (start > image.reach) std::memset(image.bytes + image.reach, 0, start - image.reach);
  for (size_t i = 0; i < count; ++i) StoreLe(image.bytes + start + 2 * i, kPulse[i]);
  image.reach = start + 2 * count;
}

}  // namespace tw
