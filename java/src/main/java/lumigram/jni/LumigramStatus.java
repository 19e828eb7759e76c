package lumigram.jni;

/** Words for the statuses that the methods of {@link LumigramJni} return. */
public final class LumigramStatus {
  private LumigramStatus() {}

  /**
   * Describes a status in a few words. The exact meaning depends on the method that returned it,
   * whose description has it.
   *
   * @param status a status of any method
   * @return the words, never null; unknown codes have words too
   */
  public static String describe(int status) {
    switch (status) {
      case 0:
        return "ok";
      case -10:
        return "required argument missing";
      case -20:
        return "cannot be opened";
      case -21:
        return "unsupported file type";
      case -30:
        return "damaged or truncated picture";
      case -31:
        return "picture over 960 pixels";
      case -41:
        return "text or document too long, or not writable";
      case -50:
        return "duplicate blob name";
      case -99:
        return "bad argument, size, field or file";
      default:
        return "unknown status " + status;
    }
  }
}
