package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Environments as files, from Java. */
class EnvironmentTest {
  private static final String TWO_OF_THREE =
      "<OXM01>\n{\"expressions\"={{\"type\"=\"bool\",\"name\"=\"a\"},{\"type\"=\"bool\"},{\"type\"=\"bool\"},"
          + "{\"type\"=\"sum\"},{\"type\"=\"const\",\"value\"=2},{\"type\"=\"leq\"}},"
          + "\"operands\"={{},{},{},{0,1,2},{},{3,4}},\"constraints\"={{\"idx\"=5}},"
          + "\"objectives\"={{\"idx\"=3,\"dir\"=\"maximize\"}},"
          + "\"phases\"={{\"iterationLimit\"=2000}},\"parameters\"={\"seed\"=7,\"verbosity\"=0}}";

  @TempDir Path folder;

  private String write(String name, String text) throws IOException {
    return Files.writeString(folder.resolve(name), text).toString();
  }

  @Test
  void aSearchGoesOnFromTheFileInANewSolver() throws IOException {
    String saved = folder.resolve("saved.oxb.gz").toString();
    try (Ombrix first = Ombrix.fromEnvironment(write("model.oxm", TWO_OF_THREE))) {
      assertEquals(OXState.Stopped, first.getState());
      assertEquals(7, first.getParam().getSeed());
      first.solve();
      first.saveEnvironment(saved);
    }
    try (Ombrix second = Ombrix.fromEnvironment(saved)) {
      assertEquals(2, second.getModel().getObjective(0).getValue());
      assertEquals(2000, second.getPhase(0).getIterationLimit());
      second.solve();
      assertEquals(2, second.getModel().getObjective(0).getValue());
    }
  }

  @Test
  void aFileThatCannotBeReadIsAFailureThatNamesIt() {
    String missing = folder.resolve("missing.oxm").toString();
    OXException failure =
        assertThrows(OXException.class, () -> Ombrix.fromEnvironment(missing));
    assertEquals(1, failure.getCode());
    assertEquals("Cannot open file " + missing, failure.getExplanation());
    assertThrows(NullPointerException.class, () -> Ombrix.fromEnvironment(null));
  }

  @Test
  void aFailedLoadLeavesASolverThatTakesNoOtherFile() throws IOException {
    String broken = write("broken.oxm", TWO_OF_THREE.replace("\"idx\"=5", "\"idx\"=55"));
    String whole = write("whole.oxm", TWO_OF_THREE);
    try (Ombrix used = new Ombrix()) {
      OXException failure =
          assertThrows(OXException.class, () -> used.loadEnvironment(broken));
      assertEquals(1, failure.getCode());
      assertTrue(
          failure.getExplanation().startsWith("Expression with index 55 does not exist."),
          failure.getExplanation());
      assertEquals(6, used.getModel().getNbExpressions());
      assertEquals(
          2, assertThrows(OXException.class, () -> used.loadEnvironment(whole)).getCode());
    }
    assertThrows(OXException.class, () -> Ombrix.fromEnvironment(broken));
    try (Ombrix fresh = Ombrix.fromEnvironment(whole)) {
      assertEquals(1, fresh.getModel().getNbConstraints());
    }
  }
}
