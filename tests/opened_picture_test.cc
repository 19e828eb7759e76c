// No update of a picture is lost: it is replaced only while it is the one that was read.
#include "core/write/opened_picture.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/bytes.h"
#include "tests/support/fail_calls.h"

namespace lumigram::test {
namespace {

using Opening = OpenedPicture::Opening;
using Replacement = OpenedPicture::Replacement;
constexpr auto kToReplace = OpenedPicture::Purpose::kToReplace;
const Bytes kOld = Text("old"), kNew = Text("new bytes");

// A folder with a picture, which becomes the current folder.
class Scene {
 public:
  explicit Scene(const std::string& command = ":") {
    folder_.Write("p.png", kOld);
    std::filesystem::current_path(folder_.Path(""));
    Run(command);
  }
  ~Scene() { std::filesystem::current_path("/"); }
  static void Run(const std::string& command) { EXPECT_EQ(system(command.c_str()), 0) << command; }
  bool HasTemporary() const { return system("ls -A | grep -q '^[.]lumigram-'") == 0; }

 private:
  TempFolder folder_;
};

TEST(OpenedPicture, IsReplacedWhileItIsTheOneThatWasRead) {
  const struct {
    const char *before, *between;  // commands before the picture is opened, and after it
    Replacement result;
    const char* path = "p.png";
  } rows[] = {
      {":", "cat p.png >copy", Replacement::kReplaced},
      {"ln p.png hard; ln -s hard l.png", ":", Replacement::kReplaced, "l.png"},
      {":", "chmod 600 p.png", Replacement::kChanged},
      {":", "ln p.png hard", Replacement::kChanged},
      {":", "printf OLD >p.png", Replacement::kChanged},
      {"ln p.png hard", "printf OLD >p.png", Replacement::kChanged},
      {":", "printf longer >p.png", Replacement::kChanged},
      {":", "sleep 0.02; touch p.png", Replacement::kChanged},
      {":", "cp -p p.png c; mv c p.png", Replacement::kChanged},
      {"cp p.png q.png; ln -s p.png l.png", "ln -sf q.png l.png", Replacement::kChanged, "l.png"},
      {":", "mv p.png q.png; ln -s q.png p.png", Replacement::kChanged},
      {":", "rm p.png", Replacement::kGone},
      {"ln p.png hard", "rm p.png", Replacement::kGone},
  };
  for (const auto& [before, between, result, path] : rows) {
    SCOPED_TRACE(std::string(before) + "; then " + between);
    const Scene scene(before);
    OpenedPicture picture;
    ASSERT_EQ(picture.Open(path, kToReplace), Opening::kOpened);
    EXPECT_EQ(Bytes(picture.Bytes().begin(), picture.Bytes().end()), kOld);
    Scene::Run(std::string(between) + "; cat p.png >seen 2>&-; :");
    EXPECT_EQ(picture.Replace(kNew), result);
    EXPECT_EQ(ReadWhole("p.png"), result == Replacement::kReplaced ? kNew : ReadWhole("seen"));
    EXPECT_EQ(std::filesystem::exists("p.png"), result != Replacement::kGone);
    EXPECT_FALSE(scene.HasTemporary());
  }
}

// Most of these writes get the times that the picture had, because the clock of a file system is
// coarse: only the bytes differ.
TEST(OpenedPicture, IsComparedByItsBytes) {
  const Scene scene("truncate -s 5000 p.png");
  for (int i = 1; i <= 30; ++i) {
    const Descriptor other(Open("p.png", O_RDWR));
    const uint8_t byte = static_cast<uint8_t>(i);
    ASSERT_TRUE(WriteAt(other.Get(), {&byte, 1}, 4998));
    OpenedPicture picture;
    ASSERT_EQ(picture.Open("p.png", kToReplace), Opening::kOpened);
    ASSERT_TRUE(WriteAt(other.Get(), {&byte, 1}, 4999));
    ASSERT_EQ(picture.Replace(kNew), Replacement::kChanged);
  }
}

TEST(OpenedPicture, OnlyPicturesAreOpened) {
  const Scene scene("mkdir d; mkfifo f; : >e; truncate -s 2097152 m; truncate -s 2097153 n");
  const std::pair<const char*, Opening> rows[] = {
      {"none", Opening::kCannotOpen}, {"p.png/", Opening::kCannotOpen}, {"d", Opening::kNotRegular},
      {"f", Opening::kNotRegular},    {"e", Opening::kEmpty},           {"m", Opening::kOpened},
      {"n", Opening::kTooLarge}};
  for (const auto& [path, result] : rows) {
    for (const auto purpose : {OpenedPicture::Purpose::kToRead, kToReplace})
      EXPECT_EQ(OpenedPicture().Open(path, purpose), result) << path;
  }
  OpenedPicture reading;
  ASSERT_EQ(reading.Open("p.png", OpenedPicture::Purpose::kToRead), Opening::kOpened);
  EXPECT_EQ(reading.Replace(kNew), Replacement::kCannotWrite);
}

TEST(OpenedPicture, ALockIsWaitedFor) {
  const Scene scene;
  {
    const Descriptor holder(Open("p.png", O_RDONLY));
    ASSERT_EQ(flock(holder.Get(), LOCK_SH), 0);
    EXPECT_EQ(OpenedPicture().Open("p.png", OpenedPicture::Purpose::kToRead, 0), Opening::kOpened);
    const uint64_t start = Nanoseconds();
    EXPECT_EQ(OpenedPicture().Open("p.png", kToReplace, 100), Opening::kLocked);
    EXPECT_GE(Nanoseconds() - start, 100'000'000u);
    EXPECT_LE(Nanoseconds() - start, 2'000'000'000u);
    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EINVAL, EBADF}) {
      const FailCalls noLocks("flock", 0, error);
      EXPECT_EQ(OpenedPicture().Open("p.png", kToReplace, 0), Opening::kOpened) << error;
    }
  }
  const FailCalls interrupted("flock", 0, EINTR);
  OpenedPicture picture;
  EXPECT_EQ(picture.Open("p.png", kToReplace, 0), Opening::kOpened);
  EXPECT_EQ(OpenedPicture().Open("p.png", kToReplace, 0), Opening::kLocked);
}

// Each process adds bytes to the picture, one by one.
TEST(OpenedPicture, NoUpdateIsLost) {
  constexpr int kProcesses = 4, kRounds = 40;
  const Scene scene;
  for (int i = 0; i < kProcesses; ++i) {
    if (fork() != 0) continue;
    for (int round = 0; round < kRounds; ++round) {
      OpenedPicture picture;
      if (picture.Open("p.png", kToReplace) != Opening::kOpened) _exit(1);
      const Bytes more = Bytes(picture.Bytes().begin(), picture.Bytes().end()) + Text(".");
      if (picture.Replace(more) != Replacement::kReplaced) _exit(2);
    }
    _exit(0);
  }
  for (int i = 0, status; i < kProcesses; ++i) {
    wait(&status);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(ReadWhole("p.png"), kOld + Bytes(kProcesses * kRounds, '.'));
  EXPECT_FALSE(scene.HasTemporary());
}

TEST(OpenedPicture, EachCallFailing) {
  for (const char* const command : {":", "ln p.png hard"}) {
    bool happened = true;
    for (int nth = 0; happened; ++nth) {
      SCOPED_TRACE(testing::Message() << command << "; call " << nth);
      const Scene scene(command);
      Replacement result = Replacement::kCannotWrite;
      {
        OpenedPicture picture;
        const FailCalls fail("malloc open64 fstat64 pread64 pwrite64 fsync fchmod rename", nth,
                             EIO);
        if (picture.Open("p.png", kToReplace) == Opening::kOpened) result = picture.Replace(kNew);
        happened = fail.Happened();
      }
      EXPECT_EQ(ReadWhole("p.png"), result == Replacement::kReplaced ? kNew : kOld);
      EXPECT_TRUE(happened || result == Replacement::kReplaced);
      EXPECT_FALSE(scene.HasTemporary());
    }
  }
}

}  // namespace
}  // namespace lumigram::test
