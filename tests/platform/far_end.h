// The far end of a pseudo terminal of this process, which sends back what it gets for the object's life.
#pragma once

#include <atomic>
#include <memory>
#include <thread>

#include "tests/platform/echo_terminal.h"

namespace tw {

struct FarEnd {
  FarEnd() {
    if (!terminal.IsOpen()) return;
    echo = std::thread([this] {
      while (!ends && terminal.Echo(10)) {
      }
    });
  }
  ~FarEnd() {
    ends = true;
    if (echo.joinable()) echo.join();
  }

  EchoTerminal terminal;
  std::atomic<bool> ends = false;
  std::thread echo;
};

}  // namespace tw
