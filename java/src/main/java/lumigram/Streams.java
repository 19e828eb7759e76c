package lumigram;

import java.io.IOException;
import java.io.InputStream;
import java.util.Arrays;

/** Reads the bytes of a picture or a blob. */
final class Streams {
  /** The most bytes that a picture has. */
  static final int MAX_BYTES = 2_097_152;

  private static final int FIRST_BLOCK = 16_384;

  private Streams() {}

  /**
   * {@return the bytes up to the end of a stream, or its next {@value #MAX_BYTES} and one more: not
   * all of a longer stream is read}
   *
   * @param in the stream, which is not closed
   * @throws IOException when the stream cannot be read
   */
  static byte[] read(InputStream in) throws IOException {
    byte[] bytes = new byte[FIRST_BLOCK];
    int size = 0;
    for (;;) {
      int got = in.read(bytes, size, bytes.length - size);
      if (got < 0) return Arrays.copyOf(bytes, size);
      size += got;
      if (size > MAX_BYTES) return bytes;
      if (size == bytes.length) bytes = Arrays.copyOf(bytes, Math.min(2 * size, MAX_BYTES + 1));
    }
  }
}
