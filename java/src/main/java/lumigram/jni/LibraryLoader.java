package lumigram.jni;

import java.io.File;
import java.io.IOException;

/**
 * Loads the native library, once: the classes with native methods call {@link #load} when they are
 * initialised. A failure is an {@link UnsatisfiedLinkError} that names what was tried, the reason,
 * and the ways out.
 */
final class LibraryLoader {
  /** The name of the system property that may hold the path of the library's file. */
  static final String PATH_PROPERTY = "lumigram.library.path";

  private static final String LIBRARY = "LumigramJniNative";

  private static final boolean IS_ANDROID = "Dalvik".equals(System.getProperty("java.vm.name"));

  private static boolean isLoaded;

  private LibraryLoader() {}

  /** Loads the library, if that has not been done. */
  static synchronized void load() {
    if (isLoaded) {
      return;
    }
    String path = System.getProperty(PATH_PROPERTY);
    if (path != null) {
      loadFile(new File(path).getAbsolutePath());
    } else if (IS_ANDROID) {
      loadByName("");
    } else {
      BundledLibrary bundled = new BundledLibrary(System.mapLibraryName(LIBRARY));
      if (bundled.exists()) {
        loadBundled(bundled);
      } else {
        loadByName("The jar has no library for " + bundled.machine() + ". ");
      }
    }
    isLoaded = true;
  }

  private static void loadFile(String file) {
    String tried = "System.load(\"" + file + "\")";
    try {
      System.load(file);
    } catch (UnsatisfiedLinkError reason) {
      throw failure("Tried " + tried, reason, "");
    }
    checkVersion(tried);
  }

  private static void loadBundled(BundledLibrary bundled) {
    String tried = "to load the library for " + bundled.machine() + " from the jar";
    try {
      bundled.load();
    } catch (IOException | UnsatisfiedLinkError reason) {
      throw failure("Tried " + tried + " through a new folder in java.io.tmpdir", reason,
          ", or java.io.tmpdir to a folder where you may create files and run programs");
    }
    checkVersion("the jar");
  }

  private static void loadByName(String why) {
    String tried = "System.loadLibrary(\"" + LIBRARY + "\")";
    try {
      System.loadLibrary(LIBRARY);
    } catch (UnsatisfiedLinkError reason) {
      throw failure(why + "Tried " + tried, reason,
          ", or leave it unset and have " + System.mapLibraryName(LIBRARY)
              + " in a folder of java.library.path, which is now \""
              + System.getProperty("java.library.path") + "\"");
    }
    checkVersion(tried);
  }

  /** Classes and library fit when their versions are equal up to the second dot. */
  private static void checkVersion(String loaded) {
    String library = versionOfLibrary();
    if (!series(library).equals(series(Version.ofClasses()))) {
      throw new UnsatisfiedLinkError(String.format(
          "The classes of lumigram have version %s, and the native library that %s has loaded"
              + " has version %s: use the same version of both.",
          Version.ofClasses(), loaded, library));
    }
  }

  private static String versionOfLibrary() {
    try {
      return libraryVersion();
    } catch (UnsatisfiedLinkError noSuchMethod) {
      return "unknown (an older one)";
    }
  }

  private static String series(String version) {
    int dot = version.lastIndexOf('.');
    return dot < 0 ? version : version.substring(0, dot);
  }

  /** Returns the version of the library: three numbers with dots between them. */
  private static native String libraryVersion();

  /** Names what was tried, the reason of the failure, and the ways out. */
  private static UnsatisfiedLinkError failure(String tried, Throwable reason, String wayOut) {
    String why = reason instanceof IOException ? reason.toString() : reason.getMessage();
    UnsatisfiedLinkError error = new UnsatisfiedLinkError(String.format(
        "The native library of lumigram cannot be loaded. %s: %s. Set the system property"
            + " %s to the path of the library's file%s.",
        tried, why, PATH_PROPERTY, wayOut));
    error.initCause(reason);
    return error;
  }
}
