// Playback and conversions as the operator runs them: choosing files, starting and steering the file workers,
// their end. GUI thread. They run only without a device; every refusal is told in a message box.
#pragma once

#include <string>
#include <vector>

#include "app/state/app_state.h"
#include "app/state/slider_messages.h"

namespace tw {

// "Playback": asks for one file or the pair of a dual recording, and plays it.
void PlayFiles(AppState& state);

// The same for files that were dropped on the window. What cannot be taken at the moment is told in the
// status bar.
void PlayDropped(AppState& state, const std::vector<std::wstring>& paths);

// One of those that were played last; one that is gone is told and forgotten.
void PlayRecent(AppState& state, size_t index);

// Shows the file that is played, or was recorded or converted last, in its folder; without one the working
// folder.
void ShowInFolder(AppState& state);

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
