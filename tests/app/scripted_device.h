// A device at its prompt that answers each command line from a table; what is not in the table is refused.
// For devices that the simulator does not play.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/host/serial_peer.h"

namespace tw::test {

class ScriptedDevice : public SerialPeer {
 public:
  // The value line(s) of a query, by keyword; an accepted command has an empty one.
  std::map<std::string, std::string> answers;
  std::vector<std::string> lines;  // received, in order

  void Receive(std::span<const uint8_t> bytes, int64_t) override {
    for (const uint8_t byte : bytes) {
      if (byte != '\r') {
        if (byte != ' ' || !line_.empty()) line_ += static_cast<char>(byte);
        continue;
      }
      Answer();
      line_.clear();
    }
  }
  size_t Send(std::span<uint8_t> out, int64_t) override {
    const size_t size = waiting_.copy(reinterpret_cast<char*>(out.data()), out.size());
    waiting_.erase(0, size);
    return size;
  }
  int64_t NextSend_us(int64_t now_us) override { return waiting_.empty() ? kNever : now_us; }
  size_t Waiting(int64_t) override { return waiting_.size(); }

 private:
  void Answer() {
    if (line_.empty()) {
      waiting_ += "\r\n>";
      return;
    }
    lines.push_back(line_);
    const auto answer = answers.find(line_.substr(0, line_.find(' ')));
    const std::string value = answer == answers.end() ? "Error" : answer->second;
    waiting_ += line_ + "\r\n" + value + (value.empty() ? "" : "\r\n") + "\r\n>";
  }

  std::string line_;
  std::string waiting_;
};

}  // namespace tw::test
