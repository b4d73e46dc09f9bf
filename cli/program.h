#ifndef OMBRIX_CLI_PROGRAM_H
#define OMBRIX_CLI_PROGRAM_H

namespace ombrix::cli {

/// The exit statuses of the program.
enum ExitStatus : int { kSolutionFound = 0, kFailure = 1, kNoSolution = 2, kInconsistent = 3 };

/// The whole program: reads the command line, does what it asks for and returns the exit status.
/// A failure of any kind is one line on the standard error.
int runProgram(int argc, const char* const* argv);

}  // namespace ombrix::cli

#endif
