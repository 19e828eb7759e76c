package lumigram.bench;

import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import lumigram.Picture;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramAttrUpdate;
import lumigram.jni.LumigramBytes;
import lumigram.jni.LumigramFiles;
import lumigram.jni.LumigramJni;

/**
 * Measures the native methods against yardsticks, both in turn, round by round, in one warm
 * process. A row has the median time for a picture, and the median of the rounds' ratios to the
 * yardstick.
 *
 * <pre>
 * Bench read FOLDER...
 *     batches, against reading the files whole in Java; two threads, against one; and the typed
 *     API, against the native batches beneath it
 * Bench write PICTURES FOLDER...
 *     a record written into copies of the pictures in each folder, against bench/yardstick.c, whose
 *     library the property lumigram.yardstick names
 * </pre>
 */
public final class Bench {
  private static final String[] KINDS = {"gif", "png", "jpg"};

  private Bench() {}

  private interface Work {
    void run() throws IOException;
  }

  /** Reads the file and its status, writes a new one beside it, syncs that and renames it. */
  private static native void rewrite(String path);

  private static double nanoseconds(Work work) throws IOException {
    long start = System.nanoTime();
    work.run();
    return System.nanoTime() - start;
  }

  private static double median(double[] values) {
    double[] sorted = values.clone();
    Arrays.sort(sorted);
    return sorted[sorted.length / 2];
  }

  private static void compare(String row, int rounds, int pictures, Work ours, Work yardstick)
      throws IOException {
    double[] ratios = new double[rounds];
    double[] times = new double[rounds];
    for (int round = -rounds / 2; round < rounds; ++round) {
      double base = nanoseconds(yardstick);
      double time = nanoseconds(ours);
      if (round >= 0) {
        ratios[round] = time / base;
        times[round] = time / pictures / 1000;
      }
    }
    System.out.printf("%-44s %7.2f us  ratio %.2f%n", row, median(times), median(ratios));
  }

  private static String[] pictures(File folder, String kind) {
    List<String> paths = new ArrayList<>();
    File[] files = folder.listFiles();
    for (File file : files == null ? new File[0] : files) {
      if (file.isFile() && file.getName().endsWith("." + kind)) {
        paths.add(file.getPath());
      }
    }
    return paths.toArray(new String[0]);
  }

  private static void readWhole(String[] paths) throws IOException {
    byte[] buffer = new byte[8192];
    for (String path : paths) {
      try (FileInputStream in = new FileInputStream(path)) {
        while (in.read(buffer) > 0) {
          // Until the end.
        }
      }
    }
  }

  private static Object[] infos(int count) {
    Object[] infos = new Object[count];
    for (int i = 0; i < count; ++i) {
      infos[i] = new LumigramAttrInfo();
    }
    return infos;
  }

  private static void readBatches(String[] paths, Object[] infos, int size) {
    byte[] results = new byte[size];
    for (int i = 0; i + size <= paths.length; i += size) {
      String[] batch = Arrays.copyOfRange(paths, i, i + size);
      LumigramJni.getLumigramAttrInfo(batch, Arrays.copyOfRange(infos, i, i + size), results);
    }
  }

  private static void measureBatches(String row, String[] paths, int size) throws IOException {
    String[] whole = Arrays.copyOf(paths, paths.length / size * size);
    Object[] infos = infos(whole.length);
    compare(row + ", batches of " + size, 300, whole.length,
        () -> readBatches(whole, infos, size), () -> readWhole(whole));
  }

  /**
   * The typed API against the native batch beneath it, that batch against the specified one, and
   * both from bytes against from files.
   */
  private static void measureTyped(String row, String[] paths) throws IOException {
    int count = paths.length;
    List<File> files = new ArrayList<>();
    List<byte[]> pictures = new ArrayList<>();
    for (String path : paths) {
      files.add(new File(path));
      pictures.add(Files.readAllBytes(Path.of(path)));
    }
    byte[][] bytes = pictures.toArray(new byte[0][]);
    byte[] kinds = new byte[count];
    for (int i = 0; i < count; ++i) {
      kinds[i] = (byte) LumigramBytes.findKind(bytes[i]);
    }
    Object[] infos = infos(count);
    long[] fingerprints = new long[2 * count];
    byte[] results = new byte[count];
    Work nativeFiles = () -> LumigramFiles.readPictures(paths, infos, fingerprints, results);
    Work nativeBytes = () -> LumigramBytes.readPictures(bytes, kinds, infos, fingerprints, results);
    Work typedFiles = () -> Picture.readAll(files);
    Work typedBytes = () -> Picture.readAllBytes(pictures);
    Work specified = () -> LumigramJni.getLumigramAttrInfo(paths, infos, results);
    compare(row + ", LumigramFiles to LumigramJni", 300, count, nativeFiles, specified);
    compare(row + ", Picture.readAll to LumigramFiles", 300, count, typedFiles, nativeFiles);
    compare(row + ", LumigramBytes to LumigramFiles", 300, count, nativeBytes, nativeFiles);
    compare(row + ", readAllBytes to readAll", 300, count, typedBytes, typedFiles);
  }

