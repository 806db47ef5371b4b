#include <atomic>
#include <thread>

#include "platform/host/serial_peer.h"
#include "tests/platform/echo_line.h"
#include "tests/platform/echo_terminal.h"

namespace tw {

struct EchoLine::Terminal {
  EchoTerminal terminal;
  std::atomic<bool> ends = false;
  std::thread echo;
};

EchoLine::EchoLine() : terminal_(std::make_unique<Terminal>()) {
  if (!terminal_->terminal.IsOpen()) return;
  name_ = L"\\\\.\\COM7";
  AttachTerminal(name_.c_str(), terminal_->terminal.Path().c_str());
  SetSerialLineList({L"COM3", ListedName()});
  terminal_->echo = std::thread([inside = terminal_.get()] {
    while (!inside->ends && inside->terminal.Echo(10)) {
    }
  });
}

EchoLine::~EchoLine() {
  terminal_->ends = true;
  if (terminal_->echo.joinable()) terminal_->echo.join();
  DetachSerialLines();
}

bool EchoLine::IsExclusive() {
  return true;
}

}  // namespace tw
