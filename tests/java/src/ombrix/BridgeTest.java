package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.file.Path;
import java.util.concurrent.Callable;
import java.util.concurrent.FutureTask;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Handles, strings, failures and lifetimes across the boundary. */
class BridgeTest {
  private final Ombrix ombrix = new Ombrix();
  private final OXModel model = ombrix.getModel();

  @AfterEach
  void deleteSolver() {
    ombrix.delete();
  }

  private OXExpression decision() {
    return model.createExpression(OXOperator.Bool);
  }

  @Test
  void aFreshSolverIsInStateModeling() {
    assertEquals(OXState.Modeling, ombrix.getState());
    assertEquals(0, ombrixnativejavaJNI.Ombrix_getState(Ombrix.getCPtr(ombrix), ombrix));
  }

  @Test
  void aCallInTheWrongStateArrivesAsOXException() {
    OXException failure = assertThrows(OXException.class, ombrix::solve);
    assertEquals(0, failure.getCode());
    assertEquals(
        "This method is only allowed in state Stopped"
            + " (the model must be closed and the solver must be stopped).",
        failure.getExplanation());
    assertEquals(failure.getExplanation(), failure.getMessage());
    assertEquals("ombrix::Ombrix::solve", failure.getFunctionName());
    assertTrue(failure.getFileName().endsWith(".cpp"), failure.getFileName());
    assertTrue(failure.getLineNumber() > 0);
  }

  @Test
  void aFailureOfCloseHasCodeTwoAndTheExplanationAlone() {
    decision();
    OXException failure = assertThrows(OXException.class, model::close);
    assertEquals(2, failure.getCode());
    assertEquals("At least one objective is required in the model.", failure.getMessage());
    assertEquals(OXState.Modeling, ombrix.getState());
  }

  @Test
  void aNullStringIsRefusedBeforeTheModelIsReached() {
    OXExpression x = decision();
    NullPointerException failure =
        assertThrows(NullPointerException.class, () -> x.setName(null));
    assertEquals("null std::string", failure.getMessage());
    assertFalse(x.isNamed());
    assertThrows(NullPointerException.class, () -> model.getExpression((String) null));
    assertThrows(NullPointerException.class, () -> ombrix.saveEnvironment(null));
  }

  @Test
  void aNullExpressionIsTheNativeNullArgument() {
    OXException failure = assertThrows(OXException.class, () -> model.addConstraint(null));
    assertEquals("Argument expr cannot be null.", failure.getMessage());
    assertEquals(0, failure.getCode());
  }

  @Test
  void namesOutsideAsciiSurviveTheBoundary() {
    String name = "größe-π-数-\uD83D\uDE9A";
    OXExpression x = decision();
    x.setName(name);
    assertEquals(name, x.getName());
    assertEquals(x, model.getExpression(name));
  }

  @Test
  void anOverloadWithTwoEqualConstantsCreatesOneConstant() {
    OXExpression x = decision();
    OXExpression chosen = model.createExpression(OXOperator.Sum, 7L, x, 7L);
    assertEquals(3, model.getNbExpressions());
    assertEquals(3, chosen.getNbOperands());
    assertEquals(chosen.getOperand(0), chosen.getOperand(2));
    assertEquals(7, chosen.getOperand(0).getIntValue());
    assertEquals(x, chosen.getOperand(1));
  }

  @Test
  void constantsOfAnOverloadAreCreatedFromTheLastToTheFirst() {
    OXExpression sum = model.createExpression(OXOperator.Sum, 5L, 6L, 8L);
    assertEquals(8, model.getExpression(0).getIntValue());
    assertEquals(6, model.getExpression(1).getIntValue());
    assertEquals(5, model.getExpression(2).getIntValue());
    assertEquals(5, sum.getOperand(0).getIntValue());
    assertEquals(8, sum.getOperand(2).getIntValue());
  }

