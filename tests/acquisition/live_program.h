// As much of the program as the acquisition worker needs: state record, rings, an open device port, files.
#pragma once

#include <string>

#include "acquisition/echo_text_stream.h"
#include "acquisition/ping_ring.h"
#include "acquisition/record_file.h"
#include "app/state/app_state.h"
#include "platform/thread.h"
#include "platform/virtual/serial_peer.h"
#include "tests/acquisition/posted_texts.h"
#include "tests/app/test_folder.h"

namespace tw::test {

inline constexpr wchar_t kDeviceLine[] = L"\\\\.\\COM7";

// A device of the first family in output mode 4, single, 12.5 and 40 m of range, 200 kHz in use,
// 1,500 m/s. Make it after the clock of the test has been started, if that is a virtual one.
class LiveProgram {
 public:
  explicit LiveProgram(SerialPeer& device);
  ~LiveProgram();
  LiveProgram(const LiveProgram&) = delete;
  LiveProgram& operator=(const LiveProgram&) = delete;

  [[nodiscard]] AppState& State() { return *state_; }

  void StartWorker(const StreamForm& form = kFirstTextStream);
  // Asks the worker to end, and waits until it has.
  void StopWorker();
  void WaitForWorker();

  // Puts a new record file, which begins with "INFO\r\n", into the channel.
  // Switches the log of events on, in the folder of the files.
  void LogEvents();

  void OpenFile(RecordChannel channel, const wchar_t* name);
  // "absent" when there is no such file.
  [[nodiscard]] std::string FileContent(const wchar_t* name) const;

  [[nodiscard]] int32_t IndexA();
  [[nodiscard]] int32_t IndexB();

 private:
  AppState* state_;
  TestFolder folder_;
};

// What stands behind a recorded ping while there is no fix at all.
inline const std::string kNoPosition =
    "$GPGGA,000000.00,00.0000,S,00.0000,W,0,00,0.0,0.000,M,0.000,M,0.0,0000*4c\r\n"
    "$GPRMC,000000.00,V,00.0000,S,00.0000,W,0.0,0.0,000100,0.0,W,A*0e\r\n";

// An echo text block with these values and one sample, 25,000 Hz; no transmit frequency when `tx_hz` is 0.
[[nodiscard]] std::string EchoBlock(uint32_t ping, int32_t tx_hz = 200'000);

}  // namespace tw::test
