package lumigram;

/** Texts as the virtual machine hands them to the native side, which is how pictures store them. */
final class ModifiedUtf8 {
  private ModifiedUtf8() {}

  /** The number of bytes. */
  static int bytes(String text) {
    return encode(text).length();
  }

  /** The number of characters that the limit of 24 counts: all but control characters. */
  static int characters(String text) {
    int count = 0;
    for (char c : text.toCharArray()) {
      if (c == 0 || c >= 0x20 && c != 0x7F) count++;
    }
    return count;
  }

  /** The bytes, as characters up to U+00FF. */
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

  /** Whether a picture may hold other bytes than these for what was read as this text. */
  static boolean mayBeSpelledOtherwise(String text) {
    return text.indexOf('\uFFFD') >= 0 || text.codePointCount(0, text.length()) < text.length();
  }

  /** Whether a surrogate stands without its other half. */
  static boolean hasLoneSurrogate(String text) {
    for (int i = 0; i < text.length(); i++) {
      int codePoint = text.codePointAt(i);
      if (codePoint >= Character.MIN_SURROGATE && codePoint <= Character.MAX_SURROGATE) return true;
      if (Character.isSupplementaryCodePoint(codePoint)) i++;
    }
    return false;
  }
}
