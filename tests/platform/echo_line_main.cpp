// echo_line LINK PROGRAM [ARGUMENTS…]: runs the program while LINK points to a terminal that sends back what
// it gets; ends with the program's exit code. Stands beside Windows programs that run under Wine.
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "tests/platform/echo_terminal.h"

int main(int count, char** arguments) {
  if (count < 3) {
    std::fprintf(stderr, "usage: echo_line LINK PROGRAM [ARGUMENTS]\n");
    return 2;
  }
  const char* const link = arguments[1];
  tw::EchoTerminal terminal;
  unlink(link);
  if (!terminal.IsOpen() || symlink(terminal.Path().c_str(), link) != 0) {
    std::perror("echo_line");
    return 2;
  }
  const pid_t program = fork();
  if (program == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    execvp(arguments[2], arguments + 2);
    std::perror(arguments[2]);
    _exit(127);
  }
  int status = 0;
  while (program > 0 && waitpid(program, &status, WNOHANG) == 0) {
    if (!terminal.Echo(50)) break;
  }
  unlink(link);
  if (program < 0 || !WIFEXITED(status)) return 1;
  return WEXITSTATUS(status);
}
