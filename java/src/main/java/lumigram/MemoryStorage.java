package lumigram;

import java.io.File;
import java.util.List;
import java.util.Objects;
import lumigram.jni.LumigramAttrUpdate;
import lumigram.jni.LumigramBytes;

/** A picture that is bytes. */
final class MemoryStorage extends Storage {
  private final Kind kind;
  private volatile byte[] bytes;

  /**
   * Makes the storage of bytes.
   *
   * @param bytes the picture
   * @param kind its kind; null: the kind that its first bytes show
   */
  MemoryStorage(byte[] bytes, Kind kind) {
    this.bytes = Objects.requireNonNull(bytes, "bytes");
    this.kind = kind != null ? kind : Kind.ofNumber(LumigramBytes.findKind(bytes));
  }

  /**
   * Reads a batch, as {@link LumigramBytes#readPictures} does.
   *
   * @param storages the pictures
   * @param attrs the objects that receive the metadata, as many as there are pictures
   * @param fingerprints receives two numbers for each picture
   * @param results receives the statuses
   * @return the result of that method
   */
  static int read(
      List<MemoryStorage> storages, Object[] attrs, long[] fingerprints, byte[] results) {
    byte[][] pictures = new byte[attrs.length][];
    byte[] kinds = new byte[attrs.length];
    for (int i = 0; i < pictures.length; i++) {
      pictures[i] = storages.get(i).bytes;
      kinds[i] = (byte) storages.get(i).number();
    }
    return LumigramBytes.readPictures(pictures, kinds, attrs, fingerprints, results);
  }

  @Override
  File file() {
    return null;
  }

  @Override
  Kind kind() {
    return kind;
  }

  @Override
  byte[] bytes() {
    return bytes;
  }

  @Override
  int write(LumigramAttrUpdate update, byte[][] newBlobs, long[] expected, boolean replacesUnread,
      long[] details) {
    byte[][] written = new byte[1][];
    int code = LumigramBytes.writePicture(
        bytes, number(), update, newBlobs, expected, replacesUnread, details, written);
    if (code == 0) bytes = written[0];
    return code;
  }

  @Override
  int lookUpTag(String name, String[] results) {
    return LumigramBytes.lookUpTag(bytes, number(), name, results);
  }

  @Override
  byte[] readBlob(String label, String name, int[] status) {
    return LumigramBytes.readBlob(bytes, number(), label, name, status);
  }

  @Override
  String[] listBlobs(int[] status) {
    return LumigramBytes.listBlobs(bytes, number(), status);
  }

  @Override
  PictureException failure(int code, boolean isWriting, int error) {
    if (code > 0) return new PictureException(null, Status.of(code));
    if (bytes.length == 0) return new PictureException(null, Status.EMPTY, "no bytes");
    if (bytes.length > Streams.MAX_BYTES) {
      return new PictureException(null, Status.TOO_LARGE, "over 2 MiB");
    }
    String[] words = {""};
    int obstacle = LumigramBytes.findObstacle(bytes, number(), words);
    if (obstacle == 0 && kind == null) {
      return new PictureException(null, Status.UNSUPPORTED_TYPE, "no GIF, PNG or JPEG picture");
    }
    if (obstacle == 0) return new PictureException(null, Status.of(code));
    // Only a file can be renamed.
    String sentence = words[0].replaceFirst(";.*", "");
    return new PictureException(null, Status.ofObstacle(obstacle), sentence);
  }

  private int number() {
    return kind == null ? 0 : kind.number;
  }
}
