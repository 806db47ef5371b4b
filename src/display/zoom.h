// What one notch of the mouse wheel does to a display range or a time scale. Pure functions.
#pragma once

#include <cstdint>

namespace tw {

inline constexpr int32_t DisplayRangeSteps[] = {  // mm
    1'000,  2'000,  3'000,  5'000,  10'000, 15'000,  20'000,  30'000,  40'000,
    50'000, 60'000, 70'000, 80'000, 90'000, 100'000, 120'000, 150'000, 200'000};

inline constexpr int32_t TimeScaleSteps[] = {10, 20, 30, 60, 120, 150, 180, 210, 240, 270, 300};  // s

enum class WheelTurn : uint8_t { forward, back };

// The range after one notch: forward the next smaller step, back the next larger one, from the step nearest
// to the current range. Never below 1,000 mm, never above the device's range; 1,000 mm when that is no step.
[[nodiscard]] int32_t ZoomedRange(int32_t range_mm, int32_t deviceRange_mm, WheelTurn turn);

// The same for the time scale, over all of its steps.
[[nodiscard]] int32_t ZoomedTimeScale(int32_t timeScale_s, WheelTurn turn);

}  // namespace tw
