package lumigram.jni;

import java.io.ByteArrayOutputStream;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.nio.file.*;
import java.util.zip.CRC32;

/** The smallest pictures of each kind, 7 pixels wide and 5 high, that carry what they are told. */
final class Pictures {
  static final String[] KINDS = {"gif", "png", "jpg"};

  /** The document, text or bytes, may be null; the blocks, if any, stand behind it. */
  static byte[] picture(String kind, Object document, byte[]... blocks) {
    boolean none = document == null;
    byte[] text = bytes(document);
    byte[] more = bytes((Object[]) blocks);
    if (kind.equals("gif")) {
      byte[] comment = none ? text : bytes(0x21, 0xFE, chain(text));
      byte[] image = bytes(0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, chain(bytes(0)));
      return bytes("GIF89a", 7, 0, 5, 0, 0, 0, 0, comment, more, image, 0x3B);
    } else if (kind.equals("png")) {
      byte[] header = chunk("IHDR", bytes(be32(7), be32(5), 8, 0, 0, 0, 0));
      byte[] carried = none ? text : chunk("tEXt", bytes("Emoji", 0, text));
      byte[] rest = bytes(chunk("IDAT", bytes(0)), chunk("IEND", bytes()));
      return bytes(0x89, "PNG\r\n", 0x1A, "\n", header, carried, more, rest);
    }
    int size = text.length + 2;
    byte[] comment = none ? text : bytes(0xFF, 0xFE, size >> 8, size, text);
    byte[] frame = bytes(0xFF, 0xC0, 0, 11, 8, 0, 5, 0, 7, 1, 1, 0x11, 0);
    byte[] scan = bytes(0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 63, 0, 1, 2, 3);
    return bytes(0xFF, 0xD8, comment, frame, scan, 0xFF, 0xD9);
  }

  /** A blob block or chunk; the label has 11 bytes. */
  static byte[] blob(String kind, String label, String name, byte[] data) {
    int length = name.length();
    return kind.equals("gif")
        ? bytes(0x21, 0xFF, 11, label, length, name, chain(data))
        : chunk("emJe", bytes(label, be32(length), name, be32(data.length), data));
  }

  private static byte[] chain(byte[] data) {
    ByteArrayOutputStream out = new ByteArrayOutputStream();
    for (int at = 0; at < data.length; at += 255) {
      int size = Math.min(255, data.length - at);
      out.write(size);
      out.write(data, at, size);
    }
    out.write(0);
    return out.toByteArray();
  }

  private static byte[] chunk(String type, byte[] data) {
    CRC32 crc = new CRC32();
    crc.update(bytes(type, data));
    return bytes(be32(data.length), type, data, be32((int) crc.getValue()));
  }

  private static byte[] be32(int value) {
    return ByteBuffer.allocate(4).putInt(value).array();
  }

  /** Texts as UTF-8, numbers as their lowest byte, arrays as they are, one behind the other. */
  static byte[] bytes(Object... parts) {
    ByteArrayOutputStream out = new ByteArrayOutputStream();
    for (Object part : parts) {
      if (part instanceof Integer number) out.write(number);
      if (part instanceof String text) out.writeBytes(text.getBytes(StandardCharsets.UTF_8));
      if (part instanceof byte[] array) out.writeBytes(array);
    }
    return out.toByteArray();
  }

  static String save(Path folder, String name, byte[] content) throws Exception {
    return Files.write(folder.resolve(name), content).toString();
  }
}
