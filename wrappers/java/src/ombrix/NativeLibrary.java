package ombrix;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.Locale;

/**
 * Loads the native library once: from the library path if it is there, otherwise from the jar, where
 * it is unpacked into a temporary file that goes when the virtual machine ends.
 */
final class NativeLibrary {
  private static final String NAME = "ombrixnativejava";

  private NativeLibrary() {}

  static void load() {
    try {
      System.loadLibrary(NAME);
    } catch (UnsatisfiedLinkError notOnLibraryPath) {
      loadFromJar(notOnLibraryPath);
    }
  }

  private static void loadFromJar(UnsatisfiedLinkError notOnLibraryPath) {
    String resource = "native/" + platform() + "/" + System.mapLibraryName(NAME);
    try (InputStream library = NativeLibrary.class.getResourceAsStream(resource)) {
      if (library == null) {
        UnsatisfiedLinkError error =
            new UnsatisfiedLinkError(
                "The native library of Ombrix was found neither on java.library.path nor in the jar"
                    + " (resource ombrix/" + resource + "). Add the folder that holds "
                    + System.mapLibraryName(NAME) + " with -Djava.library.path=FOLDER.");
        error.initCause(notOnLibraryPath);
        throw error;
      }
      System.load(unpack(library).toString());
    } catch (IOException e) {
      throw new UncheckedIOException("Cannot unpack the native library of Ombrix", e);
    }
  }

  private static Path unpack(InputStream library) throws IOException {
    Path folder = Files.createTempDirectory("ombrix");
    Path file = folder.resolve(System.mapLibraryName(NAME));
    folder.toFile().deleteOnExit();
    file.toFile().deleteOnExit();
    Files.copy(library, file, StandardCopyOption.REPLACE_EXISTING);
    return file.toAbsolutePath();
  }

  /** The name of the folder in the jar: system and processor. */
  private static String platform() {
    String system = System.getProperty("os.name").toLowerCase(Locale.ROOT);
    String processor = System.getProperty("os.arch");
    return (system.startsWith("windows") ? "windows" : system) + "-" + processor;
  }
}
