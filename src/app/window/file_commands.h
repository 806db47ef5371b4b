// Playback and conversions as the operator runs them: choosing files, starting and steering the file workers,
// their end. GUI thread. They run only without a device; every refusal is told in a message box.
#pragma once

#include "app/state/app_state.h"
#include "app/state/slider_messages.h"

namespace tw {

// "Playback": asks for one file or the pair of a dual recording, and plays it.
void PlayFiles(AppState& state);

// "►", "ll", "◄" and "◄◄". After the end "►" begins again.
void ResumePlayback(AppState& state);
void PausePlayback(AppState& state);
void StepPlaybackBack(AppState& state, RunEvent step);

// A worker tells how far it is. After the end this means that the slider has sent it back.
void NotePlaybackProgress(AppState& state, const ProgressBlock& progress);

// "Bin/Txt To Seg-Y" and "Bin To Txt": ask for one file; the output goes to the working folder.
void ConvertToSegy(AppState& state);
void ConvertToText(AppState& state);

// A conversion has ended; `exhausted` when it read all of its input.
void HandleConversionEnd(AppState& state, bool exhausted);

}  // namespace tw
