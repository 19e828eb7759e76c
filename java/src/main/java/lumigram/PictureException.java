package lumigram;

import java.io.File;
import java.io.IOException;

/**
 * Reports that a picture was not read or not written. A failed write leaves the picture unchanged.
 * (Exception: a file with several hard links, or in a folder that allows no new file, is written in
 * place, and a crash in that moment can damage it.)
 */
public class PictureException extends IOException {
  private static final long serialVersionUID = 1;

  /** The file as the caller named it, or null. */
  private final File file;

  /** The kind of failure. */
  private final Status status;

  /** The reason, without a full stop. */
  private final String sentence;

  /**
   * Makes a failure with the sentence of its status.
   *
   * @param file the picture's file; null for a picture that is not in a file
   * @param status the kind of failure
   */
  public PictureException(File file, Status status) {
    this(file, status, status.sentence());
  }

  /**
   * Makes a failure with a sentence of its own.
   *
   * @param file the picture's file; null for a picture that is not in a file
   * @param status the kind of failure
   * @param sentence the exact reason, without a full stop
   */
  public PictureException(File file, Status status, String sentence) {
    super((file == null ? "picture in memory" : file) + ": " + sentence + " (" + status + ", "
        + status.code() + ")");
    this.file = file;
    this.status = status;
    this.sentence = sentence;
  }

  /** {@return the picture's file, as the caller named it; null when it is not in a file} */
  public File file() {
    return file;
  }

  /** {@return the kind of failure, never {@link Status#OK}} */
  public Status status() {
    return status;
  }

  /**
   * {@return the reason, without a full stop: the sentence of the status, or one that names the
   * field and, for {@link Status#OVER_LIMIT}, by how much it is over its limit}
   */
  public String sentence() {
    return sentence;
  }
}
