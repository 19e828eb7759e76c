// A picture's file is the old one or the complete new one, whatever happens.
#include "core/file/replace_file.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "tests/support/bytes.h"
#include "tests/support/fail_calls.h"

namespace lumigram::test {
namespace {

constexpr uid_t kOther = 65534;  // a user and a group that own nothing
const std::string k255Bytes = std::string(251, 'n') + ".GIF";
const Bytes kOld(3000, 'o'), kShorter(1000, 's'), kLonger(5000, 'l');

constexpr char kNote[] = "user.note", kList[] = "system.posix_acl_access";
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
         Attribute(path, kNote) + Attribute(path, kList);
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
    SetAttribute(picture, kList, kAccessList);
    if (command == ":") return;
    EXPECT_EQ(system(("cd " + Path("") + "; " + command).c_str()), 0);
  }
  std::string Path(std::string_view name = "p.png") const { return folder_.Path(name); }
  bool HasTemporary() const {
    return system(("set -- " + Path(".lumigram-*") + "; test -e $1").c_str()) == 0;
  }

 private:
  TempFolder folder_;
};

int Replace(const Scene& scene, const char* name, const Bytes& bytes) {
  return ReplaceFile(scene.Path(name).c_str(), bytes) == kOk ? 0 : 1;
}

enum Way { kRenamed, kInPlace, kNot };

TEST(ReplaceFile, KindsOfFilesAndFolders) {
  const struct Case {
    std::string command;
    Way way;
    std::string path = "p.png", target = "p.png";  // written to; holding the new picture
    bool asOther = false;
    rlim_t sizeLimit = RLIM_INFINITY;
  } cases[] = {
      {":", kRenamed},
      {"ln -s p.png l.gif", kRenamed, "l.gif"},
      {"mkdir d; ln -s ../p.png d/l; ln -s $PWD/d/l l.gif", kRenamed, "l.gif"},
      {"ln -s new l.gif", kRenamed, "l.gif", "new"},
      {"ln -s l.gif l.gif", kNot, "l.gif"},
      {"ln p.png h.png", kInPlace, "h.png"},
      {"mv p.png " + k255Bytes, kRenamed, k255Bytes, k255Bytes},
      {":", kRenamed, "new.png", "new.png"},
      {"chown 0 p.png || test $(id -u) != 0", kRenamed},  // only the group differs
      {"mv p.png p.txt", kNot, "p.txt", "p.txt"},
      {"mkdir d.png", kNot, "d.png"},
      {"cp p.png q.png", kRenamed, "q.png", "q.png"},  // where new files inherit an access list
      {":", kNot, "p.png", "p.png", false, 4500},      // which a write reaches half-way
      {"ln p.png h.png", kNot, "p.png", "p.png", false, 4500},
      {"mkfifo f.png", kNot, "f.png"},
      {"chown 65534 . p.png; chmod 400 p.png", kNot, "p.png", "p.png", true},
      {"chown 65534 p.png; chmod 4750 p.png", kInPlace, "p.png", "p.png", true},  // but not .
      {"chown 65534 .; chmod 666 p.png", kInPlace, "p.png", "p.png", true},       // someone else's
      {"chown 65534:65534 . p.png; chmod 4750 p.png", kRenamed, "p.png", "p.png", true},
  };
  for (const Case& c : cases) {
    if (c.asOther && getuid() != 0) continue;  // only root can become another
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
      return Replace(scene, c.path.c_str(), kLonger);
    });
    EXPECT_EQ(status, c.way == kNot);
    EXPECT_FALSE(scene.HasTemporary());
    EXPECT_EQ(ReadWhole(target), c.way == kNot ? kOld : kLonger);
    EXPECT_EQ(StatusOf(target).st_ino != before, c.way == kRenamed);
    EXPECT_TRUE(before == 0 ? StatusOf(target).st_mode == (S_IFREG | 0640)
                            : AccessTo(target) == access);
  }
}

// A failing close() of a picture that was written in place comes too late to put it back.
constexpr char kInPlaceCalls[] = "malloc open64 pread64 pwrite64 fsync ftruncate64";
constexpr char kCalls[] = "malloc open64 pwrite64 fsync fchown fchmod fsetxattr close rename";

