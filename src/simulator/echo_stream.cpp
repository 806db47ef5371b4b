#include "simulator/echo_stream.h"

#include <algorithm>
#include <vector>

#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

// Of all files of forms, ascending.
std::vector<StreamMode> Gather(std::span<const StreamMode> StreamRows::*family) {
  std::vector<StreamMode> modes;
  for (const StreamRows* const rows : {&kTextRows, &kBlockRows, &kEpochRows, &kLineRows}) {
    modes.insert(modes.end(), (rows->*family).begin(), (rows->*family).end());
  }
  std::sort(modes.begin(), modes.end(), [](const StreamMode& left, const StreamMode& right) {
    return left.outputMode < right.outputMode;
  });
  return modes;
}

}  // namespace

std::span<const StreamMode> StreamModesOf(DeviceFamily family) {
  static const std::vector<StreamMode> kFirstFamily = Gather(&StreamRows::first);
  static const std::vector<StreamMode> kOtherFamilies = Gather(&StreamRows::others);
  return family == DeviceFamily::first ? kFirstFamily : kOtherFamilies;
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
