#include "platform/debug_output.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "platform/virtual/debug_capture.h"

namespace tw {
namespace {

struct Capture {
  std::atomic<bool> listening = false;
  std::mutex mutex;
  std::vector<std::wstring> texts;
};

Capture& Shared() {
  static Capture* const capture = new Capture;
  return *capture;
}

}  // namespace

void StartDebugCapture() {
  Shared().listening = true;
}

std::vector<std::wstring> TakeDebugTexts() {
  const std::lock_guard held(Shared().mutex);
  return std::exchange(Shared().texts, {});
}

void StopDebugCapture() {
  Shared().listening = false;
  const std::lock_guard held(Shared().mutex);
  Shared().texts.clear();
}

void WriteDebugText(const wchar_t* text) {
  if (!Shared().listening) return;
  const std::lock_guard held(Shared().mutex);
  Shared().texts.emplace_back(text);
}

}  // namespace tw
