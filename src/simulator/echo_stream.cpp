#include "simulator/echo_stream.h"

#include <algorithm>
#include <iterator>

#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

using enum StreamKind;

constexpr StreamMode kFirstFamily[] = {
    {1, line, AppendSimple, 0, 0, false, false},
    {2, echoText, AppendFirstFamilyText, 10, 0, true, false},
    {3, epoch, AppendFirstFamilyEpoch, 0, 0, true, false},
    {4, echoText, AppendFirstFamilyText, 12, 0, true, false},
    {6, line, AppendDeso25, 0, 0, false, false},
    {7, line, AppendAltimeterDual, 0, 0, false, true},
    {8, line, AppendSonarmiteDfx, 0, 0, false, true},
    {9, line, AppendSonarmiteOld, 0, 0, false, true},
    {100, block, AppendDeviceBlock, 12, 0, true, false},
    {101, compandedBlock, AppendCompandedBlock, 12, 0, true, false},
};

// The second and the third family send the same.
constexpr StreamMode kSecondFamily[] = {
    {1, line, AppendSimple, 0, 0, false, false},
    {2, echoText, AppendSecondFamilyText, 10, 0, true, false},
    {3, epoch, AppendSecondFamilyEpoch, 0, 0, false, false},
    {4, echoText, AppendSecondFamilyText, 12, 200, true, false},
    {5, echoText, AppendSecondFamilyText, 12, 500, true, false},
    {6, echoText, AppendSecondFamilyText, 12, 1'000, true, false},
    {7, line, AppendPsa916, 0, 0, false, false},
    {8, line, AppendAltiPlusTemp, 0, 0, false, false},
    {9, line, AppendSonarmiteDfx, 0, 0, false, true},
    {10, line, AppendSonarmiteOld, 0, 0, false, true},
    {100, block, AppendDeviceBlock, 10, 0, true, false},
    {101, compandedBlock, AppendCompandedBlock, 12, 0, true, false},
};

constexpr StreamMode kFrame = {100, frame, AppendFrame, 12, 0, true, true};
constexpr StreamMode kDualFrame = {100, frame, AppendDualFrame, 12, 0, true, false};

}  // namespace

std::span<const StreamMode> StreamModesOf(DeviceFamily family) {
  switch (family) {
    case DeviceFamily::first:
      return kFirstFamily;
    case DeviceFamily::second:
    case DeviceFamily::third:
      return kSecondFamily;
  }
  return {};
}

const StreamMode* FindStreamMode(DeviceFamily family, int32_t outputMode) {
  const auto modes = StreamModesOf(family);
  const auto at = std::find_if(modes.begin(), modes.end(),
                               [&](const StreamMode& mode) { return mode.outputMode == outputMode; });
  return at == modes.end() ? nullptr : &*at;
}

const StreamMode* FindBinaryForm(BinaryForm form) {
  switch (form) {
    case BinaryForm::block:
      return nullptr;
    case BinaryForm::frame:
      return &kFrame;
    case BinaryForm::dualFrame:
      return &kDualFrame;
  }
  return nullptr;
}

}  // namespace tw::sim
