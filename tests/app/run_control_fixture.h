// A started program under the virtual clock, without a window: a state record as the main window leaves it
// after start-up, COM5 for a device and COM6 for a GPS receiver, a working folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "acquisition/ping_record.h"
#include "app/state/app_state.h"
#include "app/window/control_ids.h"
#include "simulator/virtual_echosounder.h"
#include "simulator/virtual_gps.h"
#include "tests/app/recording_ui.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/simulator_peer.h"

namespace tw::test {

inline constexpr wchar_t kDeviceLine[] = L"\\\\.\\COM5";
inline constexpr wchar_t kGpsLine[] = L"\\\\.\\COM6";

// A device that is asked little and pings ten times a second.
[[nodiscard]] sim::SounderOptions QuickSounder(int32_t outputMode = 2, bool dual = false);

class RunControlTest : public testing::Test {
 protected:
  RunControlTest();
  ~RunControlTest() override;

  // Puts an instrument behind its line; the receiver is chosen, too. Not more than once a test.
  void ConnectSounder(const sim::SounderOptions& options, sim::PingObserver* observer = nullptr);
  void ConnectGps(const sim::GpsOptions& options = {});
  void ChooseGps() { Ui().Choose(ID_GPS_PORT, L"COM6"); }

  // Connects a device, starts a run that must succeed, and lets it go on.
  void StartQuickRun(int seconds = 0, const sim::SounderOptions& options = QuickSounder());
  // "Record Data", as a click does it.
  void SetRecording(bool on);
  // Of the first ring, or of the second one.
  [[nodiscard]] int32_t NewestSlot(bool second = false) const;
  [[nodiscard]] PingHeader NewestPing(bool second = false) const;

  static Control& Of(int id) { return Ui().controls[id]; }

  // Lets the program run, its one-second timer included.
  void Run(int seconds);

  // The names of the record files, in their order; and the content of one.
  [[nodiscard]] std::vector<std::string> RecordFiles() const;
  [[nodiscard]] std::string Content(const std::string& name) const { return ReadWhole(records_ / name); }

  // What every failure leaves behind.
  void ExpectIdle() const;
  // The one message box since the last call.
  static void ExpectBox(const wchar_t* text, const wchar_t* caption, BoxIcon icon,
                        BoxButtons buttons = BoxButtons::ok);
  static void ExpectErrorBox(const wchar_t* text) { ExpectBox(text, L"Error", BoxIcon::error); }

  const TestFolder testFolder_;
  const std::filesystem::path& folder_ = testFolder_.Path();
  const std::filesystem::path records_ = folder_ / "TIDEWRITERR57_DATA";
  AppState* state_;
  std::unique_ptr<sim::VirtualEchosounder> sounder_;
  std::unique_ptr<sim::VirtualGps> gps_;
  std::unique_ptr<SimulatorPeer> sounderPeer_;
  std::unique_ptr<SimulatorPeer> gpsPeer_;
};

}  // namespace tw::test
