#include "tools/echosim/binding.h"

#include <array>
#include <utility>

#include "base/text_format.h"

namespace tw::echosim {
namespace {

// Bytes as text: printable ones as they are, others as \r, \n or \xHH.
std::string Readable(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    if (byte == '\r') {
      text += "\\r";
    } else if (byte == '\n') {
      text += "\\n";
    } else if (byte >= 0x20 && byte < 0x7F && byte != '\\') {
      text.push_back(static_cast<char>(byte));
    } else {
      char code[8];
      text.append(code, FormatText(code, "\\x%02X", byte));
    }
  }
  return text;
}

// What a receiver at another speed makes of bytes: none that means anything.
void Garble(std::span<uint8_t> bytes) {
  for (uint8_t& byte : bytes) byte |= 0xE0;
}

}  // namespace

LineFile::~LineFile() {
  if (file_ != nullptr) std::fclose(file_);
}

bool LineFile::Create(const std::string& path) {
  if (path.empty()) return true;
  file_ = std::fopen(path.c_str(), "wb");
  return file_ != nullptr;
}

void LineFile::Write(const std::string& line) {
  if (file_ == nullptr) return;
  std::fputs((line + "\n").c_str(), file_);
  std::fflush(file_);  // somebody may be reading along
}

Binding::Binding(sim::VirtualInstrument& instrument, std::unique_ptr<Terminal> terminal,
                 const Reports& reports, bool strict)
    : instrument_(instrument), terminal_(std::move(terminal)), reports_(reports), strict_(strict) {
  if (terminal_ != nullptr) WatchLine(0);
}

void Binding::Pump(int64_t now_us) {
  if (terminal_ == nullptr) return;
  GiveOutput(now_us);  // what has left by now left at the speeds of before
  WatchLine(now_us);
  TakeInput(now_us);
  GiveOutput(now_us);
  if (instrument_.HungUp(now_us)) terminal_.reset();
}

void Binding::WatchLine(int64_t now_us) {
  LineSettings now;
  if (!terminal_->OtherEnd(now)) return;
  static_cast<void>(instrument_.Waiting(now_us));  // a new speed may have come into force meanwhile
  const int32_t speed = instrument_.LineSpeed();
  noisy_ = strict_ && now.baud != speed;
  if (now == line_ && speed == instrumentSpeed_) return;
  line_ = now;
  instrumentSpeed_ = speed;
  if (reports_.line == nullptr) return;
  char text[96];
  FormatText(text, "line %lld %d %d%c%d %s %d", static_cast<long long>(now_us), now.baud, now.dataBits,
             now.parity, now.stopBits, now.hardwareFlow ? "rtscts" : "none", speed);
  reports_.line->Write(text);
}

void Binding::TakeInput(int64_t now_us) {
  // What comes faster than this is a line gone mad; it must not keep the others waiting.
  constexpr int kMostReads = 64;
  std::array<uint8_t, 4'096> bytes;
  for (int i = 0; i < kMostReads; ++i) {
    const auto got = std::span(bytes).first(terminal_->Read(bytes));
    if (got.empty()) return;
    if (noisy_) Garble(got);
    if (reports_.received != nullptr) reports_.received->Write(std::to_string(now_us) + " " + Readable(got));
    instrument_.Receive(got, now_us);
  }
}

void Binding::GiveOutput(int64_t now_us) {
  std::array<uint8_t, 4'096> bytes;
  while (const size_t count = instrument_.Send(bytes, now_us)) {
    if (noisy_) Garble(std::span(bytes).first(count));
    const size_t taken = terminal_->Write(std::span(bytes).first(count));
    if (taken < count && reports_.lost != nullptr) {
      reports_.lost->Write("dropped " + std::to_string(now_us) + " " + std::to_string(sent_ + taken) + " " +
                           std::to_string(count - taken));
    }
    sent_ += count;
    dropped_ += count - taken;
  }
}

int64_t Binding::Next_us(int64_t now_us) const {
  return terminal_ == nullptr ? sim::kNever : instrument_.NextSend_us(now_us);
}

}  // namespace tw::echosim
