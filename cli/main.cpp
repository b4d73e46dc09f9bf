#include "cli/program.h"

int main(int argc, char** argv) {
  return ombrix::cli::runProgram(argc, argv);
}
