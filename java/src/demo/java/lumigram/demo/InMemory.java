package lumigram.demo;

import java.io.ByteArrayInputStream;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.Base64;
import lumigram.Picture;
import lumigram.PictureInfo;

/** Reads and rewrites a picture that never was a file, with the typed API. */
final class InMemory {
  /** A GIF of one pixel, as it may come from a network. */
  private static final byte[] RECEIVED =
      Base64.getDecoder().decode("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");

  private InMemory() {}

  static boolean show(PrintStream out) throws IOException {
    byte[] note = "Hello from memory!\n".getBytes(StandardCharsets.UTF_8);
    Picture picture = Picture.read(new ByteArrayInputStream(RECEIVED));
    PictureInfo info = picture.info().withLabel("dot").withBlob("note", "EMJ_NOTE", "n.txt", note);
    picture.write(info);
    ByteArrayOutputStream sent = new ByteArrayOutputStream();
    picture.writeTo(sent);

    Picture back = Picture.read(sent.toByteArray());
    out.println("A picture of " + RECEIVED.length + " bytes that never was a file, rewritten:");
    out.println("  " + back.kind() + ", " + back.fileSize() + " bytes; " + back.info());
    out.println("  blobs: " + back.blobs());
    return back.info().equals(info);
  }
}
