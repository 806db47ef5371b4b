#include "tests/end_to_end/crashed_disk.h"

#include <algorithm>

namespace tw::test {
namespace {

constexpr size_t kPage = 4'096;

size_t Below(size_t bound, std::mt19937& random) {
  return bound == 0 ? 0 : random() % bound;
}

// The first bytes of the call's.
void Apply(const DiskCall& call, size_t bytes, std::string& content) {
  if (call.step == DiskStep::cut) content.resize(call.place);
  if (call.step != DiskStep::written) return;
  if (content.size() < call.place + bytes) content.resize(call.place + bytes);
  content.replace(call.place, bytes, call.bytes, 0, bytes);
}

std::string NameOf(const DiskCall& call) {
  const std::wstring name = call.path.substr(call.path.find_last_of(L"/\\") + 1);
  return {name.begin(), name.end()};
}

}  // namespace

CrashedDisk::File* CrashedDisk::Find(const std::string& name) {
  const auto has = [&](const File& file) { return file.name == name && file.removed == kNever; };
  const auto found = std::find_if(files_.rbegin(), files_.rend(), has);
  return found == files_.rend() ? nullptr : &*found;
}

void CrashedDisk::Take(const DiskCall& call) {
  ++calls_;
  const std::string name = NameOf(call);
  if (call.step == DiskStep::created) return files_.push_back({name, calls_});
  File* const file = Find(name);
  if (file == nullptr) return;
  if (call.step == DiskStep::removed) file->removed = calls_;
  if (call.step == DiskStep::flushed) {
    file->flushed = file->content;
    file->waiting.clear();
    flushedCalls_ = calls_;
  }
  Apply(call, call.bytes.size(), file->content);
  if (call.step == DiskStep::written || call.step == DiskStep::cut) file->waiting.push_back(call);
}

CrashedDisk::Files CrashedDisk::Crash(Loss loss, const DiskCall& underWay, std::mt19937& random) const {
  CrashedDisk then = *this;
  if (loss != Loss::whole) {
    DiskCall part = underWay;
    part.bytes.resize(Below(part.bytes.size() + 1, random));
    // A flush that is under way has promised nothing yet.
    if (part.step == DiskStep::written) then.Take(part);
  }
  const size_t someCalls = flushedCalls_ + Below(calls_ + 1 - flushedCalls_, random);
  switch (loss) {
    case Loss::none:
      return then.Found(
          then.calls_, [](const File& file, std::mt19937&) { return file.content; }, random);
    case Loss::whole:
      return then.Found(
          flushedCalls_, [](const File& file, std::mt19937&) { return file.flushed; }, random);
    case Loss::torn:
      return then.Found(someCalls, Torn, random);
    case Loss::pages:
      return then.Found(someCalls, Pages, random);
  }
  return {};
}

CrashedDisk::Files CrashedDisk::Found(size_t calls, std::string (*content)(const File&, std::mt19937&),
                                      std::mt19937& random) const {
  Files found;
  for (const File& file : files_) {
    if (file.created <= calls && file.removed > calls) found[file.name] = content(file, random);
  }
  return found;
}

std::string CrashedDisk::Torn(const File& file, std::mt19937& random) {
  std::string content = file.flushed;
  const size_t whole = Below(file.waiting.size() + 1, random);
  for (size_t i = 0; i < whole; ++i) Apply(file.waiting[i], file.waiting[i].bytes.size(), content);
  if (whole < file.waiting.size()) {
    const DiskCall& last = file.waiting[whole];
    Apply(last, Below(last.bytes.size(), random), content);
  }
  return content;
}

std::string CrashedDisk::Pages(const File& file, std::mt19937& random) {
  std::string content = file.content;
  for (size_t at = file.flushed.size(); at < content.size(); at = (at / kPage + 1) * kPage) {
    const size_t end = std::min(content.size(), (at / kPage + 1) * kPage);
    if (random() % 2 == 0) std::fill_n(content.data() + at, end - at, '\0');
  }
  return content;
}

}  // namespace tw::test
