#include "platform/serial_line.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <mutex>

#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"
#include "platform/posix/terminal_line.h"
#include "platform/system_error.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/fault_points.h"
#include "platform/virtual/peer_line.h"

namespace tw {
namespace {

struct Attached {
  SerialPeer* peer = nullptr;  // or else
  std::string terminal;
};

struct Setup {
  std::mutex mutex;
  std::map<std::wstring, Attached, std::less<>> ends;
  std::vector<std::wstring> list;
};

Setup& Shared() {
  static Setup* const setup = new Setup;
  return *setup;
}

HandleTable<Line>& Lines() {
  static auto* const table = new HandleTable<Line>(HandleKind::line);
  return *table;
}

[[nodiscard]] bool FindEnd(const std::wstring& name, Attached& end) {
  Setup& setup = Shared();
  const std::lock_guard held(setup.mutex);
  const auto found = setup.ends.find(name);
  if (found != setup.ends.end()) {
    end = found->second;
    return true;
  }
  char path[512];
  NarrowText(path, name);
  end = {nullptr, path};
  return name.starts_with(L'/');
}

[[nodiscard]] std::shared_ptr<Line> OpenEnd(const std::wstring& name, const Attached& end, const char* mode,
                                            uint32_t readConstant_ms) {
  if (end.peer == nullptr) {
    if (!IsClockVirtual()) return TerminalLine::Open(name, end.terminal.c_str(), mode, readConstant_ms);
    SetSystemError(ENOTSUP);  // its waits take real time
    return nullptr;
  }
  auto line = std::make_shared<PeerLine>(name, readConstant_ms, *end.peer);
  return line->Open(mode) ? line : nullptr;
}

[[nodiscard]] std::shared_ptr<Line> FindOpen(const std::wstring& name) {
  return Lines().FindIf([&](const Line& line) { return line.Name() == name; });
}

// Throws away what has arrived on a line that is to be silent.
void Discard(Line& line) {
  uint8_t scrap[4096];
  for (uint32_t i = 0; i < 256 && line.Waiting() > 0; ++i) {
    if (line.Take(scrap) <= 0) return;
  }
}

[[nodiscard]] bool HasFailed(const Line& line, const LineAllowance& allowed) {
  if (!line.Closed() && !allowed.hungUp) return false;
  SetSystemError(line.Closed() ? EBADF : EIO);
  return true;
}

// Failing costs time as any other call that does not wait does, so that whoever tries again for ever ends.
[[nodiscard]] bool Fail() {
  baton::Poll();
  return false;
}

[[nodiscard]] std::shared_ptr<Line> FindLine(Handle handle) {
  std::shared_ptr<Line> line = Lines().Find(handle);
  if (line == nullptr) SetSystemError(EBADF);
  return line;
}

// Takes what waits and is allowed; negative when the line has failed.
[[nodiscard]] int64_t TakeAllowed(Line& line, std::span<uint8_t> out) {
  const LineAllowance allowed = AllowedOnLine(line.Name(), static_cast<uint32_t>(out.size()));
  if (HasFailed(line, allowed)) return -1;
  if (allowed.silent) {
    Discard(line);
    return 0;
  }
  const int64_t got = line.Take(out.first(allowed.bytes));
  if (got > 0) CountDelivered(line.Name(), static_cast<uint32_t>(got));
  return got;
}

}  // namespace

void AttachPeer(const wchar_t* name, SerialPeer* peer) {
  Setup& setup = Shared();
  const std::lock_guard held(setup.mutex);
  setup.ends[name] = {peer, {}};
}

void AttachTerminal(const wchar_t* name, const char* path) {
  Setup& setup = Shared();
  const std::lock_guard held(setup.mutex);
  setup.ends[name] = {nullptr, path};
}

void DetachSerialLines() {
  Setup& setup = Shared();
  const std::lock_guard held(setup.mutex);
  setup.ends.clear();
  setup.list.clear();
}

void SetSerialLineList(std::vector<std::wstring> names) {
  Setup& setup = Shared();
  const std::lock_guard held(setup.mutex);
  setup.list = std::move(names);
}

void WakeSerialLine(const wchar_t* name) {
  const std::shared_ptr<Line> line = FindOpen(name);
  if (line != nullptr) line->Wake();
}

Handle OpenSerialLine(const wchar_t* name, const char* mode, uint32_t readConstant_ms) {
  if (FaultAt(FaultPoint::openLine, name)) return Handle::invalid;
  Attached end;
  if (!FindEnd(name, end)) {
    SetSystemError(ENOENT);
    return Handle::invalid;
  }
  if (FindOpen(name) != nullptr) {
    SetSystemError(EACCES);
    return Handle::invalid;
  }
  std::shared_ptr<Line> line = OpenEnd(name, end, mode, readConstant_ms);
  return line != nullptr ? Lines().Add(std::move(line)) : Handle::invalid;
}

bool ReadSerialLine(Handle handle, void* bytes, uint32_t size, uint32_t& got) {
  got = 0;
  const std::shared_ptr<Line> line = FindLine(handle);
  if (line == nullptr || FaultAt(FaultPoint::readLine, line->Name())) return Fail();
  const std::span<uint8_t> out(static_cast<uint8_t*>(bytes), size);
  const int64_t deadline_us = DeadlineAfter_us(line->ReadConstant_ms());
  if (line->ReadConstant_ms() == 0) baton::Poll();
  for (;;) {
    const int64_t taken = TakeAllowed(*line, out);
    got = static_cast<uint32_t>(std::max<int64_t>(taken, 0));
    if (taken < 0) return Fail();
    if (taken > 0 || size == 0) return true;
    if (Now_us() >= deadline_us) return true;
    line->Await(deadline_us);
  }
}

bool WriteSerialLine(Handle handle, const void* bytes, uint32_t size) {
  const std::shared_ptr<Line> line = FindLine(handle);
  if (line == nullptr) return Fail();
  const std::span<const uint8_t> in(static_cast<const uint8_t*>(bytes), size);
  uint32_t taken = 0;
  if (FaultAt(FaultPoint::writeLine, line->Name(), &taken)) {
    const uint32_t code = LastSystemError();
    if (taken == 0 || line->Put(in.first(std::min(taken, size)))) SetSystemError(code);
    return Fail();
  }
  while (!line->Closed() && AllowedOnLine(line->Name(), 0).blocked) SleepMilliseconds(100);
  if (HasFailed(*line, AllowedOnLine(line->Name(), 0)) || !line->Put(in)) return Fail();
  return true;
}

bool WriteSerialLineWithin(Handle handle, const void* bytes, uint32_t size, uint32_t limit_ms,
                           uint32_t& written) {
  written = 0;
  const std::shared_ptr<Line> line = FindLine(handle);
  if (line == nullptr || FaultAt(FaultPoint::writeLine, line->Name())) return Fail();
  const LineAllowance allowed = AllowedOnLine(line->Name(), 0);
  if (HasFailed(*line, allowed)) return Fail();
  if (allowed.blocked) {
    SleepMilliseconds(limit_ms);
    return true;
  }
  return line->PutUntil({static_cast<const uint8_t*>(bytes), size}, DeadlineAfter_us(limit_ms), written) ||
         Fail();
}

uint32_t BytesWaiting(Handle handle, uint32_t* overruns) {
  baton::Poll();
  const std::shared_ptr<Line> line = Lines().Find(handle);
  if (line == nullptr) return 0;
  if (overruns != nullptr && FaultAt(FaultPoint::overrunLine, line->Name())) ++*overruns;
  const LineAllowance allowed = AllowedOnLine(line->Name(), UINT32_MAX);
  return allowed.hungUp || allowed.silent ? 0 : std::min(line->Waiting(), allowed.bytes);
}

bool IsLineThere(Handle handle) {
  const std::shared_ptr<Line> line = FindLine(handle);
  if (line == nullptr || FaultAt(FaultPoint::askLine, line->Name())) return Fail();
  return !HasFailed(*line, AllowedOnLine(line->Name(), 0)) || Fail();
}

void CloseSerialLine(Handle handle) {
  const std::shared_ptr<Line> line = Lines().Remove(handle);
  if (line == nullptr) return;
  line->MarkClosed();
  line->Shut();
}

bool ListSerialLines(void (*take)(void* context, const wchar_t* name), void* context) {
  if (FaultAt(FaultPoint::listLines, {})) return false;
  std::vector<std::wstring> names;
  {
    const std::lock_guard held(Shared().mutex);
    names = Shared().list;
  }
  for (const std::wstring& name : names) take(context, name.substr(0, 255).c_str());
  return true;
}

}  // namespace tw
