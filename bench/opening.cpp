// How long it takes to open a recording and to know what it is, first ping included.
//
//   opening RECORDING
#include <cstdio>
#include <string>

#include "base/text_format.h"
#include "bench/measure.h"
#include "playback/ping_source.h"

int main(int count, char** words) {
  if (count != 2) return 2;
  std::wstring path(4096, L'\0');
  path.resize(tw::WidenText(path, words[1]));
  bool opened = true;
  const double time_ms = tw::MedianMilliseconds([&] {
    tw::RecordingFault fault{};
    opened = opened && tw::OpenRecording(path.c_str(), fault) != nullptr;
  });
  std::printf("opening %.2f ms, asked below 100\n", time_ms);
  return opened ? 0 : 1;
}