  @Test
  void everyOverloadOfCreateExpressionPutsItsOperandsInOrder() {
    OXExpression x = decision();
    OXExpression y = decision();
    OXOperator sum = OXOperator.Sum;
    assertOperands(model.createExpression(sum, x, y), x, y);
    assertOperands(model.createExpression(sum, x, y, x), x, y, x);
    assertOperands(model.createExpression(sum, 2L), model.createConstant(2L));
    assertOperands(model.createExpression(sum, 2L, x), model.createConstant(2L), x);
    assertOperands(model.createExpression(sum, x, 2L), x, model.createConstant(2L));
    assertOperands(model.createExpression(sum, x, 2L, y), x, model.createConstant(2L), y);
    assertOperands(model.createExpression(sum, x, y, 2L), x, y, model.createConstant(2L));
    assertOperands(model.createExpression(sum, 2L, x, y), model.createConstant(2L), x, y);
    assertOperands(
        model.createExpression(sum, 2L, 3L, y),
        model.createConstant(2L), model.createConstant(3L), y);
    assertOperands(
        model.createExpression(sum, x, 2L, 3L),
        x, model.createConstant(2L), model.createConstant(3L));
    assertOperands(model.createExpression(sum, 2.5, x), model.createConstant(2.5), x);
    assertOperands(model.createExpression(sum, x, 2.5), x, model.createConstant(2.5));
    assertOperands(
        model.createExpression(sum, 2.5, x, 3.5),
        model.createConstant(2.5), x, model.createConstant(3.5));
    assertOperands(
        model.createExpression(sum, 2.5, 3.5, 4.5),
        model.createConstant(2.5), model.createConstant(3.5), model.createConstant(4.5));
    assertOperands(
        model.createExpression(sum, x, y, 3.5), x, y, model.createConstant(3.5));
  }

  private static void assertOperands(OXExpression expression, OXExpression... operands) {
    assertEquals(operands.length, expression.getNbOperands());
    for (int i = 0; i < operands.length; i++) {
      assertEquals(operands[i], expression.getOperand(i));
    }
  }

  @Test
  void proxiesOfOneObjectAreEqualAndLeadBackToTheSameSolver() {
    OXExpression x = decision();
    assertEquals(x, model.getExpression(0));
    assertEquals(x.hashCode(), model.getExpression(0).hashCode());
    assertNotEquals(x, decision());
    assertSame(ombrix, model.getOmbrix());
    assertSame(ombrix, x.getOmbrix());
    assertEquals(model, x.getModel());
  }

  @Test
  void anyUseAfterDeleteIsAnIllegalState() {
    OXExpression x = decision();
    OXParam param = ombrix.getParam();
    Ombrix other = new Ombrix();
    OXExpression alive = other.getModel().createExpression(OXOperator.Bool);
    ombrix.delete();
    ombrix.delete();
    assertThrows(IllegalStateException.class, ombrix::getState);
    assertThrows(IllegalStateException.class, ombrix::solve);
    assertThrows(IllegalStateException.class, ombrix::stop);
    assertThrows(IllegalStateException.class, model::close);
    assertThrows(IllegalStateException.class, x::getIndex);
    assertThrows(IllegalStateException.class, param::getOmbrix);
    assertThrows(IllegalStateException.class, () -> other.getModel().addConstraint(x));
    assertEquals(0, alive.getIndex());
    other.delete();
  }

  @Test
  void anExpressionOfAnotherSolverIsForeign() {
    try (Ombrix other = new Ombrix()) {
      OXExpression foreign = other.getModel().createExpression(OXOperator.Bool);
      OXException failure = assertThrows(OXException.class, () -> model.addConstraint(foreign));
      assertEquals(
          "Argument expr does not belong to this instance of Ombrix.", failure.getMessage());
    }
  }

  @Test
  void anUnknownOperatorNumberIsRefused() {
    OXException failure =
        assertThrows(
            OXException.class,
            () ->
                ombrixnativejavaJNI.OXModel_createExpression__SWIG_0(
                    OXModel.getCPtr(model), model, 99));
    assertEquals(6, failure.getCode());
    assertEquals("Unknown operator : 99", failure.getMessage());
  }

  @Test
  void deletingTheHandleZeroDoesNothing() {
    ombrixnativejavaJNI.delete_Ombrix(0);
    ombrixnativejavaJNI.delete_OXVersion(0);
    ombrixnativejavaJNI.delete_OXException(0);
  }

