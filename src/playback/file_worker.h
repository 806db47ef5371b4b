// The file-reading worker: plays a recording into the ping rings at the pace of a live run, or converts it as
// fast as it can be read. The GUI thread opens the input (and a conversion's output), hands over the
// recording that it found in it and starts the thread; it steers it with the events of the state record:
//
//   stopEvent (A), stopEventB (B)                            end
//   runEvents[kPause]                                        hold
//   runEvents[kBack20], runEvents[kBack100]                  a step of A through its history, held or not
//   runEvents[kStepSecond]                                   A tells B to follow to stepTime_ms
//   seekRequest                                              where the slider was dragged to
//
// At the end of the file a playback says so (playbackEnded) and waits for the way back; a conversion ends.
// One that cannot go on tells the status bar why and ends too; of a playback it says so (playbackEnded), so
// that the GUI thread leaves the program idle. B keeps to A's recorded time (firstTime_ms). The worker closes
// its input and its own thread handle, a conversion its output too.
#pragma once

#include <memory>

#include "app/state/app_state.h"
#include "playback/ping_source.h"

namespace tw {

// Lays a recording out for the worker that is started next, which takes it as its first step: `place` is
// recordingA or recordingB. It stands at its start and reads the file of its side, which the worker closes.
// What an earlier worker did not come to take is freed. GUI thread.
void HandOver(PingSource*& place, std::unique_ptr<PingSource> recording);

// Thread bodies; `state` is the state record. A plays inputFileA, and of a file of both channels the low one
// as well; B plays inputFileB into ring B.
void FileWorkerA(void* state);
void FileWorkerB(void* state);

// What the status bar says of a playback or conversion that cannot go on. A constant.
[[nodiscard]] const wchar_t* PlaybackFailureText(PlaybackEnd end);

}  // namespace tw
