package lumigram.jni;

import java.io.File;

/**
 * Loads the native library, once: the classes with native methods call {@link #load} when they are
 * initialised. A failure is an {@link UnsatisfiedLinkError} that names what was tried, the reason,
 * and the ways out.
 */
final class LibraryLoader {
  /** The name of the system property that may hold the path of the library's file. */
  static final String PATH_PROPERTY = "lumigram.library.path";

  private static final String LIBRARY = "LumigramJniNative";

  private static boolean isLoaded;

  private LibraryLoader() {}

  /** Loads the library, if that has not been done. */
  static synchronized void load() {
    if (isLoaded) {
      return;
    }
    String path = System.getProperty(PATH_PROPERTY);
    if (path == null) {
      loadByName();
    } else {
      loadFile(new File(path).getAbsolutePath());
    }
    isLoaded = true;
  }

  private static void loadFile(String file) {
    String tried = "System.load(\"" + file + "\")";
    try {
      System.load(file);
    } catch (UnsatisfiedLinkError reason) {
      throw explained(tried, reason);
    }
    checkVersion(tried);
  }

  private static void loadByName() {
    String tried = "System.loadLibrary(\"" + LIBRARY + "\")";
    try {
      System.loadLibrary(LIBRARY);
    } catch (UnsatisfiedLinkError reason) {
      throw explained(tried, reason);
    }
    checkVersion(tried);
  }

  /** Classes and library fit when their versions are equal up to the second dot. */
  private static void checkVersion(String loaded) {
    String library = versionOfLibrary();
    if (!series(library).equals(series(Version.OF_CLASSES))) {
      throw new UnsatisfiedLinkError(String.format(
          "The classes of lumigram have version %s, and the native library that %s has loaded"
              + " has version %s: use the same version of both.",
          Version.OF_CLASSES, loaded, library));
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

  /** Names what was tried, the reason of the failure, and both ways to fix it. */
  private static UnsatisfiedLinkError explained(String tried, UnsatisfiedLinkError reason) {
    String message =
        "The native library of lumigram cannot be loaded. Tried %s: %s. Either set the system"
        + " property %s to the path of the library's file, or leave it unset and have %s in a"
        + " folder of java.library.path, which is now \"%s\".";
    UnsatisfiedLinkError error =
        new UnsatisfiedLinkError(String.format(message, tried, reason.getMessage(), PATH_PROPERTY,
            System.mapLibraryName(LIBRARY), System.getProperty("java.library.path")));
    error.initCause(reason);
    return error;
  }
}
