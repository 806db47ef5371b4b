// A serial line for the contract tests whose far end sends back what it gets: a pseudo terminal of this
// process, or, for a Windows program under Wine, the port that the environment names.
#pragma once

#include <memory>
#include <string>

namespace tw {

class EchoLine {
 public:
  EchoLine();

  // As it is opened: "\\.\COM7". Empty when there is no such line here.
  [[nodiscard]] const std::wstring& Name() const { return name_; }
  // As it is listed: "COM7".
  [[nodiscard]] std::wstring ListedName() const { return name_.substr(4); }
  // False where it is no device and so in no list.
  [[nodiscard]] bool IsListed() const;

 private:
  std::wstring name_;
  std::shared_ptr<void> farEnd_;  // what this process has of it
};

}  // namespace tw