  private static final int DEPTH = 300000;

  /** Too little stack for one native frame a level, as threads of servers have it. */
  private static <T> T onASmallStack(Callable<T> work) throws Exception {
    FutureTask<T> task = new FutureTask<>(work);
    new Thread(null, task, "small stack", 512 << 10).start();
    return task.get();
  }

  /** A chain of sums, each created before its operand; returns the last one, still without any. */
  private static OXExpression buildChain(OXModel model) {
    OXExpression first = model.createExpression(OXOperator.Sum);
    model.addObjective(first, OXObjectiveDirection.Maximize);
    OXExpression last = first;
    for (int i = 1; i < DEPTH; i++) {
      OXExpression next = model.createExpression(OXOperator.Sum);
      last.addOperand(next);
      last = next;
    }
    return last;
  }

  private static Void closeSaveAndLoadAChain(int preprocessingEnabled, String file) {
    try (Ombrix deep = new Ombrix()) {
      OXModel chain = deep.getModel();
      OXExpression x = chain.createExpression(OXOperator.Bool);
      OXExpression top = x;
      for (int i = 0; i < DEPTH; i++) {
        top = chain.createExpression(OXOperator.Sum, top);
      }
      chain.addObjective(top, OXObjectiveDirection.Maximize);
      deep.getParam().setAdvancedParam("preprocessingEnabled", preprocessingEnabled);
      chain.close();
      assertEquals(0, top.getValue());
      x.setValue(1L);
      assertEquals(1, top.getValue());
      deep.saveEnvironment(file);
    }
    try (Ombrix loaded = Ombrix.fromEnvironment(file)) {
      assertEquals(DEPTH + 1, loaded.getModel().getNbExpressions());
      assertEquals(1, loaded.getModel().getObjective(0).getValue());
    }
    return null;
  }

  @Test
  void aDeepModelIsClosedReadSavedAndLoadedOnASmallStack(@TempDir Path folder) throws Exception {
    String file = folder.resolve("deep.oxb").toString();
    onASmallStack(() -> closeSaveAndLoadAChain(0, file));
    onASmallStack(() -> closeSaveAndLoadAChain(1, file));
  }

  @Test
  void aDeepModelCreatedFromTheTopIsClosedAndReadOnASmallStack() throws Exception {
    long value =
        onASmallStack(
            () -> {
              buildChain(model).addOperand(3L);
              ombrix.getParam().setAdvancedParam("preprocessingEnabled", 0);
              model.close();
              return model.getObjective(0).getValue();
            });
    assertEquals(3, value);
  }

  @Test
  void aCycleBelowADeepChainIsFoundOnASmallStack() throws Exception {
    OXException failure =
        onASmallStack(
            () -> {
              OXExpression last = buildChain(model);
              last.addOperand(last);
              return assertThrows(OXException.class, model::close);
            });
    assertEquals(2, failure.getCode());
    String head =
        "A cycle of length " + DEPTH + " was detected in the model : \n"
            + "  - Expression 0 (type = sum)\n"
            + "  - Expression 1 (type = sum)\n";
    assertEquals(head, failure.getMessage().substring(0, head.length()));
    assertTrue(
        failure.getMessage().endsWith("\n  - Expression " + (DEPTH - 1) + " (type = sum)\n"));
    assertEquals(OXState.Modeling, ombrix.getState());
  }

  @Test
  void theVersionTellsItsPlatformAndDate() {
    assertEquals(3, OXVersion.getMajorVersionNumber());
    assertEquals(1, OXVersion.getMinorVersionNumber());
    assertEquals(20130618, OXVersion.getBuildDate());
    assertEquals(31, OXVersion.getVersionCode());
    assertEquals("Linux64", OXVersion.getPlatform());
    assertEquals("3.1.20130618-Linux64", OXVersion.getVersion());
    assertEquals(
        "Ombrix 3.1 (Linux64, build 20130618)\n" + OXVersion.getCopyright() + "\n",
        OXVersion.getInfo());
  }
}
