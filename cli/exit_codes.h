#ifndef SYMFOLD_CLI_EXIT_CODES_H
#define SYMFOLD_CLI_EXIT_CODES_H

namespace symfold {

// What the command's exit status says.
enum ExitCode : int {
  kOk = 0,
  kCheckFailed = 1,   // a check failed, or some of the input could not be used
  kUsage = 2,         // the command line
  kModelError = 3,    // the model file
  kBadFile = 4,       // any other file: corrupt, unreadable, or not to be written
  kLimitReached = 5,  // more than can be held
  kInternalError = 70,
  kInterrupted = 130  // by Ctrl-C, which the shell too reports so
};

}  // namespace symfold

#endif  // SYMFOLD_CLI_EXIT_CODES_H
