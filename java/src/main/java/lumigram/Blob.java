package lumigram;

/** One of the blobs of a picture: named bytes inside a GIF or PNG. */
public final class Blob {
  private final String label;
  private final String name;
  private final int size;

  /**
   * Makes the description of a blob.
   *
   * @param label its label
   * @param name its name
   * @param size the number of its bytes
   */
  Blob(String label, String name, int size) {
    this.label = label;
    this.name = name;
    this.size = size;
  }

  /** {@return the blob's label, which begins with "EMJ"} */
  public String label() {
    return label;
  }

  /** {@return the blob's name, at most its first 256 bytes} */
  public String name() {
    return name;
  }

  /** {@return the number of the blob's bytes} */
  public int size() {
    return size;
  }

  /** {@return the blob as text for people to read} */
  @Override
  public String toString() {
    return label + " " + name + ", " + size + " bytes";
  }
}
