package lumigram.demo;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import lumigram.jni.LumigramJni;

/** Reads blobs of pictures and compares them with the files from which they were made. */
final class Blobs {
  /** The beginning of a tag's content that refers to a blob in the same picture. */
  static final String HERE = "file://THIS/";

  /** The beginning of all labels. */
  private static final String ANY_LABEL = "EMJ";

  private Blobs() {}

  /**
   * Compares every blob to which a tag of the batch refers with the file of the same name in the
   * folder "blobs" beside the picture.
   */
  static boolean show(Batch batch, PrintStream out) throws IOException {
    out.println("Blobs, and whether they are what was put in:");
    boolean good = true;
    for (int i = 0; i < batch.infos.length; i++) {
      for (String content : batch.infos[i].mTagsElement) {
        if (Batch.orEmpty(content).startsWith(HERE)) {
          String name = content.substring(content.lastIndexOf('/') + 1);
          Path picture = batch.pictures.get(i);
          good &= compare(picture, picture.resolveSibling("blobs").resolve(name), out);
        }
      }
    }
    return good;
  }

  /** Compares a file with the blob that has the file's name. */
  static boolean compare(Path picture, Path original, PrintStream out) throws IOException {
    String name = original.getFileName().toString();
    byte[] blob =
        LumigramJni.getLumigramApplicationExtensionInfo(picture.toString(), ANY_LABEL, name);
    boolean same = Files.exists(original) && Arrays.equals(blob, Files.readAllBytes(original));
    String found = blob == null ? "not found" : blob.length + " bytes";
    String verdict = same ? ", the same as " : ", NOT the same as ";
    String line = "  " + name + " of " + picture.getFileName() + ": " + found + verdict + original;
    out.println(TextTable.printable(line));
    return same;
  }
}
