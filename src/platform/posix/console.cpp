#include "platform/console.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace tw {
namespace {

std::atomic<std::atomic<bool>*> watched = nullptr;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<std::atomic<bool>*>::is_always_lock_free);

void Interrupt(int) {
  watched.load()->store(true);
}

}  // namespace

bool IsErrorTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

// Terminals here do so anyway.
Utf8Console::Utf8Console() = default;
Utf8Console::~Utf8Console() = default;

void WriteError(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void WatchInterruption(std::atomic<bool>& stop) {
  watched.store(&stop);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    if (std::signal(number, Interrupt) == SIG_IGN) std::signal(number, SIG_IGN);
  }
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace tw
