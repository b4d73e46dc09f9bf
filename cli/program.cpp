#include "cli/program.h"

#include <ombrix/oxexception.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "cli/commandline.h"
#include "cli/convertcommand.h"
#include "cli/infocommand.h"
#include "cli/inputerror.h"
#include "cli/showcommand.h"
#include "cli/solvecommand.h"

namespace ombrix::cli {
namespace {

int reportFailure(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::cout.flush();
  std::cerr << "ombrix: " << text << std::endl;
  return kFailure;
}

int runCommand(const CommandLine& line) {
  switch (line.command) {
    case CommandLine::Command::Solve:
      return runSolve(line);
    case CommandLine::Command::Info:
      return runInfo(line);
    case CommandLine::Command::Convert:
      return runConvert(line);
    case CommandLine::Command::Show:
      return runShow(line);
    case CommandLine::Command::ShowText:
      break;
  }
  std::cout << line.text;
  return kSolutionFound;
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
  try {
    const int status = runCommand(parseCommandLine(argc, argv));
    std::cout.flush();
    if (!std::cout) return reportFailure("the standard output cannot be written");
    return status;
  } catch (const InputError& error) {
    return reportFailure(error.what());
  } catch (const OXException& error) {
    return reportFailure(error.getExplanation());
  } catch (const std::bad_alloc&) {
    return reportFailure("out of memory");
  } catch (const std::exception& error) {
    return reportFailure(std::string("internal error: ") + error.what());
  }
}

}  // namespace ombrix::cli
