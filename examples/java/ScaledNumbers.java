/**
 * Decimal numbers made integers by one power of ten for all of them: the engine computes exactly with
 * integers, and the answer divided by the scale is the answer in the units of the file.
 */
final class ScaledNumbers {
  private static final long LARGEST_SCALE = 1000000;

  private final long[] values;
  private long scale = 1;

  /** Takes the numbers as they were read; at most 6 decimals are kept. */
  ScaledNumbers(double[] numbers) {
    for (double x : numbers) {
      while (!isWhole(x) && scale < LARGEST_SCALE) {
        scale *= 10;
      }
    }
    values = new long[numbers.length];
    for (int i = 0; i < numbers.length; i++) {
      values[i] = Math.round(numbers[i] * scale);
    }
  }

  private boolean isWhole(double x) {
    double scaled = x * scale;
    return Math.abs(scaled - Math.rint(scaled)) < 1e-6;
  }

  long get(int i) {
    return values[i];
  }

  double unscaled(long value) {
    return (double) value / scale;
  }
}
