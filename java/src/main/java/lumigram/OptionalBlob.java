package lumigram;

import java.util.NoSuchElementException;

/** The bytes of a blob that was looked for, or nothing when the picture has no such blob. */
public final class OptionalBlob {
  private final byte[] bytes;

  /**
   * Makes the result of a search.
   *
   * @param bytes the bytes; null when there is no such blob
   */
  OptionalBlob(byte[] bytes) {
    this.bytes = bytes;
  }

  /** {@return whether the picture has the blob, which may be empty} */
  public boolean isPresent() {
    return bytes != null;
  }

  /**
   * {@return the bytes of the blob: the same array every time}
   *
   * @throws NoSuchElementException when the picture has no such blob
   */
  public byte[] bytes() {
    if (bytes == null) throw new NoSuchElementException("the picture has no such blob");
    return bytes;
  }

  /**
   * {@return the bytes of the blob, or others when the picture has no such blob}
   *
   * @param others any array, or null
   */
  public byte[] orElse(byte[] others) {
    return bytes == null ? others : bytes;
  }
}
