// Shows the wait cursor for a scope, so that each way out of it restores the arrow. GUI thread.
//
// Of a command that keeps the window busy for seconds it also throws away what the operator clicked and typed
// meanwhile: it would reach a window that looks different by then, or answer a box that he has not seen.
#pragma once

#include "app/window/ui.h"

namespace tw {

class [[nodiscard]] WaitPointer {
 public:
  WaitPointer() { ShowPointer(PointerShape::wait); }
  explicit WaitPointer(AppState& busy) : busy_(&busy) { ShowPointer(PointerShape::wait); }
  ~WaitPointer() {
    Restore();
    if (busy_ != nullptr) CarryOutKeptInput(*busy_);
  }
  WaitPointer(const WaitPointer&) = delete;
  WaitPointer& operator=(const WaitPointer&) = delete;

  // Before a message box, and where the work is over before the scope is.
  void Restore() {
    if (busy_ != nullptr) DropQueuedInput(*busy_);
    if (waiting_) ShowPointer(PointerShape::arrow);
    waiting_ = false;
  }

 private:
  AppState* busy_ = nullptr;
  bool waiting_ = true;
};

}  // namespace tw
