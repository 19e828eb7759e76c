// A picture's file is the old one or the complete new one, whatever happens.
#include "core/file/replace_file.h"

#include <errno.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/bytes.h"
#include "tests/support/fail_calls.h"

namespace lumigram::test {
namespace {

constexpr uid_t kOther = 65534;  // a user and a group that own nothing
const Bytes kOld(3000, 'o'), kShorter(1000, 's'), kLonger(5000, 'l');

constexpr char kNote[] = "user.note", kList[] = "system.posix_acl_access";
// Owner and mask may read and write, group and user 289 read, everyone else nothing.
const Bytes kAccessList = {2, 0,  0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  4,
                           0, 33, 1,   0,   0,   4,   0,  4, 0,   255, 255, 255, 255, 16, 0,
                           6, 0,  255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};

bool SetAttribute(const std::string& path, const char* name, const Bytes& value) {
  return setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

std::string Attribute(const std::string& path, const char* name) {
  char value[256];
  const ssize_t n = getxattr(path.c_str(), name, value, sizeof(value));
  return n < 0 ? "none" : std::string(value, static_cast<size_t>(n));
}

struct stat StatusOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status;
}

// A folder that others may enter, with a picture that has all that another file could fail to have,
// prepared further by a shell command.
class Scene {
 public:
  explicit Scene(std::string command = ":") {
    chmod(Path("").c_str(), 0755);
    const std::string picture = folder_.Write("p.png", kOld);
    chmod(picture.c_str(), 01640);
    (void)!chown(picture.c_str(), 12, 34);  // root can
    SetAttribute(picture, kNote, Text("x"));
    hasList_ = SetAttribute(picture, kList, kAccessList);
    if (command == ":") return;
    EXPECT_EQ(system(("cd " + Path("") + "; " + command).c_str()), 0);
  }
  std::string Path(std::string_view name = "p.png") const { return folder_.Path(name); }
  bool HasList() const { return hasList_; }  // the file system may have none
  bool HasTemporary() const {
    return system(("set -- " + Path(".lumigram-*") + "; test -e $1").c_str()) == 0;
  }

