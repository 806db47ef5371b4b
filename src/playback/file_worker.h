// The file-reading worker: plays a recording into the ping rings at the pace of a live run, or converts it as
// fast as it can be read. The GUI thread opens the input (and a conversion's output) and starts the thread;
// it steers it with the events of the state record:
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

#include "app/state/app_state.h"

namespace tw {

// Thread bodies; `state` is the state record. A plays inputFileA, and of a file of both channels the low one
// as well; B plays inputFileB into ring B.
void FileWorkerA(void* state);
void FileWorkerB(void* state);

// What the status bar says of a playback or conversion that cannot go on. A constant.
[[nodiscard]] const wchar_t* PlaybackFailureText(PlaybackEnd end);

}  // namespace tw
