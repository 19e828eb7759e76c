package lumigram;

import java.io.File;
import java.io.FileInputStream;
import java.io.FileNotFoundException;
import java.io.IOException;
import java.util.List;
import java.util.Objects;
import lumigram.jni.LumigramAttrUpdate;
import lumigram.jni.LumigramFiles;

/** A picture's file. */
final class FileStorage extends Storage {
  private static final int CANNOT_OPEN = -20;

  private final File file;

  /**
   * Makes the storage of a file.
   *
   * @param file the file
   */
  FileStorage(File file) {
    this.file = Objects.requireNonNull(file, "file");
  }

  /**
   * Reads a batch, as {@link LumigramFiles#readPictures} does.
   *
   * @param storages the pictures
   * @param attrs the objects that receive the metadata, as many as there are pictures
   * @param fingerprints receives two numbers for each picture
   * @param results receives the statuses
   * @return the result of that method
   */
  static int read(List<FileStorage> storages, Object[] attrs, long[] fingerprints, byte[] results) {
    String[] paths = new String[attrs.length];
    for (int i = 0; i < paths.length; i++) {
      paths[i] = storages.get(i).file.getPath();
    }
    return LumigramFiles.readPictures(paths, attrs, fingerprints, results);
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
  int write(LumigramAttrUpdate update, byte[][] newBlobs, long[] expected, boolean replacesUnread,
      long[] details) {
    return LumigramFiles.writePicture(
        file.getPath(), update, newBlobs, expected, replacesUnread, details);
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
  String[] listBlobs(int[] status) {
    return LumigramFiles.listBlobs(file.getPath(), status);
  }

  @Override
  byte[] bytes() throws IOException {
    if (!file.isFile()) throw failure(CANNOT_OPEN, false, 0);
    try (FileInputStream in = new FileInputStream(file)) {
      byte[] bytes = Streams.read(in);
      if (bytes.length > Streams.MAX_BYTES) throw new PictureException(file, Status.TOO_LARGE);
      return bytes;
    } catch (FileNotFoundException refused) {
      throw failure(CANNOT_OPEN, false, 0);
    }
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
