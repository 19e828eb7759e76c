// A picture's file is the old one or the complete new one, whatever call fails.
#include "core/write/replace_file.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>
#include <regex>

#include "tests/support/bytes.h"
#include "tests/support/fail_calls.h"

namespace lumigram::test {
namespace {

constexpr uid_t kOther = 65534;  // a user and a group that own nothing
const std::string k255Bytes = std::string(251, 'n') + ".GIF";
const std::regex kTemporary("[.]lumigram-[a-z]{8}[.]png");
const Bytes kOld = Bytes(2000, 'o') + Bytes(1000, 'd');
const Bytes kLonger = Bytes(4000, 'l') + Bytes(1000, 'r');

// Owner and mask: read and write. Group and user 289: read. Others: nothing.
const Bytes kAccessList = {2, 0,  0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  4,
                           0, 33, 1,   0,   0,   4,   0,  4, 0,   255, 255, 255, 255, 16, 0,
                           6, 0,  255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};

const std::pair<const char*, Bytes> kAttributes[] = {
    {"user.note", Text("x")}, {"user.empty", {}}, {"system.posix_acl_access", kAccessList}};

void SetAttribute(const std::string& path, const char* name, const Bytes& value) {
  (void)setxattr(path.c_str(), name, value.data(), value.size(), 0);  // some systems have none
}

struct stat StatusOf(const std::string& path) {
  struct stat status = {};
  (void)stat(path.c_str(), &status);
  return status;
}

std::string AccessTo(const std::string& path) {
  const struct stat s = StatusOf(path);
  std::string access = testing::PrintToString(std::tuple(s.st_uid, s.st_gid, s.st_mode));
  for (const auto& [name, value] : kAttributes) {
    char bytes[256];
    const ssize_t n = getxattr(path.c_str(), name, bytes, sizeof(bytes));
    access += n < 0 ? "none" : std::string(bytes, static_cast<size_t>(n));
  }
  return access;
}

// A folder that others may enter, with a picture that has an owner, a mode, an access control list
// and other attributes. A shell command changes it for the test.
class Scene {
 public:
  explicit Scene(const std::string& command = ":") {
    chmod(Path("").c_str(), 0755);
    const std::string picture = folder_.Write("p.png", kOld);
    chmod(picture.c_str(), 01640);
    (void)!chown(picture.c_str(), 12, 34);  // root can
    for (const auto& [name, value] : kAttributes) SetAttribute(picture, name, value);
    if (command[0] == ':') return;
    EXPECT_EQ(system(("cd " + Path("") + "; " + command).c_str()), 0);
  }
  std::string Path(std::string_view name = "p.png") const { return folder_.Path(name); }
  // The path of the temporary file; empty when there is none.
  std::string Temporary() const {
    for (const auto& entry : std::filesystem::directory_iterator(Path("")))
      if (std::regex_match(entry.path().filename().string(), kTemporary)) return entry.path();
    return "";
  }

