package lumigram;

import java.util.Objects;

/** One of a picture's labels: a word that the picture stands for. */
public final class Label {
  private final String name;
  private final String note;
  private final PartOfSpeech part;

  /**
   * Makes a label.
   *
   * @param name its name: not empty, at most 24 characters and 256 bytes (see {@link PictureInfo})
   * @param note its note, within the same limits; empty for none
   * @param part its part of speech
   */
  public Label(String name, String note, PartOfSpeech part) {
    this.name = Objects.requireNonNull(name, "name");
    this.note = Objects.requireNonNull(note, "note");
    this.part = Objects.requireNonNull(part, "part");
  }

  /** {@return the label's name} */
  public String name() {
    return name;
  }

  /** {@return the label's note; empty for none} */
  public String note() {
    return note;
  }

  /** {@return the label's part of speech} */
  public PartOfSpeech part() {
    return part;
  }

  @Override
  public boolean equals(Object other) {
    if (!(other instanceof Label)) return false;
    Label that = (Label) other;
    return name.equals(that.name) && note.equals(that.note) && part == that.part;
  }

  @Override
  public int hashCode() {
    return Objects.hash(name, note, part);
  }

  /** {@return the label as text for people to read} */
  @Override
  public String toString() {
    return name + (note.isEmpty() ? "" : " (" + note + ")")
        + (part == PartOfSpeech.NONE ? "" : " [" + part.englishName() + "]");
  }
}