 private:
  TempFolder folder_;
  bool hasList_;
};

int Replace(const Scene& scene, const char* name, const Bytes& bytes) {
  return ReplaceFile(scene.Path(name).c_str(), bytes) == kOk ? 0 : 1;
}

enum Way { kRenamed, kInPlace, kNot };

TEST(ReplaceFile, KindsOfFilesAndFolders) {
  const std::string longName = std::string(251, 'n') + ".GIF";
  struct Case {
    std::string command;
    Way way;
    std::string path = "p.png", target = "p.png";  // written to; holding the new picture
    bool asOther = false;
  };
  const Case cases[] = {
      {":", kRenamed},
      {"ln -s p.png l.gif", kRenamed, "l.gif"},
      {"mkdir d; ln -s ../p.png d/l; ln -s $PWD/d/l l.gif", kRenamed, "l.gif"},
      {"ln -s new l.gif", kRenamed, "l.gif", "new"},
      {"ln -s l.gif l.gif", kNot, "l.gif"},
      {"ln p.png h.png", kInPlace, "h.png"},
      {"mv p.png " + longName, kRenamed, longName, longName},
      {":", kRenamed, "new.png", "new.png"},
      {"mv p.png p.txt", kNot, "p.txt", "p.txt"},
      {"mkdir d.png", kNot, "d.png"},
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
    const std::string target = scene.Path(c.target);
    const bool isNew = !std::filesystem::exists(target);
    const struct stat before = StatusOf(isNew ? scene.Path("") : target);
    const std::string note = Attribute(target, kNote), list = Attribute(target, kList);
    const int status = InChild([&] {
      umask(027);
      if (c.asOther && (setgroups(0, nullptr) != 0 || setgid(kOther) != 0 || setuid(kOther) != 0))
        return 9;
      return Replace(scene, c.path.c_str(), kLonger);
    });
    EXPECT_EQ(status, c.way == kNot);
    EXPECT_FALSE(scene.HasTemporary());
    EXPECT_EQ(ReadWhole(target), c.way == kNot ? kOld : kLonger);
    const struct stat after = StatusOf(target);
    EXPECT_EQ(after.st_ino != before.st_ino, c.way == kRenamed);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_EQ(after.st_mode, isNew ? S_IFREG | 0640 : before.st_mode);
    EXPECT_EQ(Attribute(target, kNote), note);
    EXPECT_EQ(Attribute(target, kList), list);
  }
}

TEST(ReplaceFile, AListThatNewFilesInheritIsNotThePictures) {
  const Scene scene("cp p.png q.png");
  SetAttribute(scene.Path(""), "system.posix_acl_default", kAccessList);
  const mode_t mode = StatusOf(scene.Path("q.png")).st_mode;
  EXPECT_EQ(Replace(scene, "q.png", kLonger), 0);
  EXPECT_EQ(Attribute(scene.Path("q.png"), kList), "none");
  EXPECT_EQ(StatusOf(scene.Path("q.png")).st_mode, mode);
}

struct Write {
  const char* command;
  const Bytes& bytes;
  Way way;
};
const Write kWrites[] = {{":", kLonger, kRenamed},
                         {"ln p.png h.png", kLonger, kInPlace},
                         {"ln p.png h.png", kShorter, kInPlace},
                         {"rm p.png", kLonger, kRenamed}};

// Each call fails in turn. What an interrupted call, or one that takes half, leaves undone is done.
TEST(ReplaceFile, EachCallFailing) {
  constexpr unsigned kRepeated =
      kOpenCalls | kReadCalls | kWriteCalls | kSyncCalls | kTruncateCalls | kCloseCalls;
  for (const Write& write : kWrites) {
    for (const int error : {EIO, ENOSPC, EACCES, EINTR, kHalf}) {
      const bool isMinor = error == EINTR || error == kHalf;
      bool happened = true;
      for (int nth = 0; happened; ++nth) {
        SCOPED_TRACE(testing::Message()
                     << write.command << ", call " << nth << ", error " << error);
        const Scene scene(write.command);
        const Bytes before = ReadWhole(scene.Path());
        int status;
        {
          FailCalls fail(isMinor ? kRepeated : kAllCalls & ~kUnlinkCalls, nth, error);
          status = Replace(scene, "p.png", write.bytes);
          happened = fail.Happened();
        }
        EXPECT_TRUE(status == 0 || (happened && !isMinor));
        EXPECT_FALSE(scene.HasTemporary());
        const Bytes after = ReadWhole(scene.Path());
        const bool isNew = status == 0 || (write.way == kInPlace && after != before);
        EXPECT_EQ(after, isNew ? write.bytes : before);
        EXPECT_EQ(access(scene.Path().c_str(), F_OK) == 0, !after.empty());
      }
    }
  }
}

TEST(ReplaceFile, KilledAtEachCall) {
  int status = -SIGKILL;
  for (int nth = 0; status == -SIGKILL; ++nth) {
    const Scene scene;
    status = InChild([&] {
      FailCalls killed(kAllCalls & ~(kMallocCalls | kReadCalls), nth, kKill);
      return Replace(scene, "p.png", kLonger);
    });
    const Bytes after = ReadWhole(scene.Path());
    EXPECT_TRUE(after == kLonger || (status == -SIGKILL && after == kOld)) << "call " << nth;
  }
}

// Which failures lead to writing in place, and which are failures.
TEST(ReplaceFile, RefusedOrFailed) {
  const std::vector<int> refusals = {EACCES, EPERM, EROFS, EBUSY, EXDEV};
  const std::vector<int> failures = {ENOSPC, EDQUOT, EIO};
  struct Case {
    Calls calls;
    int nth;
    std::vector<int> errors;
    Way way;
  };
  const Case cases[] = {
      {kOpenCalls, 0, refusals, kNot},         {kOpenCalls, 1, refusals, kInPlace},
      {kOpenCalls, 1, failures, kNot},         {kOpenCalls, 1, {EMFILE}, kNot},
      {kOpenCalls, 1, {EEXIST}, kRenamed},     {kRenameCalls, 0, refusals, kInPlace},
      {kRenameCalls, 0, failures, kNot},       {kModeCalls, 0, {EPERM, EINVAL}, kInPlace},
      {kModeCalls, 0, failures, kNot},         {kSyncCalls, 0, {EINVAL, ENOSYS}, kRenamed},
      {kSyncCalls, 0, {EPERM}, kNot},          {kAttributeCalls, 0, failures, kRenamed},
      {kAttributeCalls, 1, {EPERM}, kInPlace}, {kAttributeCalls, 1, failures, kNot}};
  for (const Case& c : cases) {
    for (const int error : c.errors) {
      SCOPED_TRACE(testing::Message() << "calls " << c.calls << ", error " << error);
      const Scene scene;
      if (c.calls == kAttributeCalls && !scene.HasList()) continue;
      const ino_t before = StatusOf(scene.Path()).st_ino;
      FailCalls fail(c.calls, c.nth, error);
      EXPECT_EQ(Replace(scene, "p.png", kLonger), c.way == kNot);
      EXPECT_EQ(ReadWhole(scene.Path()), c.way == kNot ? kOld : kLonger);
      EXPECT_EQ(StatusOf(scene.Path()).st_ino != before, c.way == kRenamed);
    }
  }
}

// A write that ends short because no more fits, and then fails.
TEST(ReplaceFile, FileSizeLimit) {
  for (const Write& write : kWrites) {
    SCOPED_TRACE(write.command);
    const Scene scene(write.command);
    const Bytes before = ReadWhole(scene.Path());
    const int status = InChild([&] {
      const rlimit size = {write.bytes.size() - 500, write.bytes.size() - 500};
      signal(SIGXFSZ, SIG_IGN);
      return setrlimit(RLIMIT_FSIZE, &size) != 0 ? 9 : Replace(scene, "p.png", write.bytes);
    });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(ReadWhole(scene.Path()), before);
    EXPECT_FALSE(scene.HasTemporary());
  }
}

}  // namespace
}  // namespace lumigram::test
