package lumigram;

import java.io.File;
import java.util.Locale;

/** The kinds of pictures. The file name's extension alone decides the kind of a file. */
enum Kind {
  /** {@code .gif}. */
  GIF(10239),
  /** {@code .jpg} or {@code .jpeg}. */
  JPEG(10239),
  /** {@code .png}. The keyword in front of the document counts toward the limit. */
  PNG(10234);

  /** The size of the longest document that is written. */
  final int documentBytes;

  Kind(int documentBytes) {
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
}
