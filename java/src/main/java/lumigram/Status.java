package lumigram;

/**
 * Why a picture was not read or written. The library's own statuses have its negative codes; what
 * is refused before the library is asked has a positive one.
 */
public enum Status {
  /** Code 0. */
  OK(0, "Done"),
  /** Code -10: a required argument is missing. This package never lets it come to that. */
  MISSING_ARGUMENT(-10, "A required argument is missing"),
  /** Code -20. */
  CANNOT_OPEN(-20, "The file cannot be opened"),
  /** Code -21, of a file's extension, or of a JPEG without a frame header. */
  UNSUPPORTED_TYPE(-21, "The file is no .gif, .png, .jpg or .jpeg that could be read"),
  /** Code -30. */
  DAMAGED(-30, "The picture is damaged or cut short"),
  /** Code -31. */
  TOO_MANY_PIXELS(-31, "The picture is wider or higher than 960 pixels"),
  /** Code -41 of reading. */
  DOCUMENT_TOO_LONG(-41, "The picture's metadata is longer than 10240 bytes, or empty"),
  /** Code -41 of writing: all that can go wrong in the picture's own file, which is as it was. */
  NOT_WRITTEN(
      -41,
      "The picture was not written: it is damaged, or would be longer than 2097152 bytes, or its"
          + " file cannot be replaced"),
  /** Code -50: one name is the same as another, or its beginning. */
  DUPLICATE_BLOB(-50, "Two blobs could not be told apart by their names"),
  /** Code -99: also for a picture whose inner sizes do not fit its file. */
  UNUSABLE_FILE(-99, "The file is empty, longer than 2097152 bytes or damaged, or memory ran out"),
  /** Code 1: a text, a number of things or the document is over its limit. */
  OVER_LIMIT(1, "The metadata is over a limit"),
  /** Code 2: a text that could not be read back as it was written. */
  NOT_STORABLE(2, "A text cannot be stored"),
  /** Code 3: a file that cannot become a blob of this picture, or a blob that is not there. */
  UNUSABLE_BLOB(3, "A blob cannot be stored"),
  /** Code 4: writing would take away what the picture carries and reading did not tell. */
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

  /** {@return what this status means: a sentence, without a full stop} */
  public String sentence() {
    return sentence;
  }

  /** The status of a code that a method which reads has returned. */
  static Status ofReading(int code) {
    for (Status status : values()) {
      if (status.code == code) return status;
    }
    return UNUSABLE_FILE;
  }

  /** The status of a code that the method which writes has returned. */
  static Status ofWriting(int code) {
    return code == NOT_WRITTEN.code ? NOT_WRITTEN : ofReading(code);
  }
}
