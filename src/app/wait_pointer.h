// Shows the wait cursor for a scope, so that each way out of it restores the arrow. GUI thread.
#pragma once

#include "app/ui.h"

namespace tw {

class [[nodiscard]] WaitPointer {
 public:
  WaitPointer() { ShowPointer(PointerShape::wait); }
  ~WaitPointer() { Restore(); }
  WaitPointer(const WaitPointer&) = delete;
  WaitPointer& operator=(const WaitPointer&) = delete;

  // Before a message box, and where the work is over before the scope is.
  void Restore() {
    if (waiting_) ShowPointer(PointerShape::arrow);
    waiting_ = false;
  }

 private:
  bool waiting_ = true;
};

}  // namespace tw
