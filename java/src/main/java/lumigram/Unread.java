package lumigram;

import java.util.ArrayList;
import java.util.List;

/** Words for what a read withholds and a write would remove. */
final class Unread {
  /** In the order of {@link lumigram.jni.LumigramFiles#writePicture}. */
  private static final String[] WORDS = {"labels over a limit or without a name",
      "labels after the tenth", "unknown parts of speech", "tags over a limit",
      "tags of an eleventh group, after the tenth of a group or without a name",
      "second or too long categories or types", "texts between elements", "texts with markup",
      "further documents", "blobs that no tag refers to", "bytes after the end of the picture"};

  /** The number of kinds. */
  static final int KINDS = WORDS.length;

  private Unread() {}

  /**
   * {@return the reason of a refusal}
   *
   * @param counts how many there are of each kind
   */
  static String sentence(long[] counts) {
    List<String> unread = new ArrayList<>();
    for (int i = 0; i < KINDS; i++) {
      if (counts[i] != 0) unread.add(WORDS[i] + ": " + counts[i]);
    }
    return Status.UNREAD.sentence() + " and writing would keep: " + unread
        + "; metadata from PictureInfo.empty() or asNew() is written all the same";
  }
}
