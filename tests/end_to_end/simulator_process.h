// echosim as a process of its own on two pseudo terminals, and the program but its window at their other end,
// on the real clock.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "app/run/record_set_up.h"
#include "app/window/control_ids.h"
#include "app/window/start_up.h"
#include "platform/virtual/documents_folder.h"
#include "platform/virtual/memory_registry.h"
#include "platform/virtual/serial_peer.h"
#include "tests/app/recording_ui.h"
#include "tests/app/test_folder.h"

extern char** environ;

namespace tw::test {

// Runs for as long as the object lives. The terminals are linked to "sounder" and "gps" in the folder.
class SimulatorProcess {
 public:
  SimulatorProcess(const char* program, const TestFolder& folder, std::vector<std::string> words) {
    const std::filesystem::path sounder = folder.Path() / "sounder";
    const std::filesystem::path gps = folder.Path() / "gps";
    words.insert(words.begin(), {program, "--link", sounder, "--gps-link", gps});
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    EXPECT_EQ(posix_spawn(&process_, program, nullptr, nullptr, arguments.data(), environ), 0);
    using std::chrono::steady_clock;
    const auto deadline = steady_clock::now() + std::chrono::seconds(20);
    while (!(std::filesystem::exists(sounder) && std::filesystem::exists(gps)) &&
           steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  ~SimulatorProcess() {
    kill(process_, SIGTERM);
    kill(process_, SIGCONT);  // in case it is held
    int status = 0;
    EXPECT_EQ(waitpid(process_, &status, 0), process_);
  }
  // It falls silent, with its terminals open, and goes on where it stood.
  void Hold() { EXPECT_EQ(kill(process_, SIGSTOP), 0); }
  void Release() { EXPECT_EQ(kill(process_, SIGCONT), 0); }
  SimulatorProcess(const SimulatorProcess&) = delete;
  SimulatorProcess& operator=(const SimulatorProcess&) = delete;

 private:
  pid_t process_ = -1;
};

// COM5 is the echosounder, COM6 the receiver, at these speeds.
inline AppState& StartedProgram(const TestFolder& folder, const wchar_t* speed, const wchar_t* gpsSpeed) {
  SetDocumentsFolder(folder.Path().c_str());
  ClearRegistry();
  DetachSerialLines();
  SetSerialLineList({L"COM5", L"COM6"});
  AttachTerminal(L"\\\\.\\COM5", (folder.Path() / "sounder").c_str());
  AttachTerminal(L"\\\\.\\COM6", (folder.Path() / "gps").c_str());
  ResetUi();
  AppState& state = *AllocateState();
  StartUp(state);
  state.initialised = 1;
  Ui().Choose(ID_DEVICE_PORT, L"COM5");
  Ui().Choose(ID_DEVICE_SPEED, speed);
  Ui().Choose(ID_GPS_PORT, L"COM6");
  Ui().Choose(ID_GPS_SPEED, gpsSpeed);
  return state;
}

}  // namespace tw::test
