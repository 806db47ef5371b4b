// Shows in the status bar, for a scope, what is said to the device: a command keeps the window busy for
// seconds. GUI thread.
#pragma once

#include "app/window/wait_pointer.h"

namespace tw {

// From the first text on until End() or the end of the scope; the text that stood there comes back then.
class [[nodiscard]] ShownTalk {
 public:
  ShownTalk(AppState& state, const wchar_t* first);
  ~ShownTalk() { End(); }
  ShownTalk(const ShownTalk&) = delete;
  ShownTalk& operator=(const ShownTalk&) = delete;

  void End();

 private:
  AppState& state_;
};

// A command that talks to the device: the wait cursor and the talk.
class [[nodiscard]] BusyTalk {
 public:
  BusyTalk(AppState& state, const wchar_t* first) : pointer_(state), talk_(state, first) {}

  // Before a message box.
  void Restore() {
    talk_.End();
    pointer_.Restore();
  }

 private:
  WaitPointer pointer_;
  ShownTalk talk_;
};

}  // namespace tw
