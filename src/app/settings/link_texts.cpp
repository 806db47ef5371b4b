#include "app/settings/link_texts.h"

#include <cinttypes>

#include "base/text_format.h"

namespace tw {
namespace {

const char* TextOf(LinkStep step) {
  switch (step) {
    case LinkStep::listening:
      return "Listening for the device";
    case LinkStep::stopping:
      return "Stopping the device, attempt";
    case LinkStep::prompting:
      return "Waiting for the prompt, attempt";
    case LinkStep::lateReply:
      return "Waiting for a late reply";
    case LinkStep::receiver:
      return "Opening the GPS port";
    case LinkStep::asking:
      return "Asking for settings";
    case LinkStep::probing:
      return "Asking for the interface";
    case LinkStep::sending:
      return "Sending settings";
    case LinkStep::starting:
      return "Starting the device, command";
  }
  return "";
}

// The number of attempts tells nobody anything: most need one.
bool TellsCount(LinkStep step) {
  return step == LinkStep::asking || step == LinkStep::starting;
}

const char* ShortTextOf(Heard heard) {
  switch (heard) {
    case Heard::nothing:
      return "nothing";
    case Heard::echo:
      return "only the echo of what was sent";
    case Heard::noise:
      return "noise (wrong speed?)";
    case Heard::text:
      return "text, but no prompt";
    case Heard::prompt:
      return "a prompt, but not the settings";
    case Heard::receiver:
      return "GPS receiver";
  }
  return "";
}

}  // namespace

void FormatProgress(const LinkProgress& progress, std::span<wchar_t> text) {
  const char* const what = TextOf(progress.step);
  if (progress.number == 0) {
    FormatWide(text, "%s", what);
  } else if (TellsCount(progress.step) && progress.count != 0) {
    FormatWide(text, "%s %" PRId32 " of %" PRId32, what, progress.number, progress.count);
  } else {
    FormatWide(text, "%s %" PRId32, what, progress.number);
  }
}

void FormatNews(const SearchNews& news, std::span<wchar_t> text) {
  switch (news.outcome) {
    case SearchOutcome::trying:
      FormatWide(text, "%s", "is tried");
      return;
    case SearchOutcome::refused:
      FormatWide(text, "%s", "cannot be opened");
      return;
    case SearchOutcome::heard:
      FormatWide(text, "%s", ShortTextOf(news.heard));
      return;
    case SearchOutcome::device:
      FormatWide(text, "Device %s", news.identity);
      return;
  }
}

const wchar_t* HeardText(Heard heard) {
  switch (heard) {
    case Heard::nothing:
      return L"Nothing was heard on the device's port";
    case Heard::echo:
      return L"Heard: only the echo of what was sent";
    case Heard::noise:
      return L"Heard: noise (wrong speed?)";
    case Heard::text:
      return L"Heard: text, but no prompt";
    case Heard::prompt:
      return L"Heard: a prompt, but not the settings";
    case Heard::receiver:
      return L"Heard: sentences of a GPS receiver";
  }
  return L"";
}

}  // namespace tw
