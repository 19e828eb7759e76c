package lumigram;

import java.io.File;

/** What came of one file of a batch: a picture, or the reason why there is none. */
public final class ReadResult {
  private final File file;
  private final Picture picture;
  private final PictureException failure;

  ReadResult(Picture picture) {
    this.file = picture.file();
    this.picture = picture;
    this.failure = null;
  }

  ReadResult(PictureException failure) {
    this.file = failure.file();
    this.picture = null;
    this.failure = failure;
  }

  /**
   * The file.
   *
   * @return the file as the caller named it
   */
  public File file() {
    return file;
  }

  /**
   * How reading it went.
   *
   * @return {@link Status#OK} when there is a picture
   */
  public Status status() {
    return failure == null ? Status.OK : failure.status();
  }

  /**
   * The picture that was read.
   *
   * @return the picture
   * @throws PictureException when the file could not be read
   */
  public Picture picture() throws PictureException {
    if (failure != null) throw failure;
    return picture;
  }

  /**
   * The reason why there is no picture.
   *
   * @return the reason, or null when there is a picture
   */
  public PictureException failure() {
    return failure;
  }
}