  private interface Task {
    Work on(String[] share);
  }

  /**
     * Each of two threads has a half of the pictures: how many times the pictures of one thread do
     * they read in a second? The same ratio for reading the files whole shows what the machine
     * and its kernel allow.
     */
  private static void measureThreads(String row, String[] paths) throws InterruptedException {
    Task ours = share -> {
      Object[] infos = infos(share.length);
      return () -> readBatches(share, infos, share.length);
    };
    int half = paths.length / 2;
    List<String[]> halves =
        List.of(Arrays.copyOf(paths, half), Arrays.copyOfRange(paths, half, 2 * half));
    double[] gains = new double[61];
    double[] wholes = new double[61];
    for (int round = -20; round < gains.length; ++round) {
      double gain = gain(halves, ours);
      double whole = gain(halves, share -> () -> readWhole(share));
      if (round >= 0) {
        gains[round] = gain;
        wholes[round] = whole;
      }
    }
    System.out.printf("%-44s %.2f times the pictures of one; reading whole: %.2f%n",
        row + ", two threads", median(gains), median(wholes));
  }

  private static double gain(List<String[]> halves, Task task) throws InterruptedException {
    double alone = readAtOnce(halves.subList(0, 1), task);
    return 2 * alone / readAtOnce(halves, task);
  }

  private static double readAtOnce(List<String[]> shares, Task task) throws InterruptedException {
    CountDownLatch ready = new CountDownLatch(shares.size());
    CountDownLatch go = new CountDownLatch(1);
    List<Thread> threads = new ArrayList<>();
    for (String[] share : shares) {
      Work work = task.on(share);
      threads.add(new Thread(() -> {
        ready.countDown();
        try {
          go.await();
          for (int i = 0; i < 40; ++i) {
            work.run();
          }
        } catch (InterruptedException | IOException e) {
          throw new IllegalStateException(e);
        }
      }));
    }
    threads.forEach(Thread::start);
    ready.await();
    long start = System.nanoTime();
    go.countDown();
    for (Thread thread : threads) {
      thread.join();
    }
    return System.nanoTime() - start;
  }

  private static LumigramAttrUpdate record() {
    LumigramAttrUpdate update = new LumigramAttrUpdate();
    update.mName[0] = "smile";
    update.mNote[0] = "happy";
    update.mPart[0] = 1;
    update.mName[1] = "wink";
    update.mCategory = "face";
    update.mType = "anime";
    update.mTags[0] = "color";
    update.mTagsElement[0] = "yellow";
    return update;
  }

  private static void write(String[] paths, LumigramAttrUpdate update) {
    for (String path : paths) {
      if (LumigramJni.setLumigramAttrInfo(path, update) != 0) {
        throw new IllegalStateException(path);
      }
    }
  }

  private static void measureWrites(String row, String[] pictures, String folder)
      throws IOException {
    Path copies = Files.createTempDirectory(Path.of(folder), "lumigram-bench-");
    String[] paths = new String[Math.min(pictures.length, 100)];
    for (int i = 0; i < paths.length; ++i) {
      Path copy = copies.resolve(Path.of(pictures[i]).getFileName());
      Files.copy(Path.of(pictures[i]), copy, StandardCopyOption.REPLACE_EXISTING);
      paths[i] = copy.toString();
    }
    LumigramAttrUpdate update = record();
    write(paths, update);
    compare(row + " written in " + folder, 40, paths.length, () -> write(paths, update), () -> {
      for (String path : paths) {
        rewrite(path);
      }
    });
    for (String path : paths) {
      Files.delete(Path.of(path));
    }
    Files.delete(copies);
  }

  private static void measureReads(File folder) throws Exception {
    for (String kind : KINDS) {
      String[] paths = pictures(folder, kind);
      String row = folder.getName() + " " + kind;
      if (paths.length < 128) {
        System.out.printf("%s: %d pictures are too few%n", row, paths.length);
        continue;
      }
      for (int size : new int[] {1, 64, paths.length}) {
        measureBatches(row, paths, size);
      }
      measureThreads(row, paths);
      measureTyped(row, paths);
    }
  }

  public static void main(String[] args) throws Exception {
    if (args[0].equals("read")) {
      for (int i = 1; i < args.length; ++i) {
        measureReads(new File(args[i]));
      }
      return;
    }
    System.load(System.getProperty("lumigram.yardstick"));
    for (int i = 2; i < args.length; ++i) {
      for (String kind : KINDS) {
        measureWrites(kind, pictures(new File(args[1]), kind), args[i]);
      }
    }
  }
}