 private:
  TempFolder folder_;
};

enum Way { kRenamed, kInPlace, kNot };

struct Case {
  std::string command;
  Way way;
  std::string path = "p.png", target = "p.png";  // the path that is written; the file that changes
  bool asOther = false;
  rlim_t sizeLimit = RLIM_INFINITY;
  mode_t firstMode = 0;  // of the temporary file
};

// Replaces a picture while the nth of these calls fails. Returns false, with nothing checked, when
// there were fewer calls. A process that is killed leaves the old picture or the new one, and
// perhaps a temporary file; a program that it starts does not inherit a descriptor of either.
bool Check(const Case& c, const char* calls, int nth, int error) {
  enum { kDone, kInjured = 2, kRefused = 4, kKilled = 8 };  // exit statuses of the process
  const char* const what = error > 0 ? strerror(error) : error == kHalf ? "half" : "other";
  SCOPED_TRACE(testing::Message() << c.command.substr(0, 99) << "; " << what << ": " << calls
                                  << ", call " << nth);
  const Scene scene(c.command);
  if (c.path == "q.png") SetAttribute(scene.Path(""), "system.posix_acl_default", kAccessList);
  const std::string target = scene.Path(c.target), access = AccessTo(target);
  const Bytes before = ReadWhole(target);
  const struct stat file = StatusOf(target);  // all zero: no such file
  const int result = InChild([&] {
    const rlimit size = {c.sizeLimit, c.sizeLimit};
    signal(SIGXFSZ, SIG_IGN);
    umask(error == kExec ? 0 : 027);
    if (chdir(scene.Path("").c_str()) != 0 || setrlimit(RLIMIT_FSIZE, &size) != 0 ||
        (c.asOther && (setgroups(0, nullptr) != 0 || setgid(kOther) != 0 || setuid(kOther) != 0)))
      return 9;
    const FailCalls fail(calls, nth, error);
    errno = ENOENT;  // left by another call
    const Status status = ReplaceFile(c.path.c_str(), kLonger);
    return (status == kOk ? kDone : kRefused) + (fail.Happened() ? kInjured : 0);
  });
  if (result == kDone && nth > 0) return false;
  const Bytes after = ReadWhole(target);
  const mode_t left = StatusOf(scene.Temporary()).st_mode;
  if (error == kExec) {
    EXPECT_EQ(result, kKilled);
    EXPECT_TRUE(after == before || after == kLonger);
    EXPECT_TRUE(left == 0 || left == c.firstMode || left == file.st_mode) << std::oct << left;
    return true;
  }
  EXPECT_EQ(result & ~kInjured, c.way == kNot ? kRefused : kDone);
  EXPECT_EQ(after, c.way == kNot ? before : kLonger);
  EXPECT_EQ(StatusOf(target).st_ino != file.st_ino, c.way == kRenamed);
  EXPECT_EQ(left != 0, error == kTaken) << "another program's file with that name stays";
  if (file.st_ino == 0 && c.way == kRenamed) {
    EXPECT_EQ(StatusOf(target).st_mode, mode_t{S_IFREG | 0640});
  } else if (strcmp(calls, "fsetxattr") != 0) {
    EXPECT_EQ(AccessTo(target), access);
  }
  return true;
}

TEST(ReplaceFile, KindsOfFilesAndFolders) {
  const auto at = [](size_t size) { return std::string(".").append(size - 6, '/') + "p.png"; };
  const Case cases[] = {
      {": a picture", kRenamed},
      {"rm p.png; install -m 640 /dev/null p.png", kRenamed},  // no access list
      {"mkdir d; ln -s ../p.png d/l; ln -s $PWD/d/l l.gif", kRenamed, "l.gif"},
      {"ln -s p.png 1; for i in $(seq 39); do ln -s $i $((i+1)); done; mv 40 40.gif", kRenamed,
       "40.gif"},
      {"ln -s new l.gif", kRenamed, "l.gif", "new"},
      {"ln -s l.gif l.gif", kNot, "l.gif"},
      {std::string("ln -s ").append(at(4095)) + " l.gif", kInPlace, "l.gif"},
      {std::string("ln -s ").append(at(4094)) + " l.gif", kNot, "./l.gif"},
      {": room for another name", kRenamed, at(4095 - 17)},
      {": no room for another name", kInPlace, at(4096 - 17)},
      {": longest path", kInPlace, at(4095)},
      {": too long a path", kNot, at(4096)},
      {"ln p.png h.png; chmod 6750 p.png", kInPlace, "h.png"},
      {"mv p.png " + k255Bytes, kRenamed, k255Bytes, k255Bytes},
      {": no file", kRenamed, "new.png", "new.png"},
      {"chown 0 p.png 2>&-; :", kRenamed},  // only the group differs
      {"chgrp 0 p.png 2>&-; :", kRenamed},  // only the owner
      {"mkdir d.png", kNot, "d.png"},
      {"cp p.png q.png", kRenamed, "q.png", "q.png"},  // new files inherit a list there
      {": a full disk, half-way", kNot, "p.png", "p.png", false, 4500},
      {"ln p.png full.png", kNot, "p.png", "p.png", false, 4500},
      {"mkfifo f.png", kNot, "f.png"},
      {"chown 65534 . p.png; chmod 400 p.png", kNot, "p.png", "p.png", true},
      {"chown 65534:65534 p.png; chmod 6750 p.png", kInPlace, "p.png", "p.png", true},  // not our .
      {"chown 65534:34 .; chmod 2755 .; chown 65534:65534 p.png", kRenamed, "p.png", "p.png", true},
      {"chown 65534 .; chmod 666 p.png", kInPlace, "p.png", "p.png", true},  // not our p.png
      {"chown 65534:65534 . p.png; chmod 6750 p.png", kRenamed, "p.png", "p.png", true},
  };
  for (const Case& c : cases) {
    if (!c.asOther || getuid() == 0) Check(c, "pread64 pwrite64", 0, kHalf);
  }
  if (getuid() != 0) GTEST_SKIP() << "rows of another user: only root can run them";
}

// Some failures make the write fail, some lead to writing in place. Calls that are interrupted or
// transfer only half are repeated.
TEST(ReplaceFile, EachCallFailing) {
  constexpr int kEach = -1;  // in turn
  constexpr char kRepeated[] = "open64 pread64 pwrite64 fsync ftruncate64 close";
  constexpr char kCalls[] = "open64 pwrite64 fsync fchown fchmod rename";
  // Without close(): if it fails, it is too late to put the old picture back.
  constexpr char kInPlaceCalls[] = "malloc open64 pread64 pwrite64 fsync ftruncate64";
  const std::vector<int> failures = {ENOSPC, EDQUOT, EIO}, repeated = {EINTR, kHalf};
  const std::vector<int> refusals = {EACCES,       EPERM,  EROFS,      EBUSY,  EXDEV,
                                     ENAMETOOLONG, ENOSYS, EOPNOTSUPP, ETXTBSY};
  const auto killed = [](const char* command, mode_t firstMode) {
    return Case{.command = command, .way = kRenamed, .firstMode = S_IFREG | firstMode};
  };
  const struct {
    Case c;
    const char* calls;
    int nth;
    std::vector<int> errors;
  } rows[] = {{{":", kNot}, kCalls, kEach, failures},
              {{":", kRenamed}, kRepeated, kEach, repeated},
              {{":", kNot}, "close", 0, failures},
              {{":", kNot}, "open64", 0, refusals},
              {{":", kInPlace}, "open64", 1, refusals},
              {{":", kRenamed}, "open64", 1, {kTaken}},
              {{":", kInPlace}, "rename", 0, refusals},
              {{":", kInPlace}, "fchmod", 0, {EPERM, EINVAL}},
              {{":", kRenamed}, "fsync", 0, {EINVAL, ENOSYS}},
              {{": list", kRenamed}, "fsetxattr", 0, failures},
              {{": list", kInPlace}, "fsetxattr", 2, {EPERM}},
              {{": list", kNot}, "fsetxattr", 2, failures},
              {{": list", kNot}, "malloc", 0, {ENOMEM}},
              {{"ln p.png longer", kNot}, kInPlaceCalls, kEach, failures},
              {{"ln p.png longer", kInPlace}, kRepeated, kEach, repeated},
              {{"ln p.png h; truncate -s 7000 h", kNot}, kInPlaceCalls, kEach, failures},
              {{"ln p.png h; truncate -s 7000 h", kInPlace}, kRepeated, kEach, repeated},
              {{"rm p.png", kNot}, "open64 pwrite64 fsync close", kEach, failures},
              {{"rm p.png", kRenamed}, kRepeated, kEach, repeated},
              {killed(":", 0600), kCalls, kEach, {kExec}},
              {killed("rm p.png; install -m 755 /dev/null p.png", 0655), kCalls, kEach, {kExec}},
              {killed("rm p.png; install -m 604 /dev/null p.png", 0600), kCalls, kEach, {kExec}}};
  const bool hasLists = AccessTo(Scene().Path()).find("none") == std::string::npos;
  for (const auto& [c, calls, first, errors] : rows) {
    if (c.command == ": list" && !hasLists) continue;  // GTEST_SKIP() below reports it
    for (const int error : errors) {
      int nth = std::max(first, 0);
      while (Check(c, calls, nth, error) && first == kEach) ++nth;
    }
  }
  if (!hasLists) GTEST_SKIP() << "rows with access lists: this file system has none";
}

}  // namespace
}  // namespace lumigram::test
