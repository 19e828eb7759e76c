package lumigram;

import lumigram.jni.LumigramFiles;

/**
 * Reasons why a picture was not read or written. Negative codes are those of the library; positive
 * codes are reasons that only this package distinguishes.
 */
public enum Status {
  /** Code 0. */
  OK(0, "Done"),
  /** Code -10: a required argument is missing. This package never passes null. */
  MISSING_ARGUMENT(-10, "A required argument is missing"),
  /** Code -20: for a reason that none of the positive codes names. */
  CANNOT_OPEN(-20, "The file cannot be opened"),
  /** Code -21: the file has another extension, or a JPEG has no frame header. */
  UNSUPPORTED_TYPE(-21, "The file is no .gif, .png, .jpg or .jpeg that could be read"),
  /** Code -30. */
  DAMAGED(-30, "The picture is damaged or cut short"),
  /** Code -31. */
  TOO_MANY_PIXELS(-31, "The picture is wider or higher than 960 pixels"),
  /** Code -41. */
  DOCUMENT_TOO_LONG(-41, "The picture's metadata is longer than 10240 bytes, or empty"),
  /** Code -42: only of writing. */
  NEW_PICTURE_TOO_LARGE(-42, "The new picture would be longer than 2097152 bytes"),
  /** Code -50: the name of one blob is the same as that of another, or its beginning. */
  DUPLICATE_BLOB(-50, "Two blobs could not be told apart by their names"),
  /** Code -99: also for a picture whose inner sizes do not fit its file. */
  UNUSABLE_FILE(-99, "The file is damaged, or memory ran out"),
  /** Code 1: a text, a count or the document is over its limit. */
  OVER_LIMIT(1, "The metadata is over a limit"),
  /** Code 2: a text could not be read back unchanged. */
  NOT_STORABLE(2, "A text cannot be stored"),
  /** Code 3: a file cannot become a blob of this picture, or the picture lacks a blob. */
  UNUSABLE_BLOB(LumigramFiles.BLOB_MISSING, "A blob cannot be stored"),
  /** Code 4: the write would remove something from the picture that could not be read. */
  UNREAD(LumigramFiles.UNREAD, "The picture carries more than could be read"),
  /** Code 5: since it was read or last written, somebody else changed document or blobs. */
  CHANGED(LumigramFiles.CHANGED,
      "The metadata of the picture was changed by somebody else: read the picture again"),
  /** Code 6: another program holds the picture's lock, or keeps changing the picture. */
  BUSY(LumigramFiles.BUSY, "Another program is writing the picture, for too long"),
  /** Code 7: the file could not be replaced; the picture is unchanged. */
  NOT_WRITTEN(LumigramFiles.NOT_REPLACED, "The file cannot be replaced"),
  /** Code 11. */
  MISSING(11, "There is no such file"),
  /** Code 12: no permission to read it, or to search its folder. */
  FORBIDDEN(12, "The file must not be read"),
  /** Code 13: a folder, a device, a pipe or a socket. */
  NOT_A_FILE(13, "This is no regular file"),
  /** Code 14. */
  EMPTY(14, "The file is empty"),
  /** Code 15. */
  TOO_LARGE(15, "The file is longer than 2097152 bytes"),
  /** Code 16: a picture of another kind than its name says, another format, or text. */
  OTHER_CONTENT(16, "The file holds something else than its name says"),
  /** Code 17: the file may be read and not written. */
  READ_ONLY(17, "The file must not be written"),
  /** Code 18: only of {@link Picture#readFolder}. */
  NOT_A_FOLDER(18, "This is no folder");

  /** By the numbers of {@link LumigramFiles#findObstacle}. */
  private static final Status[] OBSTACLES = {OK, MISSING, FORBIDDEN, NOT_A_FILE, NOT_A_FILE, EMPTY,
      TOO_LARGE, OTHER_CONTENT, OTHER_CONTENT, OTHER_CONTENT, READ_ONLY};

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
   * {@return the status of a code that a native method has returned}
   *
   * @param code the code
   */
  static Status of(int code) {
    for (Status status : values()) {
      if (status.code == code) return status;
    }
    return UNUSABLE_FILE;
  }

  /**
   * {@return the status for what the native side has found to be wrong with a file; {@link #OK}
   * when it has found nothing}
   *
   * @param number what {@link LumigramFiles#findObstacle} has returned
   */
  static Status ofObstacle(int number) {
    return OBSTACLES[number];
  }
}
