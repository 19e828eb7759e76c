package lumigram.demo;

import java.io.PrintStream;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import lumigram.jni.LumigramJni;
import lumigram.jni.LumigramStatus;

/** Looks up one tag group of one picture. */
final class TagGroup {
  private TagGroup() {}

  /** Shows the first group in the batch that has several elements. */
  static boolean show(Batch batch, PrintStream out) {
    for (int i = 0; i < batch.infos.length; i++) {
      List<String> names = Arrays.asList(batch.infos[i].mTagsName);
      for (String name : names) {
        if (!Batch.orEmpty(name).isEmpty() && names.indexOf(name) != names.lastIndexOf(name)) {
          return print(batch.pictures.get(i), name, out);
        }
      }
    }
    out.println("No picture has a tag group with several elements.");
    return true;
  }

  private static boolean print(Path picture, String name, PrintStream out) {
    String[] contents = new String[10];
    int status = LumigramJni.getLumigramTagInfo(picture.toString(), name, contents);
    String title = "Tag group \"" + name + "\" of " + picture.getFileName() + ":";
    out.println(TextTable.printable(title));
    if (status != 0) {
      out.println("  " + LumigramStatus.describe(status));
      return false;
    }
    for (int k = 0; k < contents.length && !contents[k].isEmpty(); k++) {
      out.println("  " + TextTable.printable(contents[k]));
    }
    return true;
  }
}
