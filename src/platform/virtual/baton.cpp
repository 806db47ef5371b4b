#include "platform/virtual/baton.h"

#include <semaphore.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "platform/virtual/virtual_clock.h"

namespace tw::baton {

struct Seat {
  uint32_t number = 0;
  int64_t wake_us = 0;
  const void* channel = nullptr;
  const char* what = "start";
  uint64_t waitNumber = 0;  // order of waiting, so that WakeOne is fair
  bool woken = false;
  sem_t turn;
};

namespace {

// Touched only by the holder of the baton; handing it over orders the accesses.
struct Table {
  std::vector<Seat*> seats;  // by number
  int64_t now_us = 0;
  uint32_t nextNumber = 0;
  uint64_t waits = 0;
  // The earliest of those that wait, so that a poll need not look at them all.
  int64_t rivalWake_us = kNever;
  uint32_t rivalNumber = 0;
};

Table& Shared() {
  static Table* const table = new Table;  // never freed: threads may outlive main
  return *table;
}

thread_local Seat* mySeat = nullptr;

[[nodiscard]] bool GoesBefore(int64_t wake_us, uint32_t number, const Seat& other) {
  return wake_us != other.wake_us ? wake_us < other.wake_us : number < other.number;
}

// The one whose turn is next; `except` (may be null) is left out.
[[nodiscard]] Seat* Earliest(const Seat* except) {
  Seat* best = nullptr;
  for (Seat* seat : Shared().seats) {
    if (seat != except && (best == nullptr || GoesBefore(seat->wake_us, seat->number, *best))) best = seat;
  }
  return best;
}

void NoteRival() {
  const Seat* rival = Earliest(mySeat);
  Shared().rivalWake_us = rival != nullptr ? rival->wake_us : kNever;
  Shared().rivalNumber = rival != nullptr ? rival->number : 0;
}

[[noreturn]] void AbortWith(const char* reason) {
  std::fprintf(stderr, "virtual clock at %" PRId64 " us: %s\n", Shared().now_us, reason);
  for (const Seat* seat : Shared().seats) {
    std::fprintf(stderr, "  thread %" PRIu32 " waits for %s (%p)\n", seat->number, seat->what, seat->channel);
  }
  std::abort();
}

// Moves the time on and gives the baton to `next`, who is not the caller.
void PassTo(Seat& next) {
  Shared().now_us = std::max(Shared().now_us, next.wake_us);
  sem_post(&next.turn);
}

void AwaitTurn(Seat& seat) {
  while (sem_wait(&seat.turn) != 0) {
  }
}

void MakeReady(Seat& seat) {
  seat.woken = true;
  seat.channel = nullptr;
  seat.wake_us = std::min(seat.wake_us, Shared().now_us);
}

[[nodiscard]] Seat* NewSeat() {
  Seat* const seat = new Seat;
  sem_init(&seat->turn, 0, 0);
  seat->number = Shared().nextNumber++;
  seat->wake_us = Shared().now_us;
  Shared().seats.push_back(seat);
  return seat;
}

void FreeSeat(Seat* seat) {
  std::erase(Shared().seats, seat);
  sem_destroy(&seat->turn);
  delete seat;
}

}  // namespace

bool Held() {
  return mySeat != nullptr;
}

int64_t Now_us() {
  return Shared().now_us;
}

bool Wait(const void* channel, int64_t deadline_us, const char* what) {
  Seat& self = *mySeat;
  self.wake_us = deadline_us;
  self.channel = channel;
  self.what = what;
  self.waitNumber = Shared().waits++;
  self.woken = false;
  Seat* const next = Earliest(nullptr);
  if (next->wake_us == kNever) AbortWith("every thread waits without limit");
  if (next == &self) {
    Shared().now_us = std::max(Shared().now_us, deadline_us);
  } else {
    PassTo(*next);
    AwaitTurn(self);
    NoteRival();
  }
  self.channel = nullptr;
  return self.woken;
}

void WakeAll(const void* channel) {
  for (Seat* seat : Shared().seats) {
    if (seat != mySeat && seat->channel == channel) MakeReady(*seat);
  }
  NoteRival();
}

bool WakeOne(const void* channel) {
  Seat* longest = nullptr;
  for (Seat* seat : Shared().seats) {
    const bool waits = seat != mySeat && seat->channel == channel;
    if (waits && (longest == nullptr || seat->waitNumber < longest->waitNumber)) longest = seat;
  }
  if (longest == nullptr) return false;
  MakeReady(*longest);
  NoteRival();
  return true;
}

void Leap(int64_t duration_us) {
  Shared().now_us += duration_us;
}

void Poll() {
  if (mySeat == nullptr) return;
  Table& table = Shared();
  ++table.now_us;
  const bool rivalFirst = table.rivalWake_us < table.now_us ||
                          (table.rivalWake_us == table.now_us && table.rivalNumber < mySeat->number);
  if (rivalFirst) Wait(nullptr, table.now_us, "its turn");
}

Seat* AddSeat() {
  Seat* const seat = NewSeat();
  NoteRival();
  return seat;
}

void DropSeat(Seat* seat) {
  FreeSeat(seat);
  NoteRival();
}

void SitDown(Seat* seat) {
  AwaitTurn(*seat);
  mySeat = seat;
  NoteRival();
}

void StandUp() {
  FreeSeat(mySeat);
  mySeat = nullptr;
  Seat* const next = Earliest(nullptr);
  if (next == nullptr) return;
  if (next->wake_us == kNever) AbortWith("a thread ended and every other waits without limit");
  PassTo(*next);
}

void Begin() {
  if (!Shared().seats.empty()) AbortWith("started while it runs");
  Shared() = Table{};
  mySeat = NewSeat();
}

void End(int64_t limit_us) {
  if (mySeat == nullptr || mySeat->number != 0) AbortWith("stopped by another thread than started it");
  const int64_t deadline_us = Shared().now_us + limit_us;
  while (Shared().seats.size() > 1) {
    if (Shared().now_us >= deadline_us) AbortWith("stopped, but threads go on");
    const Seat* const other = Earliest(mySeat);
    Wait(nullptr, std::clamp(other->wake_us, Shared().now_us + 1, deadline_us), "the other threads' end");
  }
  FreeSeat(mySeat);
  mySeat = nullptr;
}

}  // namespace tw::baton
