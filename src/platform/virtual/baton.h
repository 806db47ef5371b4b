// The virtual clock's scheduler. Threads that were registered with it run one at a time: whoever holds the
// baton runs, and passes it on when it waits. The thread with the earliest wake time goes next, ties by
// thread number, and the time jumps to that moment. A thread that is alone only moves the time.
//
// All of this is for the files beside this one; tests use virtual_clock.h. Except where it says otherwise, a
// function may be called only by the thread that holds the baton.
#pragma once

#include <cstdint>

namespace tw::baton {

struct Seat;

// True when the calling thread is registered. Any thread.
[[nodiscard]] bool Held();

// Virtual time since the clock was started, in microseconds.
[[nodiscard]] int64_t Now_us();

// Passes the baton on until somebody wakes `channel` or the time has come (kNever: without limit). `what`
// says in a word or two what the thread waits for. True when woken. When every thread waits without limit,
// the program aborts and says who waits for what.
bool Wait(const void* channel, int64_t deadline_us, const char* what);

// Makes the threads that wait for `channel` ready; they run when the baton comes to them.
void WakeAll(const void* channel);
// The same for the one that has waited longest. False when none waits.
bool WakeOne(const void* channel);

// Moves the time on, and passes nothing on: who should have run meanwhile is late.
void Leap(int64_t duration_us);

// What a call costs that would take no time: one microsecond, so that a spinning loop ends and others get
// their turn. Nothing for a thread that is not registered. Hold no lock of theirs meanwhile.
void Poll();

// Registers a thread that is about to start (ready at once); that thread first calls SitDown, which waits for
// the baton, and at its end StandUp, which passes it on for good. DropSeat takes the registration back when
// the thread could not be started.
[[nodiscard]] Seat* AddSeat();
void DropSeat(Seat* seat);
void SitDown(Seat* seat);
void StandUp();

// Registers the calling thread as number 0, at time 0. No clock may run.
void Begin();
// Lets the other threads run until they have ended, at most `limit_us`; those still there then make the
// program abort. Then the calling thread, number 0, is registered no more.
void End(int64_t limit_us);

}  // namespace tw::baton
