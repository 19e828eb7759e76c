package lumigram.jni;

import static org.junit.jupiter.api.Assertions.*;

import java.io.File;
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
    String[] command = {java, option, "-cp", classes, LoadingTest.class.getName()};
    Process child = new ProcessBuilder(command).redirectErrorStream(true).start();
    String output = new String(child.getInputStream().readAllBytes());
    assertTrue(output.contains(tried.replace("{cwd}", new File("").getAbsolutePath())), output);
    assertTrue(output.contains("set the system property lumigram.library.path to"), output);
    assertTrue(output.contains("in a folder of java.library.path, which is now"), output);
  }

  public static void main(String[] args) {
    LumigramJni.getLumigramTagInfo(null, null, null);
  }

  private static String placeOf(Class<?> type) {
    return type.getProtectionDomain().getCodeSource().getLocation().getPath();
  }
}
