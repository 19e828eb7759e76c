package lumigram.jni;

import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.nio.channels.FileChannel;
import java.nio.file.DirectoryIteratorException;
import java.nio.file.DirectoryStream;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.Locale;

/**
 * The native library in the jar, for one machine. The system loads libraries from files only, so
 * the library is copied into a new folder of {@code java.io.tmpdir}, which is removed as soon as
 * the library is loaded.
 *
 * <p>A virtual machine that is killed meanwhile leaves its folder. The next one that loads the
 * library removes it: a folder is in use as long as a process has a lock on the lock file in it.
 */
final class BundledLibrary {
  private static final String PREFIX = "lumigram-library-";
  private static final String LOCK = "in-use";
  private static final int ATTEMPTS = 100;

  private static final int WRITABLE_BY_OTHERS = 0022;
  private static final int STICKY = 01000;

  private final String machine;
  private final String fileName;

  /**
   * Names the library for the machine that runs the program.
   *
   * @param fileName the library's file name
   */
  BundledLibrary(String fileName) {
    machine = System.getProperty("os.name").toLowerCase(Locale.ROOT) + "/"
        + architecture(System.getProperty("os.arch"));
    this.fileName = fileName;
  }

  /** {@return system and architecture, as the folders in the jar are named} */
  String machine() {
    return machine;
  }

  /** {@return whether the jar has the library} */
  boolean exists() {
    return BundledLibrary.class.getResource(resource()) != null;
  }

  /**
   * Loads the library.
   *
   * @throws IOException when it cannot be copied into the folder for temporary files
   * @throws UnsatisfiedLinkError when the copy cannot be loaded
   */
  void load() throws IOException {
    // A process loses its lock when it closes any descriptor of the lock file. A text literal is
    // one object in the whole virtual machine, so that classes of other class loaders wait here.
    synchronized ("lumigram.jni.BundledLibrary") {
      Path parent = new File(System.getProperty("java.io.tmpdir")).toPath().toRealPath();
      for (int attempt = 1; !loadThroughFolderIn(parent); attempt++) {
        if (attempt == ATTEMPTS) {
          throw new IOException("other programs remove new folders from " + parent);
        }
      }
    }
  }

  private static String architecture(String name) {
    switch (name) {
      case "amd64":
        return "x86_64";
      case "arm64":
        return "aarch64";
      default:
        return name;
    }
  }

  // "native" is a Java keyword and so no package. A module cannot hide what is in such a folder.
  private String resource() {
    return "/lumigram/native/" + machine + "/" + fileName;
  }

  /** False when another process took the new folder for a dead one before it was locked. */
  private boolean loadThroughFolderIn(Path parent) throws IOException {
    Path folder = Files.createTempDirectory(parent, PREFIX,
        PosixFilePermissions.asFileAttribute(PosixFilePermissions.fromString("rwx------")));
    Path lock = folder.resolve(LOCK);
    try {
      int user = attribute(folder, "uid");
      requireThatNobodyElseCanReplaceFoldersIn(parent, user);
      try (FileChannel channel =
               FileChannel.open(lock, StandardOpenOption.CREATE_NEW, StandardOpenOption.WRITE)) {
        if (channel.tryLock() == null || !Files.exists(lock)) {
          return false;
        }
        Path copy = folder.resolve(fileName);
        try (InputStream library = BundledLibrary.class.getResourceAsStream(resource())) {
          Files.copy(library, copy);
        }
        System.load(copy.toString());
        removeDeadFolders(folder, user);
        return true;
      }
    } catch (NoSuchFileException removed) {
      return false;
    } finally {
      remove(folder);
    }
  }

  private static void requireThatNobodyElseCanReplaceFoldersIn(Path parent, int user)
      throws IOException {
    int owner = attribute(parent, "uid");
    int mode = attribute(parent, "mode");
    if (owner != user && owner != 0) {
      throw new IOException(parent + " belongs to another user");
    }
    if ((mode & WRITABLE_BY_OTHERS) != 0 && (mode & STICKY) == 0) {
      throw new IOException(parent + " is writable for other users and not sticky");
    }
  }

  private static int attribute(Path path, String name) throws IOException {
    return (Integer) Files.getAttribute(path, "unix:" + name, LinkOption.NOFOLLOW_LINKS);
  }

  /** Removes what killed virtual machines of this user have left beside our folder. */
  private void removeDeadFolders(Path ours, int user) {
    try (DirectoryStream<Path> folders = Files.newDirectoryStream(ours.getParent(), PREFIX + "*")) {
      for (Path folder : folders) {
        // In another user's folder, the lock file could be a pipe, which would block us.
        if (!folder.equals(ours) && attribute(folder, "uid") == user) {
          removeIfDead(folder);
        }
      }
    } catch (IOException | DirectoryIteratorException notListed) {
      // The library is loaded. A later start removes the rest.
    }
  }

  private void removeIfDead(Path folder) {
    try (FileChannel channel = FileChannel.open(folder.resolve(LOCK), StandardOpenOption.WRITE)) {
      if (channel.tryLock() != null) {
        remove(folder);
      }
    } catch (IOException notLocked) {
      // The lock file is created first: a dead folder without it is empty.
      new File(folder.toString()).delete();
    }
  }

  private void remove(Path folder) {
    for (String name : new String[] {fileName, LOCK, ""}) {
      new File(folder.toString(), name).delete();
    }
  }
}
