package lumigram;

import java.io.File;

/** The result for one picture of a batch: a picture, or the reason why there is none. */
public final class ReadResult {
  private final File file;
  private final Picture picture;
  private final PictureException failure;

  /**
   * Makes the result for a file that was read.
   *
   * @param picture the picture
   */
  ReadResult(Picture picture) {
    this.file = picture.file();
    this.picture = picture;
    this.failure = null;
  }

  /**
   * Makes the result for a file that could not be read.
   *
   * @param failure the reason
   */
  ReadResult(PictureException failure) {
    this.file = failure.file();
    this.picture = null;
    this.failure = failure;
  }

  /** {@return the file, as the caller named it; null for a picture that is not in a file} */
  public File file() {
    return file;
  }

  /** {@return {@link Status#OK} when there is a picture, else the reason why there is none} */
  public Status status() {
    return failure == null ? Status.OK : failure.status();
  }

  /**
   * {@return the picture that was read}
   *
   * @throws PictureException when the file could not be read
   */
  public Picture picture() throws PictureException {
    if (failure != null) throw failure;
    return picture;
  }

  /** {@return the reason why there is no picture, or null when there is one} */
  public PictureException failure() {
    return failure;
  }
}
