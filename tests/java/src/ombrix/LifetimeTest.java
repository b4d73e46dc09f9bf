package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertTrue;
import static org.junit.jupiter.api.Assertions.fail;

import java.io.IOException;
import java.lang.ref.WeakReference;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Function;
import java.util.function.Supplier;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Solvers that nobody deletes: the collector frees them, but never under a proxy in use. */
class LifetimeTest {
  private static volatile byte[] pressure;

  private static void collectUntilCleared(WeakReference<Ombrix> reference)
      throws InterruptedException {
    for (int i = 0; i < 500; i++) {
      pressure = new byte[1 << 20];
      System.gc();
      if (reference.get() == null) {
        return;
      }
      Thread.sleep(2);
    }
    fail("a solver that nobody reaches is still there");
  }

  /** A closed solver that maximizes one decision, named x. */
  private static Ombrix smallSolver() {
    Ombrix ombrix = new Ombrix();
    OXModel model = ombrix.getModel();
    OXExpression x = model.createExpression(OXOperator.Bool);
    x.setName("x");
    model.addObjective(x, OXObjectiveDirection.Maximize);
    model.close();
    ombrix.getParam().setVerbosity(0);
    return ombrix;
  }

  private static WeakReference<Ombrix> droppedSolver() {
    return new WeakReference<>(smallSolver());
  }

  private static OXExpression expressionOfADroppedSolver() {
    return smallSolver().getModel().getExpression(0);
  }

  @Test
  void aSolverThatNobodyReachesIsCollected() throws InterruptedException {
    collectUntilCleared(droppedSolver());
  }

  @Test
  void anExpressionAloneKeepsItsSolverAlive() throws InterruptedException {
    OXExpression x = expressionOfADroppedSolver();
    for (int i = 0; i < 3; i++) {
      // A younger solver that was dropped is gone: the collector had its chance at the older one.
      collectUntilCleared(droppedSolver());
    }
    assertEquals("x", x.getName());
    Ombrix ombrix = x.getOmbrix();
    ombrix.createPhase().setIterationLimit(100);
    ombrix.solve();
    assertEquals(1, x.getValue());
    ombrix.delete();
  }

  @Test
  void everyKindOfProxyKeepsItsSolverAlive() throws InterruptedException {
    List<Function<Ombrix, Supplier<Ombrix>>> kinds =
        List.of(
            ombrix -> ombrix.getModel()::getOmbrix,
            ombrix -> ombrix.getModel().getObjective(0)::getOmbrix,
            ombrix -> ombrix.getParam()::getOmbrix,
            ombrix -> ombrix.createPhase()::getOmbrix,
            ombrix -> ombrix.getSolution()::getOmbrix,
            ombrix -> ombrix.getStatistics()::getOmbrix);
    List<WeakReference<Ombrix>> solvers = new ArrayList<>();
    List<Supplier<Ombrix>> owners = new ArrayList<>();
    for (Function<Ombrix, Supplier<Ombrix>> kind : kinds) {
      Ombrix ombrix = smallSolver();
      solvers.add(new WeakReference<>(ombrix));
      owners.add(kind.apply(ombrix));
    }
    collectUntilCleared(droppedSolver());
    for (int i = 0; i < kinds.size(); i++) {
      assertNotNull(solvers.get(i).get(), "proxy of kind " + i);
      assertSame(solvers.get(i).get(), owners.get(i).get());
      assertEquals(OXState.Stopped, owners.get(i).get().getState());
    }
    for (int i = 0; i < kinds.size(); i++) {
      WeakReference<Ombrix> solver = solvers.get(i);
      owners.set(i, null);
      collectUntilCleared(solver);
    }
  }

  private static WeakReference<Ombrix> droppedLoad(String file) {
    return new WeakReference<>(Ombrix.fromEnvironment(file));
  }

  @Test
  void theCollectorFreesTheNativeSolverToo(@TempDir Path folder)
      throws IOException, InterruptedException {
    String file = folder.resolve("large.oxb").toString();
    long sizeOfOne = ResidentMemory.bytes();
    try (Ombrix large = new Ombrix()) {
      OXModel model = large.getModel();
      OXExpression sum = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < 50000; i++) {
        sum.addOperand(model.createExpression(OXOperator.Bool));
      }
      model.addObjective(sum, OXObjectiveDirection.Maximize);
      model.close();
      large.saveEnvironment(file);
      sizeOfOne = ResidentMemory.bytes() - sizeOfOne;
    }
    for (int i = 0; i < 5; i++) {
      collectUntilCleared(droppedLoad(file));
    }
    long before = ResidentMemory.bytes();
    for (int i = 0; i < 20; i++) {
      collectUntilCleared(droppedLoad(file));
    }
    // The last ones may still wait for the thread that frees them.
    long grown = ResidentMemory.bytes() - before;
    assertTrue(
        grown < 5 * sizeOfOne, "twenty solvers of " + sizeOfOne + " bytes left " + grown);
  }
}
