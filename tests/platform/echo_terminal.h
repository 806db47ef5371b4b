// A pseudo terminal whose far end sends back whatever it gets. POSIX only.
#pragma once

#include <string>

namespace tw {

class EchoTerminal {
 public:
  EchoTerminal();  // IsOpen() tells whether it worked
  ~EchoTerminal();
  EchoTerminal(const EchoTerminal&) = delete;
  EchoTerminal& operator=(const EchoTerminal&) = delete;

  [[nodiscard]] bool IsOpen() const { return near_ >= 0; }
  // The path that the program opens.
  [[nodiscard]] const std::string& Path() const { return path_; }

  // Sends back what has come, waiting for it at most so long. False when the terminal has failed.
  bool Echo(int timeout_ms);

  // Pulls the plug.
  void HangUp();

 private:
  int far_ = -1;
  int near_ = -1;  // kept open, so that the program may close its end and open it again
  std::string path_;
};

}  // namespace tw
