package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTimeoutPreemptively;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.time.Duration;
import java.util.concurrent.atomic.AtomicBoolean;
import org.junit.jupiter.api.Test;

/** Whole searches driven from Java. */
class SolveTest {
  private static final long[] WEIGHTS = {10, 60, 30, 40, 30, 20, 20, 2};
  private static final long[] VALUES = {1, 10, 15, 40, 60, 90, 100, 15};
  private static final long CAPACITY = 102;

  private static OXExpression weightedSum(OXModel model, OXExpression[] items, long[] factors) {
    OXExpression sum = model.createExpression(OXOperator.Sum);
    for (int i = 0; i < items.length; i++) {
      sum.addOperand(model.createExpression(OXOperator.Prod, factors[i], items[i]));
    }
    return sum;
  }

  /** A knapsack whose best value is 280. */
  private static OXExpression buildKnapsack(Ombrix ombrix) {
    OXModel model = ombrix.getModel();
    OXExpression[] items = new OXExpression[WEIGHTS.length];
    for (int i = 0; i < items.length; i++) {
      items[i] = model.createExpression(OXOperator.Bool);
      items[i].setName("item" + i);
    }
    OXExpression weight = weightedSum(model, items, WEIGHTS);
    OXExpression value = weightedSum(model, items, VALUES);
    model.addConstraint(model.createExpression(OXOperator.Leq, weight, CAPACITY));
    model.addObjective(value, OXObjectiveDirection.Maximize);
    model.close();
    ombrix.getParam().setVerbosity(0);
    return value;
  }

  @Test
  void aSmallKnapsackIsSolvedToItsBestValue() {
    try (Ombrix ombrix = new Ombrix()) {
      OXExpression value = buildKnapsack(ombrix);
      ombrix.createPhase().setIterationLimit(20000);
      ombrix.solve();
      assertEquals(OXState.Stopped, ombrix.getState());
      assertEquals(280, value.getValue());
      assertEquals(280, ombrix.getSolution().getValue(value));
      assertEquals(OXSolutionStatus.Feasible, ombrix.getSolution().getStatus());
      assertTrue(ombrix.getStatistics().getNbMoves() >= 20000);
    }
  }

  @Test
  void stopFromAnotherThreadEndsTheSearch() {
    try (Ombrix ombrix = new Ombrix()) {
      buildKnapsack(ombrix);
      Thread stopper =
          new Thread(
              () -> {
                while (ombrix.getState() == OXState.Stopped) {
                  Thread.onSpinWait();
                }
                while (ombrix.getState() != OXState.Stopped) {
                  ombrix.stop();
                }
              });
      stopper.start();
      assertTimeoutPreemptively(Duration.ofSeconds(60), ombrix::solve);
      assertTimeoutPreemptively(Duration.ofSeconds(60), () -> stopper.join());
      assertEquals(OXState.Stopped, ombrix.getState());
    }
  }

  @Test
  void deleteDuringASearchStopsItFirst() {
    Ombrix ombrix = new Ombrix();
    buildKnapsack(ombrix);
    Thread searcher = new Thread(ombrix::solve);
    searcher.start();
    while (ombrix.getState() == OXState.Stopped) {
      Thread.onSpinWait();
    }
    assertTimeoutPreemptively(Duration.ofSeconds(60), ombrix::delete);
    assertTimeoutPreemptively(Duration.ofSeconds(60), () -> searcher.join());
    assertThrows(IllegalStateException.class, ombrix::getState);
  }

  @Test
  void stopAndGetStateDuringADeleteReachALiveSolverOrAreRefused() throws InterruptedException {
    for (int i = 0; i < 200; i++) {
      Ombrix ombrix = new Ombrix();
      AtomicBoolean refused = new AtomicBoolean();
      Thread caller =
          new Thread(
              () -> {
                try {
                  while (true) {
                    ombrix.stop();
                    ombrix.getState();
                  }
                } catch (IllegalStateException deleted) {
                  refused.set(true);
                }
              });
      caller.start();
      Thread.sleep(1);
      ombrix.delete();
      caller.join();
      assertTrue(refused.get());
    }
  }

  @Test
  void aFailureOnASearchThreadReachesTheCallerOfSolve() {
    try (Ombrix ombrix = new Ombrix()) {
      OXModel model = ombrix.getModel();
      // The nearer the sum comes to 6 the better, and at 6 the divisor is 0.
      OXExpression sum = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < 6; i++) {
        sum.addOperand(model.createExpression(OXOperator.Bool));
      }
      OXExpression minusSum = model.createExpression(OXOperator.Prod, -1L, sum);
      OXExpression divisor = model.createExpression(OXOperator.Sum, 6L, minusSum);
      OXExpression quotient = model.createExpression(OXOperator.Div, 6L, divisor);
      OXExpression objective = model.createExpression(OXOperator.Sum, sum, quotient);
      model.addObjective(objective, OXObjectiveDirection.Maximize);
      model.close();
      ombrix.getParam().setVerbosity(0);
      ombrix.createPhase().setIterationLimit(10000);
      OXException failure = assertThrows(OXException.class, ombrix::solve);
      assertEquals(5, failure.getCode());
      assertEquals("Division by zero.", failure.getMessage());
      assertEquals(OXState.Paused, ombrix.getState());
      assertTrue(objective.getValue() > 1, "what was found is kept");
    }
  }

  private static void cycle() {
    try (Ombrix ombrix = new Ombrix()) {
      buildKnapsack(ombrix);
      ombrix.createPhase().setIterationLimit(50);
      ombrix.solve();
    }
  }

  private static long growthOfAThousandCycles() throws IOException {
    System.gc();
    long before = ResidentMemory.bytes();
    for (int i = 0; i < 1000; i++) {
      cycle();
    }
    System.gc();
    return ResidentMemory.bytes() - before;
  }

  @Test
  void aSecondThousandOfSolversNeedsNoMoreMemoryThanTheFirst() throws IOException {
    long first = growthOfAThousandCycles();
    long second = growthOfAThousandCycles();
    assertTrue(
        second < 8L << 20, "resident memory grew by " + first + " and then " + second + " bytes");
  }
}
