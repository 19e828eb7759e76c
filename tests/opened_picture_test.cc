// No update of a picture is lost: it is replaced only while it is the one that was read.
#include "core/write/opened_picture.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/bytes.h"
#include "tests/support/fail_calls.h"

namespace lumigram::test {
namespace {

using Opening = OpenedPicture::Opening;
using Replacement = OpenedPicture::Replacement;
constexpr auto kToReplace = OpenedPicture::Purpose::kToReplace;
constexpr auto kToRead = OpenedPicture::Purpose::kToRead;
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
      {":", "sleep 0.02; touch p.png", Replacement::kChanged},
      {":", "cp -p p.png c; mv c p.png", Replacement::kChanged},
      {"cp p.png q.png; ln -s p.png l.png", "ln -sf q.png l.png", Replacement::kChanged, "l.png"},
      {":", "mv p.png q.png; ln -s q.png p.png", Replacement::kChanged},
      {":", "rm p.png", Replacement::kGone},
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
    EXPECT_NE(system("ls -A | grep -q '^[.]lumigram-'"), 0) << "a temporary file is left";
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

TEST(OpenedPicture, HasAtMostTwoMebibytes) {
  const Scene scene("truncate -s 2097152 m; truncate -s 2097153 n");
  EXPECT_EQ(OpenedPicture().Open("n", kToRead), Opening::kTooLarge);
  OpenedPicture picture;
  ASSERT_EQ(picture.Open("m", kToRead), Opening::kOpened);
  EXPECT_EQ(picture.Replace(kNew), Replacement::kCannotWrite) << "without a lock";
}

TEST(OpenedPicture, ALockIsWaitedFor) {
  const Scene scene;
  {
    const Descriptor holder(Open("p.png", O_RDONLY));
    ASSERT_EQ(flock(holder.Get(), LOCK_SH), 0);
    EXPECT_EQ(OpenedPicture().Open("p.png", kToRead, 0), Opening::kOpened);
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

TEST(OpenedPicture, EachCallFailing) {
  bool happened = true;
  for (int nth = 0; happened; ++nth) {
    SCOPED_TRACE(nth);
    const Scene scene;
    OpenedPicture picture;
    const FailCalls fail("malloc open64 pread64 fsync rename", nth, EIO);
    const bool isReplaced = picture.Open("p.png", kToReplace) == Opening::kOpened &&
                            picture.Replace(kNew) == Replacement::kReplaced;
    happened = fail.Happened();
    EXPECT_EQ(isReplaced, !happened);
    EXPECT_EQ(ReadWhole("p.png"), isReplaced ? kNew : kOld);
  }
}

}  // namespace
}  // namespace lumigram::test
