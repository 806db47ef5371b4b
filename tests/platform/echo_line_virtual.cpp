#include "platform/virtual/serial_peer.h"
#include "tests/platform/echo_line.h"
#include "tests/platform/far_end.h"

namespace tw {
namespace {

struct AttachedEnd : FarEnd {
  ~AttachedEnd() { DetachSerialLines(); }
};

}  // namespace

EchoLine::EchoLine() {
  const auto end = std::make_shared<AttachedEnd>();
  if (!end->terminal.IsOpen()) return;
  name_ = L"\\\\.\\COM7";
  AttachTerminal(name_.c_str(), end->terminal.Path().c_str());
  SetSerialLineList({L"COM3", ListedName()});
  farEnd_ = end;
}

bool EchoLine::IsListed() const {
  return true;
}

}  // namespace tw
