package lumigram;

/**
 * Reasons why a picture was not read or written. Negative codes are those of the library; positive
 * codes are for writes that this package refuses before it calls the library.
 */
public enum Status {
  /** Code 0. */
  OK(0, "Done"),
  /** Code -10: a required argument is missing. This package never passes null. */
  MISSING_ARGUMENT(-10, "A required argument is missing"),
  /** Code -20. */
  CANNOT_OPEN(-20, "The file cannot be opened"),
  /** Code -21: the file has another extension, or a JPEG has no frame header. */
  UNSUPPORTED_TYPE(-21, "The file is no .gif, .png, .jpg or .jpeg that could be read"),
  /** Code -30. */
  DAMAGED(-30, "The picture is damaged or cut short"),
  /** Code -31. */
  TOO_MANY_PIXELS(-31, "The picture is wider or higher than 960 pixels"),
  /** Code -41 of reading. */
  DOCUMENT_TOO_LONG(-41, "The picture's metadata is longer than 10240 bytes, or empty"),
  /** Code -41 of writing: any failure in the picture's own file, which is unchanged. */
  NOT_WRITTEN(-41,
      "The picture was not written: it is damaged, or would be longer than 2097152 bytes, or its"
          + " file cannot be replaced"),
  /** Code -50: the name of one blob is the same as that of another, or its beginning. */
  DUPLICATE_BLOB(-50, "Two blobs could not be told apart by their names"),
  /** Code -99: also for a picture whose inner sizes do not fit its file. */
  UNUSABLE_FILE(-99, "The file is empty, longer than 2097152 bytes or damaged, or memory ran out"),
  /** Code 1: a text, a count or the document is over its limit. */
  OVER_LIMIT(1, "The metadata is over a limit"),
  /** Code 2: a text could not be read back unchanged. */
  NOT_STORABLE(2, "A text cannot be stored"),
  /** Code 3: a file cannot become a blob of this picture, or the picture lacks a blob. */
  UNUSABLE_BLOB(3, "A blob cannot be stored"),
  /** Code 4: the write would remove something from the picture that could not be read. */
  UNREAD(4, "The picture carries more than could be read");

  private final int code;
  private final String sentence;

  Status(int code, String sentence) {
    this.code = code;
    this.sentence = sentence;
  }

  /** {@return 0, a negative code of the library, or a positive one of this package} */
  public int code() {
    return code;
  }

  /** {@return the meaning of this status: a sentence, without a full stop} */
  public String sentence() {
    return sentence;
  }

  /**
   * {@return the status of a code that a native method for reading has returned}
   *
   * @param code the code
   */
  static Status ofReading(int code) {
    for (Status status : values()) {
      if (status.code == code) return status;
    }
    return UNUSABLE_FILE;
  }

  /**
   * {@return the status of a code that the native method for writing has returned}
   *
   * @param code the code
   */
  static Status ofWriting(int code) {
    return code == NOT_WRITTEN.code ? NOT_WRITTEN : ofReading(code);
  }
}
