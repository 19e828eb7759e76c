// A picture's file is the old one or the complete new one, whatever happens.
#include "core/file/replace_file.h"

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
const Bytes kOld(3000, 'o'), kShorter(1000, 's'), kLonger(5000, 'l');

constexpr char kNote[] = "user.note", kEmpty[] = "user.empty", kList[] = "system.posix_acl_access";
// Owner and mask may read and write, group and user 289 read, everyone else nothing.
const Bytes kAccessList = {2, 0,  0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  4,
                           0, 33, 1,   0,   0,   4,   0,  4, 0,   255, 255, 255, 255, 16, 0,
                           6, 0,  255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};

void SetAttribute(const std::string& path, const char* name, const Bytes& value) {
  (void)setxattr(path.c_str(), name, value.data(), value.size(), 0);  // some systems have none
}

std::string Attribute(const std::string& path, const char* name) {
  char value[256];
  const ssize_t n = getxattr(path.c_str(), name, value, sizeof(value));
  return n < 0 ? "none" : std::string(value, static_cast<size_t>(n));
}

struct stat StatusOf(const std::string& path) {
  struct stat status = {};
  (void)stat(path.c_str(), &status);
  return status;
}

std::string AccessTo(const std::string& path) {
  const struct stat s = StatusOf(path);
  return testing::PrintToString(std::tuple(s.st_uid, s.st_gid, s.st_mode)) +
         Attribute(path, kNote) + Attribute(path, kEmpty) + Attribute(path, kList);
}