const struct Write {
  const char* command;
  const Bytes& bytes;
  const char* calls;
} kWrites[] = {{":", kLonger, kCalls},
               {"ln p.png h.png", kLonger, kInPlaceCalls},
               {"ln p.png h.png", kShorter, kInPlaceCalls},
               {"rm p.png", kLonger, kCalls}};

// Each call fails in turn. What an interrupted call, or one that takes half, leaves undone is done.
// A process that is killed may leave either picture, and a temporary file.
TEST(ReplaceFile, EachCallFailing) {
  constexpr char kRepeated[] = "open64 pread64 pwrite64 fsync ftruncate64 close";
  for (const Write& write : kWrites) {
    for (const int error : {EIO, ENOSPC, EACCES, EINTR, kHalf, kKill}) {
      if (error == kKill && &write != kWrites) continue;  // only what is renamed withstands it
      const bool isRepeated = error == EINTR || error == kHalf;
      for (int nth = 0, result = 2; result != 0; ++nth) {
        SCOPED_TRACE(testing::Message()
                     << write.command << ", error " << error << ", call " << nth);
        const Scene scene(write.command);
        const Bytes before = ReadWhole(scene.Path());
        result = InChild([&] {
          FailCalls fail(isRepeated ? kRepeated : write.calls, nth, error);
          const int status = Replace(scene, "p.png", write.bytes);
          return status + (fail.Happened() ? 2 : 0);
        });
        const Bytes after = ReadWhole(scene.Path());
        EXPECT_TRUE(result == 0 || result == (isRepeated ? 2 : 3) || &write == kWrites);
        EXPECT_TRUE(after == (result == 3 ? before : write.bytes) ||
                    (result == -SIGKILL && after == before));
        EXPECT_TRUE(result < 0 || !scene.HasTemporary());
        EXPECT_EQ(StatusOf(scene.Path()).st_ino != 0, !after.empty());
      }
    }
  }
}

// Paths that are too long themselves, or for the name of a file beside the picture.
TEST(ReplaceFile, LongPaths) {
  const Scene scene;
  for (std::string folder = scene.Path(""); folder.size() < 4100; folder += "./") {
    const bool fits = folder.size() + 22 < 4096;  // with the name of a file beside the picture
    if (fits && folder.size() < 4060) continue;
    EXPECT_EQ(ReplaceFile((folder + "p.png").c_str(), kLonger) == kOk, fits) << folder.size();
  }
}

// Which failures lead to writing in place, and which are failures.
TEST(ReplaceFile, RefusedOrFailed) {
  const std::vector<int> refusals = {EACCES, EPERM, EROFS, EBUSY, EXDEV};
  const std::vector<int> failures = {ENOSPC, EDQUOT, EIO};
  const struct {
    std::string calls;
    int nth;
    std::vector<int> errors;
    Way way;
  } cases[] = {{"open64", 0, refusals, kNot},       {"open64", 1, refusals, kInPlace},
               {"open64", 1, failures, kNot},       {"open64", 1, {EMFILE}, kNot},
               {"open64", 1, {EEXIST}, kRenamed},   {"rename", 0, refusals, kInPlace},
               {"rename", 0, failures, kNot},       {"fchmod", 0, {EPERM, EINVAL}, kInPlace},
               {"fchmod", 0, failures, kNot},       {"fsync", 0, {EINVAL, ENOSYS}, kRenamed},
               {"fsync", 0, {EPERM}, kNot},         {"fsetxattr", 0, failures, kRenamed},
               {"fsetxattr", 1, {EPERM}, kInPlace}, {"fsetxattr", 1, failures, kNot},
               {"close", 0, failures, kNot},        {"malloc", 0, {ENOMEM}, kNot}};
  for (const auto& c : cases) {
    for (const int error : c.errors) {
      SCOPED_TRACE(testing::Message() << c.calls << ", error " << error);
      const Scene scene;
      if (c.calls == "fsetxattr" && Attribute(scene.Path(), kList) == "none") continue;
      const ino_t before = StatusOf(scene.Path()).st_ino;
      FailCalls fail(c.calls.c_str(), c.nth, error);
      EXPECT_EQ(Replace(scene, "p.png", kLonger), c.way == kNot);
      EXPECT_EQ(ReadWhole(scene.Path()), c.way == kNot ? kOld : kLonger);
      EXPECT_EQ(StatusOf(scene.Path()).st_ino != before, c.way == kRenamed);
    }
  }
}

}  // namespace
}  // namespace lumigram::test
