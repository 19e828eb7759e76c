package lumigram;

import java.io.File;
import java.util.Locale;

/** The kinds of pictures, which only the file name's extension tells apart. */
enum Kind {
  GIF(10239),
  JPEG(10239),
  /** The keyword before the document takes room, too. */
  PNG(10234);

  /** The longest document that is written. */
  final int documentBytes;

  Kind(int documentBytes) {
    this.documentBytes = documentBytes;
  }

  /** The kind of a file, or null. */
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
