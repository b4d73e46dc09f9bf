# Installation: public headers under include/ombrix, the libraries, the program, the jar and a CMake
# package, so that find_package(ombrix) gives the target ombrix::ombrix.
include(GNUInstallDirs)
