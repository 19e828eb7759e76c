package lumigram;

import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * Pictures at paths. These methods are in a class of their own because Android has {@code
 * java.nio.file} only since API level 26; no other class of this package uses it.
 */
public final class PicturePaths {
  private PicturePaths() {}

  /**
   * Reads the metadata of one picture. In the default file system this is {@link
   * Picture#read(File)}. From any other, such as an archive, the picture is read into memory, and
   * {@link Picture#write} does not change what is at the path.
   *
   * @param path the picture's path
   * @return the picture
   * @throws IOException when the path cannot be read
   */
  public static Picture read(Path path) throws IOException {
    File file = fileOf(path);
    if (file != null) return Picture.read(file);
    try (InputStream in = Files.newInputStream(path)) {
      return Picture.read(in);
    }
  }

  /**
   * Reads the metadata of many pictures, faster than one by one.
   *
   * @param paths the pictures' paths, in the default file system
   * @return an unmodifiable list with a result for each picture, in the same order
   * @throws UnsupportedOperationException when a path is in another file system
   */
  public static List<ReadResult> readAll(List<Path> paths) {
    List<File> files = new ArrayList<>(paths.size());
    for (Path path : paths) {
      files.add(path.toFile());
    }
    return Picture.readAll(files);
  }

  private static File fileOf(Path path) {
    try {
      return path.toFile();
    } catch (UnsupportedOperationException otherFileSystem) {
      return null;
    }
  }
}
