package lumigram;

/**
 * Java's modified UTF-8: the form in which the virtual machine passes texts to the native side, and
 * in which pictures store them.
 */
final class ModifiedUtf8 {
  private ModifiedUtf8() {}

  /**
   * {@return the number of bytes of a text}
   *
   * @param text any text
   */
  static int bytes(String text) {
    return encode(text).length();
  }

  /**
   * {@return the number of characters of a text as the limit of 24 counts them: control characters
   * do not count, except U+0000, which is stored as two bytes that are no control characters}
   *
   * @param text any text
   */
  static int characters(String text) {
    int count = 0;
    for (char c : text.toCharArray()) {
      if (c == 0 || c >= 0x20 && c != 0x7F) count++;
    }
    return count;
  }

  /**
   * {@return the bytes of a text, each as a character up to U+00FF}
   *
   * @param text any text
   */
  static String encode(String text) {
    StringBuilder bytes = new StringBuilder(text.length());
    for (char c : text.toCharArray()) {
      if (c != 0 && c < 0x80) {
        bytes.append(c);
      } else if (c < 0x800) {
        bytes.append((char) (0xC0 | c >> 6)).append((char) (0x80 | c & 0x3F));
      } else {
        bytes.append((char) (0xE0 | c >> 12))
            .append((char) (0x80 | c >> 6 & 0x3F))
            .append((char) (0x80 | c & 0x3F));
      }
    }
    return bytes.toString();
  }

  /**
   * {@return whether a surrogate in the text lacks its other half}
   *
   * @param text any text
   */
  static boolean hasLoneSurrogate(String text) {
    for (int i = 0; i < text.length(); i++) {
      int codePoint = text.codePointAt(i);
      if (codePoint >= Character.MIN_SURROGATE && codePoint <= Character.MAX_SURROGATE) return true;
      if (Character.isSupplementaryCodePoint(codePoint)) i++;
    }
    return false;
  }
}
