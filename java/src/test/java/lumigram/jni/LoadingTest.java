package lumigram.jni;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.io.File;
import java.util.List;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** What a stranger sees when the native library is not there, in a virtual machine of its own. */
class LoadingTest {
  @ParameterizedTest
  @CsvSource({
    "-Dlumigram.library.path=no/lib.so, 'System.load(\"{cwd}/no/lib.so\"): Can''t load'",
    "-Djava.library.path=no, System.loadLibrary(\"LumigramJniNative\"): no LumigramJniNative in"
  })
  void failureSaysWhatWasTriedWhyAndBothWays(String option, String tried) throws Exception {
    String java = System.getProperty("java.home") + "/bin/java";
    String classes = placeOf(LumigramJni.class) + File.pathSeparator + placeOf(LoadingTest.class);
    String main = LoadingTest.class.getName();
    Process child =
        new ProcessBuilder(java, option, "-cp", classes, main).redirectErrorStream(true).start();
    String output = new String(child.getInputStream().readAllBytes());
    assertEquals(1, child.waitFor(), output);
    List<String> due =
        List.of(
            "UnsatisfiedLinkError: The native library of lumigram cannot be loaded",
            tried.replace("{cwd}", new File("").getAbsolutePath()),
            "lumigram.library.path to the path",
            "folder of java.library.path");
    assertEquals(List.of(), due.stream().filter(text -> !output.contains(text)).toList(), output);
  }

  public static void main(String[] args) {
    LumigramJni.getLumigramTagInfo(null, null, null);
  }

  private static String placeOf(Class<?> type) {
    return type.getProtectionDomain().getCodeSource().getLocation().getPath();
  }
}
