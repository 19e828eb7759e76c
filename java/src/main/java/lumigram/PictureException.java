package lumigram;

import java.io.File;
import java.io.IOException;

/**
 * A picture that was not read or not written. When a write fails, the picture is as it was. (Only
 * where its file has several hard links, or where its folder takes no new file, can a crash in the
 * middle leave it damaged.)
 */
public class PictureException extends IOException {
  private static final long serialVersionUID = 1;

  /** The file as the caller named it. */
  private final File file;

  /** The kind of failure. */
  private final Status status;

  /** What went wrong. */
  private final String sentence;

  /**
   * A failure with the sentence of its status.
   *
   * @param file the picture's file
   * @param status why
   */
  public PictureException(File file, Status status) {
    this(file, status, status.sentence());
  }

  /**
   * A failure with a sentence of its own.
   *
   * @param file the picture's file
   * @param status why
   * @param sentence why exactly, without a full stop
   */
  public PictureException(File file, Status status, String sentence) {
    super(file + ": " + sentence + " (" + status + ", " + status.code() + ")");
    this.file = file;
    this.status = status;
    this.sentence = sentence;
  }

  /** {@return the picture's file, as the caller named it} */
  public File file() {
    return file;
  }

  /** {@return the kind of failure, never {@link Status#OK}} */
  public Status status() {
    return status;
  }

  /**
   * {@return what went wrong, without a full stop: the sentence of the status, or one that names
   * the field and says by how much it is over its limit}
   */
  public String sentence() {
    return sentence;
  }
}
