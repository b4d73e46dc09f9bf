package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.File;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * Where the native library is looked for, each time in a virtual machine of its own: the jar of the
 * users has the library inside, the bare classes have not.
 */
class NativeLibraryTest {
  private static final String LIBRARY = System.getProperty("ombrix.library");
  private static final String LIBRARY_FOLDER = Path.of(LIBRARY).getParent().toString();
  private static final String JAR = System.getProperty("ombrix.jar");
  private static final String BARE_CLASSES = System.getProperty("ombrix.bare");

  /** Uses the library, and prints from which file it was loaded or why it was not. */
  static final class Probe {
    static final String FILE_NAME = System.mapLibraryName("ombrixnativejava");

    public static void main(String[] arguments) throws IOException {
      try {
        OXVersion.getVersionCode();
        try (Stream<String> maps = Files.lines(Path.of("/proc/self/maps"))) {
          maps.filter(line -> line.endsWith(FILE_NAME))
              .map(line -> line.substring(line.indexOf('/')))
              .distinct()
              .forEach(System.out::println);
        }
      } catch (UnsatisfiedLinkError failure) {
        System.out.println(failure.getMessage());
        System.out.println(failure.getCause().getClass().getName());
      }
    }
  }

  @TempDir Path temporary;

  private String probe(String classes, String libraryPath) throws Exception {
    String testClasses =
        Path.of(Probe.class.getProtectionDomain().getCodeSource().getLocation().toURI()).toString();
    Process process =
        new ProcessBuilder(
                Path.of(System.getProperty("java.home"), "bin", "java").toString(),
                "-cp",
                classes + File.pathSeparator + testClasses,
                "-Djava.library.path=" + libraryPath,
                "-Djava.io.tmpdir=" + temporary,
                Probe.class.getName())
            .redirectErrorStream(true)
            .start();
    String output = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
    assertEquals(0, process.waitFor(), output);
    return output;
  }

  @Test
  void theLibraryIsFoundOnTheLibraryPath() throws Exception {
    assertEquals(LIBRARY + "\n", probe(BARE_CLASSES, LIBRARY_FOLDER));
  }

  @Test
  void theLibraryPathComesBeforeTheJar() throws Exception {
    assertEquals(LIBRARY + "\n", probe(JAR, LIBRARY_FOLDER));
  }

  @Test
  void theLibraryOfTheJarIsUnpackedAndGoesWithTheVirtualMachine() throws Exception {
    String loaded = probe(JAR, temporary.toString()).trim();
    assertTrue(loaded.startsWith(temporary + File.separator), loaded);
    assertEquals(Probe.FILE_NAME, Path.of(loaded).getFileName().toString());
    assertFalse(Files.exists(Path.of(loaded).getParent()), loaded);
  }

  @Test
  void aLibraryThatIsNowhereIsNamedWithThePlacesTried() throws Exception {
    String platform = "linux-" + System.getProperty("os.arch");
    assertEquals(
        "The native library of Ombrix was found neither on java.library.path nor in the jar"
            + " (resource ombrix/native/" + platform + "/"
            + Probe.FILE_NAME + "). Add the folder that"
            + " holds " + Probe.FILE_NAME + " with -Djava.library.path=FOLDER.\n"
            + "java.lang.UnsatisfiedLinkError\n",
        probe(BARE_CLASSES, temporary.toString()));
  }
}
