package lumigram;

import java.io.File;
import java.util.Locale;

/**
 * The kinds of pictures. The file name's extension alone decides the kind of a file; bytes show it
 * by their signature.
 */
public enum Kind {
  /** {@code .gif}. */
  GIF(1, 10239),
  /** {@code .jpg} or {@code .jpeg}. */
  JPEG(2, 10239),
  /** {@code .png}. The keyword in front of the document counts toward the limit. */
  PNG(3, 10234);

  /** The library's number for this kind. */
  final int number;

  /** The size of the longest document that is written. */
  final int documentBytes;

  Kind(int number, int documentBytes) {
    this.number = number;
    this.documentBytes = documentBytes;
  }

  /**
   * {@return the kind of a file; null when its extension is another one}
   *
   * @param file a file, which need not exist
   */
  static Kind of(File file) {
    String path = file.getPath();
    switch (path.substring(path.lastIndexOf('.') + 1).toLowerCase(Locale.ROOT)) {
      case "gif":
        return GIF;
      case "jpg":
      case "jpeg":
        return JPEG;
      case "png":
        return PNG;
      default:
        return null;
    }
  }

  /**
   * {@return the kind with a number of the library; null for 0}
   *
   * @param number the number
   */
  static Kind ofNumber(int number) {
    for (Kind kind : values()) {
      if (kind.number == number) return kind;
    }
    return null;
  }
}