// A folder that others may enter, with a picture that has all that another file could fail to have,
// prepared further by a shell command.
class Scene {
 public:
  explicit Scene(const std::string& command = ":") {
    chmod(Path("").c_str(), 0755);
    const std::string picture = folder_.Write("p.png", kOld);
    chmod(picture.c_str(), 01640);
    (void)!chown(picture.c_str(), 12, 34);  // root can
    SetAttribute(picture, kNote, Text("x"));
    SetAttribute(picture, kEmpty, {});
    SetAttribute(picture, kList, kAccessList);
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

int Replace(const Scene& scene, const char* name, const Bytes& bytes) {
  return ReplaceFile(scene.Path(name).c_str(), bytes) == kOk ? 0 : 1;
}

enum Way { kRenamed, kInPlace, kNot };

// Reads and writes take half of what they are asked for.
TEST(ReplaceFile, KindsOfFilesAndFolders) {
  const struct Case {
    std::string command;
    Way way;
    std::string path = "p.png", target = "p.png";  // written to; holding the new picture
    bool asOther = false;
    rlim_t sizeLimit = RLIM_INFINITY;
  } cases[] = {
      {": a picture", kRenamed},
      {"ln -s p.png l.gif", kRenamed, "l.gif"},
      {"mkdir d; ln -s ../p.png d/l; ln -s $PWD/d/l l.gif", kRenamed, "l.gif"},
      {"ln -s new l.gif", kRenamed, "l.gif", "new"},
      {"ln -s l.gif l.gif", kNot, "l.gif"},
      {"ln -s $(printf './%.0s' $(seq 2040))p.png l.gif", kNot, "l.gif"},
      {"ln p.png h.png; chmod 6750 p.png", kInPlace, "h.png"},
      {"mv p.png " + k255Bytes, kRenamed, k255Bytes, k255Bytes},
      {": no file", kRenamed, "new.png", "new.png"},
      {"chown 0 p.png || test $(id -u) != 0", kRenamed},  // only the group differs
      {"mv p.png p.txt", kNot, "p.txt", "p.txt"},
      {"mkdir d.png", kNot, "d.png"},
      {"cp p.png q.png", kRenamed, "q.png", "q.png"},  // where new files inherit an access list
      {": a full disk, half-way", kNot, "p.png", "p.png", false, 4500},
      {"ln p.png full.png", kNot, "p.png", "p.png", false, 4500},
      {"mkfifo f.png", kNot, "f.png"},
      {"chown 65534 . p.png; chmod 400 p.png", kNot, "p.png", "p.png", true},
      {"chown 65534:65534 p.png; chmod 6750 p.png", kInPlace, "p.png", "p.png", true},  // but not .
      {"chown 65534 .; chmod 666 p.png", kInPlace, "p.png", "p.png", true},  // someone else's
      {"chown 65534:65534 . p.png; chmod 6750 p.png", kRenamed, "p.png", "p.png", true},
  };
  for (const Case& c : cases) {
    if (c.asOther && getuid() != 0) continue;  // skipped below
    SCOPED_TRACE(c.command);
    const Scene scene(c.command);
    if (c.path == "q.png") SetAttribute(scene.Path(""), "system.posix_acl_default", kAccessList);
    const std::string target = scene.Path(c.target);
    const ino_t before = StatusOf(target).st_ino;  // 0: no file
    const std::string access = AccessTo(target);
    const int status = InChild([&] {
      const rlimit size = {c.sizeLimit, c.sizeLimit};
      signal(SIGXFSZ, SIG_IGN);
      umask(027);
      if (setrlimit(RLIMIT_FSIZE, &size) != 0 ||
          (c.asOther && (setgroups(0, nullptr) != 0 || setgid(kOther) != 0 || setuid(kOther) != 0)))
        return 9;
      const FailCalls fail("pread64 pwrite64", 0, kHalf, FailCalls::kFromThenOn);
      return Replace(scene, c.path.c_str(), kLonger);
    });
    EXPECT_EQ(status, c.way == kNot);
    EXPECT_EQ(scene.Temporary(), "");
    EXPECT_EQ(ReadWhole(target), c.way == kNot ? kOld : kLonger);
    EXPECT_EQ(StatusOf(target).st_ino != before, c.way == kRenamed);
    EXPECT_TRUE(before == 0 ? StatusOf(target).st_mode == (S_IFREG | 0640)
                            : AccessTo(target) == access);
  }
  if (getuid() != 0) GTEST_SKIP() << "what another user may do: only root can become one";
}

// A failing close() of a picture that was written in place comes too late to put it back.
constexpr char kInPlaceCalls[] = "malloc open64 pread64 pwrite64 fsync ftruncate64";
constexpr char kCalls[] = "open64 pwrite64 fsync fchown fchmod rename";

// Each call fails in turn. What an interrupted call, or one that takes half, leaves undone is done.
TEST(ReplaceFile, EachCallFailing) {
  constexpr char kRepeated[] = "open64 pread64 pwrite64 fsync ftruncate64 close";
  const std::tuple<const char*, Bytes, const char*> writes[] = {
      {": a picture", kLonger, kCalls},
      {"ln p.png h.png; : longer", kLonger, kInPlaceCalls},
      {"ln p.png h.png; : shorter", kShorter, kInPlaceCalls},
      {"rm p.png", kLonger, kCalls}};
  for (const auto& [command, bytes, calls] : writes) {
    for (const int error : {EIO, EINTR, kHalf}) {
      const char* failed = "";
      for (int nth = 0; failed != nullptr; ++nth) {
        const Scene scene(command);
        const Bytes before = ReadWhole(scene.Path());
        const FailCalls fail(error == EIO ? calls : kRepeated, nth, error);
        const int status = Replace(scene, "p.png", bytes);
        failed = fail.Failed();
        SCOPED_TRACE(testing::Message() << command << "; " << failed << ", call " << nth << ": "
                                        << (error == kHalf ? "half" : strerror(error)));
        EXPECT_EQ(status, failed != nullptr && error == EIO);
        EXPECT_EQ(ReadWhole(scene.Path()), status == 0 ? bytes : before);
        EXPECT_EQ(StatusOf(scene.Path()).st_ino != 0, status == 0 || !before.empty());
        EXPECT_EQ(scene.Temporary(), "");
      }
    }
  }
}

// A process that is killed leaves the old picture or the new one, and perhaps a temporary file,
// with which nobody may do more than with the picture. Nothing that it starts meanwhile has either.
TEST(ReplaceFile, KilledAtEachCall) {
  const std::pair<std::string, mode_t> pictures[] = {
      {": with an access list, or for the group only", 0600},
      {"rm p.png; install -m 755 /dev/null p.png", 0655},
      {"rm p.png; install -m 604 /dev/null p.png", 0600}};
  for (const auto& [command, mode] : pictures) {
    for (int nth = 0, result = 8; result == 8; ++nth) {
      SCOPED_TRACE(testing::Message() << command << ", call " << nth);
      const Scene scene(command);
      const Bytes before = ReadWhole(scene.Path());
      const mode_t wanted = StatusOf(scene.Path()).st_mode;
      result = InChild([&] {
        umask(0);
        const FailCalls fail(kCalls, nth, kExec);
        return Replace(scene, "p.png", kLonger);
      });
      const mode_t left = StatusOf(scene.Temporary()).st_mode;  // 0: no file
      EXPECT_TRUE(result == 8 || (result == 0 && left == 0)) << result;
      EXPECT_TRUE(left == 0 || left == (S_IFREG | mode) || left == wanted) << std::oct << left;
      const Bytes after = ReadWhole(scene.Path());
      EXPECT_TRUE(after == kLonger || (result == 8 && after == before));
    }
  }
}

// Paths that have no room for the name of a file beside the picture, or are too long themselves.
TEST(ReplaceFile, LongPaths) {
  const Scene scene;
  for (std::string folder = scene.Path(""); folder.size() < 4100; folder += "./") {
    if (folder.size() < 4060) continue;
    const ino_t before = StatusOf(scene.Path()).st_ino;
    const Status status = ReplaceFile((folder + "p.png").c_str(), kLonger);
    EXPECT_EQ(status == kOk, folder.size() + 5 < 4096) << folder.size();
    EXPECT_EQ(StatusOf(scene.Path()).st_ino != before, folder.size() + 22 < 4096) << folder.size();
  }
}

// Which failures lead to writing in place, and which are failures.
TEST(ReplaceFile, RefusedOrFailed) {
  const std::vector<int> refusals = {EACCES,       EPERM,  EROFS,      EBUSY,  EXDEV,
                                     ENAMETOOLONG, ENOSYS, EOPNOTSUPP, ETXTBSY};
  const std::vector<int> failures = {ENOSPC, EDQUOT, EIO};
  const struct {
    const char* call;
    int nth;
    std::vector<int> errors;
    Way way;
    bool hasList = false;  // and needs one
  } cases[] = {{"open64", 0, refusals, kNot},
               {"open64", 1, refusals, kInPlace},
               {"open64", 1, failures, kNot},
               {"open64", 1, {EMFILE}, kNot},
               {"open64", 1, {kTaken}, kRenamed},
               {"rename", 0, refusals, kInPlace},
               {"rename", 0, failures, kNot},
               {"fchmod", 0, {EPERM, EINVAL}, kInPlace},
               {"fchmod", 0, failures, kNot},
               {"fsync", 0, {EINVAL, ENOSYS}, kRenamed},
               {"fsync", 0, {EPERM}, kNot},
               {"close", 0, failures, kNot},
               {"fsetxattr", 0, failures, kRenamed, true},
               {"fsetxattr", 2, {EPERM}, kInPlace, true},
               {"fsetxattr", 2, failures, kNot, true},
               {"malloc", 0, {ENOMEM}, kNot, true}};
  const bool hasLists = AccessTo(Scene().Path()).find("none") == std::string::npos;
  for (const auto& c : cases) {
    if (c.hasList && !hasLists) continue;  // skipped below
    for (const int error : c.errors) {
      SCOPED_TRACE(testing::Message() << c.call << ", call " << c.nth << ": "
                                      << (error == kTaken ? "taken" : strerror(error)));
      const Scene scene;
      const ino_t before = StatusOf(scene.Path()).st_ino;
      const FailCalls fail(c.call, c.nth, error);
      EXPECT_EQ(Replace(scene, "p.png", kLonger), c.way == kNot);
      EXPECT_EQ(ReadWhole(scene.Path()), c.way == kNot ? kOld : kLonger);
      EXPECT_EQ(StatusOf(scene.Path()).st_ino != before, c.way == kRenamed);
      EXPECT_EQ(!scene.Temporary().empty(), error == kTaken) << "a file of that name stays";
    }
  }
  if (!hasLists) GTEST_SKIP() << "access lists and attributes: there are none in this folder";
}

}  // namespace
}  // namespace lumigram::test
