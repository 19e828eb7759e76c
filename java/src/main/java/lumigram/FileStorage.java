package lumigram;

import java.io.File;
import java.util.Objects;
import lumigram.jni.LumigramAttrUpdate;
import lumigram.jni.LumigramFiles;

/** A picture's file. */
final class FileStorage extends Storage {
  private final File file;

  /**
   * Makes the storage of a file.
   *
   * @param file the file
   */
  FileStorage(File file) {
    this.file = Objects.requireNonNull(file, "file");
  }

  @Override
  File file() {
    return file;
  }

  @Override
  Kind kind() {
    return Kind.of(file);
  }

  @Override
  int write(LumigramAttrUpdate update, long[] expected, boolean replacesUnread, long[] details) {
    String path = file.getPath();
    return LumigramFiles.writePicture(path, update, expected, replacesUnread, details);
  }

  @Override
  int lookUpTag(String name, String[] results) {
    return LumigramFiles.lookUpTag(file.getPath(), name, results);
  }

  @Override
  byte[] readBlob(String label, String name, int[] status) {
    return LumigramFiles.readBlob(file.getPath(), label, name, status);
  }

  @Override
  PictureException failure(int code, boolean isWriting, int error) {
    Status status = Status.of(code);
    if (code > 0 && status != Status.NOT_WRITTEN || kind() == null) {
      return new PictureException(file, status);
    }
    String[] words = {""};
    int obstacle = LumigramFiles.findObstacle(file.getPath(), isWriting, error, words);
    if (obstacle != 0) status = Status.ofObstacle(obstacle);
    return new PictureException(file, status, words[0].isEmpty() ? status.sentence() : words[0]);
  }
}
