// Recordings of every kind, made of what the virtual echosounder sends: the settings line that a record file
// begins with, then its stream.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/sounder_options.h"

namespace tw::test {

struct SampleKind {
  const char* name;
  sim::DeviceFamily family;
  int32_t outputMode;
  bool hasInfo = true;  // older recordings have no settings line
  sim::BinaryForm binaryForm = sim::BinaryForm::frame;
};

// One of each form that a recording can have, and each mode of the families 1 and 2, whose modes the third
// has too.
[[nodiscard]] const std::vector<SampleKind>& SampleKinds();

// So many messages of it; of modes with samples, 100 in each unless said otherwise.
[[nodiscard]] std::string SampleRecording(const SampleKind& kind, size_t messages, int32_t samples = 100);

}  // namespace tw::test
