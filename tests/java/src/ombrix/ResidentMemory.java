package ombrix;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * The memory of this process that is held in the machine. The virtual machine of the tests has its
 * whole heap from the start, so that what is added belongs to the native side.
 */
final class ResidentMemory {
  private ResidentMemory() {}

  static long bytes() throws IOException {
    for (String line : Files.readAllLines(Path.of("/proc/self/status"))) {
      if (line.startsWith("VmRSS:")) {
        return Long.parseLong(line.replaceAll("[^0-9]", "")) << 10;
      }
    }
    throw new IOException("/proc/self/status without VmRSS");
  }
}
