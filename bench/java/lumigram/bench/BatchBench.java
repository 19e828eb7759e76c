package lumigram.bench;

import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramJni;

/**
 * What reading a batch costs, as a ratio to reading the files whole in Java: both in turn, in one warm process; a row gives
 * the median of the rounds' ratios. Arguments: folders of pictures; each folder, and each kind in it, is a row.
 */
public final class BatchBench {
    private static final int ROUNDS = 301;
    private static final int WARM_UP = 200;
    private static final byte[] BUFFER = new byte[2097152];

    private BatchBench() {}

    private interface Work {
        void run() throws IOException;
    }

    private static void readWhole(String[] paths) throws IOException {
        for (String path : paths) {
            try (FileInputStream in = new FileInputStream(path)) {
                while (in.read(BUFFER) > 0) {
                    // Until the end.
                }
            }
        }
    }

    private static void readBatches(String[] paths, Object[] infos, int size) {
        byte[] results = new byte[size];
        for (int i = 0; i + size <= paths.length; i += size) {
            String[] batch = Arrays.copyOfRange(paths, i, i + size);
            LumigramJni.getLumigramAttrInfo(batch, Arrays.copyOfRange(infos, i, i + size), results);
        }
    }

    private static double time(Work work) throws IOException {
        long start = System.nanoTime();
        work.run();
        return System.nanoTime() - start;
    }

    private static double median(double[] values) {
        double[] sorted = values.clone();
        Arrays.sort(sorted);
        return sorted[sorted.length / 2];
    }

    private static void measure(String name, String[] paths, int batch) throws IOException {
        int count = paths.length / batch * batch;
        String[] whole = Arrays.copyOf(paths, count);
        Object[] infos = new Object[count];
        for (int i = 0; i < count; ++i) {
            infos[i] = new LumigramAttrInfo();
        }
        double[] ratios = new double[ROUNDS];
        double[] ours = new double[ROUNDS];
        for (int round = -WARM_UP; round < ROUNDS; ++round) {
            double yardstick = time(() -> readWhole(whole));
            double work = time(() -> readBatches(whole, infos, batch));
            if (round >= 0) {
                ratios[round] = work / yardstick;
                ours[round] = work / count / 1000;
            }
        }
        System.out.printf("%-28s batch %3d  %7.2f us  ratio %.2f%n", name, batch, median(ours), median(ratios));
    }

    /** How many times the pictures a second two threads read, of what one does. */
    private static void measureThreads(String name, String[] paths) throws Exception {
        double[] gains = new double[31];
        for (int round = -5; round < gains.length; ++round) {
            double one = parallel(paths, 1);
            double two = parallel(paths, 2);
            if (round >= 0) {
                gains[round] = 2 * one / two;
            }
        }
        System.out.printf("%-28s two threads: %.2f times the pictures of one%n", name, median(gains));
    }

    private static double parallel(String[] paths, int threads) throws InterruptedException {
        CountDownLatch ready = new CountDownLatch(threads);
        CountDownLatch go = new CountDownLatch(1);
        List<Thread> all = new ArrayList<>();
        for (int t = 0; t < threads; ++t) {
            Object[] infos = new Object[paths.length];
            for (int i = 0; i < infos.length; ++i) {
                infos[i] = new LumigramAttrInfo();
            }
            Thread thread = new Thread(() -> {
                ready.countDown();
                try {
                    go.await();
                } catch (InterruptedException e) {
                    return;
                }
                for (int i = 0; i < 20; ++i) {
                    readBatches(paths, infos, paths.length);
                }
            });
            all.add(thread);
            thread.start();
        }
        ready.await();
        long start = System.nanoTime();
        go.countDown();
        for (Thread thread : all) {
            thread.join();
        }
        return System.nanoTime() - start;
    }

    private static String[] pictures(File folder, String extension) {
        List<String> paths = new ArrayList<>();
        File[] files = folder.listFiles();
        for (File file : files == null ? new File[0] : files) {
            if (file.isFile() && file.getName().endsWith(extension)) {
                paths.add(file.getPath());
            }
        }
        return paths.toArray(new String[0]);
    }

    public static void main(String[] args) throws Exception {
        for (String folder : args) {
            for (String extension : new String[] {".gif", ".png", ".jpg"}) {
                String[] paths = pictures(new File(folder), extension);
                if (paths.length < 64) {
                    continue;
                }
                String name = new File(folder).getName() + " " + extension.substring(1);
                measure(name, paths, 1);
                measure(name, paths, 64);
                measureThreads(name, paths);
            }
        }
    }
}
