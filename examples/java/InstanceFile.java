import java.io.BufferedInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.zip.GZIPInputStream;

/**
 * The words of an instance file, plain or gzip, one after the other. A word of the wrong kind is an
 * IllegalArgumentException that names file, line, what was found and what was expected.
 */
final class InstanceFile {
  private final String fileName;
  private final String content;
  private int position;
  private int line = 1;

  InstanceFile(String fileName) throws IOException {
    this.fileName = fileName;
    this.content = readAll(fileName);
  }

  private static String readAll(String fileName) throws IOException {
    try (InputStream plain = new BufferedInputStream(Files.newInputStream(Path.of(fileName)))) {
      plain.mark(2);
      boolean isGzip = plain.read() == 0x1f && plain.read() == 0x8b;
      plain.reset();
      InputStream in = isGzip ? new GZIPInputStream(plain) : plain;
      return new String(in.readAllBytes(), StandardCharsets.ISO_8859_1);
    }
  }

  boolean atEnd() {
    skipSpaces();
    return position == content.length();
  }

  String nextWord(String expected) {
    if (atEnd()) {
      throw failure("the end of the file", expected);
    }
    int start = position;
    while (position < content.length() && content.charAt(position) > ' ') {
      ++position;
    }
    return content.substring(start, position);
  }

  long nextInt(String expected) {
    String word = nextWord(expected);
    try {
      return Long.parseLong(word);
    } catch (NumberFormatException e) {
      throw failure("'" + word + "'", expected);
    }
  }

  /** An integer between two limits, both allowed. */
  int nextInt(int low, int high, String expected) {
    long value = nextInt(expected);
    if (value < low || value > high) {
      throw failure("'" + value + "'", expected + " between " + low + " and " + high);
    }
    return (int) value;
  }

  double nextDouble(String expected) {
    String word = nextWord(expected);
    try {
      return Double.parseDouble(word);
    } catch (NumberFormatException e) {
      throw failure("'" + word + "'", expected);
    }
  }

  double[] nextDoubles(int count) {
    double[] numbers = new double[count];
    for (int i = 0; i < count; i++) {
      numbers[i] = nextDouble("a number");
    }
    return numbers;
  }

  /** Passes over a line that begins with the mark; false, and nothing read, if the next word does not. */
  boolean skipComment(char mark) {
    if (atEnd() || content.charAt(position) != mark) {
      return false;
    }
    skipLine();
    return true;
  }

  void skipLine() {
    while (position < content.length() && content.charAt(position) != '\n') {
      ++position;
    }
  }

  private void skipSpaces() {
    while (position < content.length() && content.charAt(position) <= ' ') {
      if (content.charAt(position) == '\n') {
        ++line;
      }
      ++position;
    }
  }

  private IllegalArgumentException failure(String found, String expected) {
    return new IllegalArgumentException(
        fileName + ":" + line + ": found " + found + ", expected " + expected);
  }
}
