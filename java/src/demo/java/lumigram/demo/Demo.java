package lumigram.demo;

import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/**
 * Shows what the library reads from pictures, and writes into copies of them. The arguments are
 * pictures, and folders of pictures; the exit status is 1 when a result is wrong.
 */
public final class Demo {
  private Demo() {}

  public static void main(String[] args) throws IOException {
    if (args.length == 0) {
      System.err.println("usage: java -jar lumigram-demo.jar PICTURE_OR_FOLDER...");
      System.exit(2);
    }
    // The output is UTF-8 in every locale.
    PrintStream out = new PrintStream(new FileOutputStream(FileDescriptor.out), false, "UTF-8");
    boolean good = run(args, out);
    out.flush();
    System.exit(good ? 0 : 1);
  }

  private static boolean run(String[] args, PrintStream out) throws IOException {
    Batch batch = Batch.read(pictures(args));
    batch.print(out);
    out.println();
    boolean good = TagGroup.show(batch, out);
    out.println();
    good &= Blobs.show(batch, out);
    out.println();
    good &= WriteAndReadBack.show(batch, out);
    out.println();
    good &= InMemory.show(out);
    return good;
  }

  private static List<Path> pictures(String[] args) throws IOException {
    List<Path> pictures = new ArrayList<>();
    for (String arg : args) {
      Path path = Paths.get(arg);
      if (Files.isDirectory(path)) {
        filesIn(path).stream().filter(Demo::looksLikePicture).forEach(pictures::add);
      } else {
        pictures.add(path);
      }
    }
    return pictures;
  }

  private static boolean looksLikePicture(Path file) {
    return file.toString().matches("(?i).*\\.(gif|png|jpe?g)");
  }

  static List<Path> filesIn(Path folder) throws IOException {
    try (Stream<Path> files = Files.list(folder)) {
      return files.sorted().collect(Collectors.toList());
    }
  }
}
