#ifndef OMBRIX_CLI_SOLUTIONWRITER_H
#define OMBRIX_CLI_SOLUTIONWRITER_H

#include <string>
#include <vector>

namespace ombrix::cli {

/// The lines "v x1 -x2 ..." of the pseudo-Boolean competitions, each of moderate length: every
/// variable once, with a minus sign when its value is 0.
std::string valueLines(const std::vector<std::string>& names, const std::vector<bool>& values);

/// A file that appears whole or not at all: the text goes to a temporary file beside it, which
/// takes its name at the end. The temporary file is made at once, so that a place that cannot be
/// written is noticed before the work begins, and disappears again if nothing is committed.
class SolutionFile {
public:
  explicit SolutionFile(std::string fileName);
  ~SolutionFile();
  SolutionFile(const SolutionFile&) = delete;
  SolutionFile& operator=(const SolutionFile&) = delete;

  void commit(const std::string& text);

private:
  [[noreturn]] void failWriting() const;

  std::string fileName;
  std::string temporaryName;
  int descriptor;
  bool committed = false;
};

}  // namespace ombrix::cli

#endif
