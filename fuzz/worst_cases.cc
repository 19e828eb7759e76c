// Pictures of 2 MiB and documents of 10 KiB that are made to take long or much: every function that
// takes a picture or a document over each of them. Prints the time and the memory of each call that
// took longest, and fails when one took a second, or more memory than a few times the picture.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include "core/base/text.h"
#include "fuzz/input.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

using namespace lumigram;
using namespace lumigram::test;

namespace {

constexpr size_t kSize = kLumigramMaxPictureBytes;
constexpr long kMaxMilliseconds = 1000, kMaxKilobytes = 8 * kSize / 1024;
constexpr int kNever = -12345;  // a status that no function returns

bool failed = false;

// In a process of its own, so that its memory is its own.
void Measure(const std::string& name, const std::function<void()>& run) {
  static long idle = 0;
  fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    run();
    _exit(0);
  }
  int status = 0;
  rusage used = {};
  wait4(child, &status, 0, &used);
  const auto spent = [](const timeval& t) { return t.tv_sec * 1000 + t.tv_usec / 1000; };
  const long milliseconds = spent(used.ru_utime) + spent(used.ru_stime);
  if (idle == 0) idle = used.ru_maxrss;  // the first one does nothing
  const long kilobytes = std::max(0L, used.ru_maxrss - idle);
  const bool passes = status == 0 && milliseconds < kMaxMilliseconds && kilobytes <= kMaxKilobytes;
  failed |= !passes;
  printf("%s %s: %ld ms, %ld KiB\n", passes ? "PASS" : "FAIL", name.c_str(), milliseconds,
         kilobytes);
}

// As many of the piece as fit between head and tail.
Bytes Filled(const Bytes& head, const Bytes& piece, const Bytes& tail) {
  Bytes all = head;
  all.reserve(kSize);
  while (all.size() + piece.size() + tail.size() <= kSize)
    all.insert(all.end(), piece.begin(), piece.end());
  all.insert(all.end(), tail.begin(), tail.end());
  return all;
}

// A hundred blobs that are to be kept, whose names are found nowhere or begin every name.
std::unique_ptr<AttrInfo> Record(std::string_view name) {
  auto attr = std::make_unique<AttrInfo>();
  for (AppExtEntry& entry : attr->appExt) {
    CopyText(entry.fileName, name);
    CopyText(entry.binaryDataUri, "file://THIS/" + std::string(1000, 'x'));
  }
  return attr;
}

void RunAll(const Bytes& picture, FileType type, const std::string& wanted, Opened opened) {
  const TempFolder folder;
  const char* const names[] = {"", "p.gif", "p.jpg", "p.png"};
  const std::string path = folder.Write(names[type], picture);
  const ScopedFile stream(fopen(path.c_str(), opened == Opened::kForReading ? "rb" : "r+b"));
  const auto document = std::make_unique<char[]>(kLumigramDocumentBufferBytes);
  int32_t height = 0, width = 0, pop = 0;
  (void)GetXmlString(stream.get(), type, document.get(), &height, &width, &pop);
  rewind(stream.get());
  const auto results = std::make_unique<char[][1025]>(10);
  (void)GetTagInfo(stream.get(), type, "tag", results.get());
  if (type != kFileTypeJpeg) {
    const bool isGif = type == kFileTypeGif;
    const auto measure =
        isGif ? GetSizeApplicationExtensionFromGif : GetSizeApplicationExtensionFromPng;
    const auto copy =
        isGif ? GetApplicationExtensionDataFromGif : GetApplicationExtensionDataFromPng;
    const auto out = std::make_unique<uint8_t[]>(picture.size());
    uint32_t size = 0;
    rewind(stream.get());
    (void)measure(stream.get(), &size, wanted.c_str());
    rewind(stream.get());
    (void)copy(stream.get(), out.get(), &size, wanted.c_str(), wanted.c_str());
    rewind(stream.get());
    (void)copy(stream.get(), out.get(), &size, "EMJ", wanted.c_str());
  }
  for (const char* name : {"nowhere", "n", ""}) {
    int32_t status = kNever;
    status = SetXmlStringToFile(stream.get(), path.c_str(), Record(name).get(), type);
    if (status == kNever) _exit(1);
  }
}

void Run(const std::string& name, FileType type, const Bytes& picture, const std::string& wanted) {
  Measure(name, [&] { RunAll(picture, type, wanted, Opened::kForReading); });
  Measure(name + ", open for update", [&] { RunAll(picture, type, wanted, Opened::kForUpdate); });
}

void RunGif() {
  const Bytes start = GifScreen(), end = GifImage() + kGifEnd;
  const Bytes open = Bytes{0x2C} + Bytes(9, 0) + Bytes{2};
  const std::string label(12289, 'x'), marked = "EMJ" + std::string(12286, 'x');
  const Bytes inner = Bytes{0x21, 0xFF, 11} + Text("EMJ00000000");
  Run("GIF image of 1-byte sub-blocks", 1, Filled(start + open, {1, 'x'}, Bytes{0} + kGifEnd), "n");
  Run("GIF comment of 1-byte sub-blocks", 1,
      Filled(start + Bytes{0x21, 0xFE}, {1, 'x'}, Bytes{0} + end), "n");
  Run("GIF blob of 1-byte sub-blocks", 1,
      Filled(start + inner + Bytes{1, 'n'}, {1, 'x'}, Bytes{0} + end), "n");
  Run("GIF of smallest extensions", 1, Filled(start, {0x21, 0xFF, 0}, end), label);
  Run("GIF of smallest blobs", 1, Filled(start, Bytes{0x21, 0xFF, 3, 'E', 'M', 'J', 0}, end),
      marked);
  Run("GIF of small blobs", 1, Filled(start, inner + Bytes{1, 'n', 0}, end), marked);
  Run("GIF of long names", 1, Filled(start, inner + Bytes{255} + Bytes(255, 'x') + Bytes{0}, end),
      label);
  Run("GIF of extensions that nearly match", 1,
      Filled(start, Bytes{0x21, 0xFF, 255} + Bytes(255, 'x') + Bytes{0}, end),
      std::string(255, 'x') + "y");
  Run("GIF of comments by a creator", 1,
      Filled(start + kGifPopMarker, GifComment("Creator=x\r\n" + std::string(244, 'E')), end), "n");
  Run("GIF of bytes between blocks", 1, Filled(start, {0}, end), "n");
  Run("GIF of empty images", 1, Filled(start, open + Bytes{0}, end), "n");
}

void RunPng() {
  const Bytes start = PngStart(), end = kPngImage + kPngEnd;
  const std::string label(65536, 'x'), marked = "EMJ" + std::string(65533, 'x');
  const Bytes named = PngChunk("emJe", Text("EMJ00000000") + Be32(1) + Text("n"));
  Run("PNG of empty chunks", 3, Filled(start, PngChunk("abCd", {}), end), label);
  Run("PNG of empty blob chunks", 3, Filled(start, PngChunk("emJe", {}), end), label);
  Run("PNG of marked blob chunks", 3, Filled(start, PngChunk("emJe", Text("EMJ")), end), marked);
  Run("PNG of small blobs", 3, Filled(start, named, end), "n");
  Run("PNG of blobs that nearly match", 3,
      Filled(start, PngChunk("emJe", Text(marked.substr(0, 1000))), end), marked);
  Run("PNG of text chunks", 3, Filled(start, PngChunk("tEXt", Text("Other") + Bytes{0}), end), "n");
  Run("PNG of documents", 3, Filled(start, PngDocument("<emoji></emoji>"), end), "n");
  Run("PNG with one large chunk", 3, Filled(start + Be32(kSize - 100) + Text("emJeEMJ"), {'x'}, {}),
      label);
}

void RunJpeg() {
  const Bytes start = kJpegStart + JpegFrame();
  Run("JPEG of empty segments", 2, Filled(start, JpegSegment(0xE0, {}), kJpegScan + kJpegEnd), "");
  Run("JPEG of empty comments", 2, Filled(start, JpegSegment(0xFE, {}), kJpegScan + kJpegEnd), "");
  Run("JPEG of documents", 2, Filled(start, JpegComment("<emoji>"), kJpegScan + kJpegEnd), "");
  Run("JPEG scan of FF", 2, Filled(start + kJpegScan, {0xFF}, {0}), "");
}

// As the readers deliver it, and as a batch read takes it apart.
void RunDocument(const std::string& piece, const std::string& head = "<emoji>") {
  std::string text = head;
  while (text.size() + piece.size() + 8 <= kLumigramMaxDocumentBytes) text += piece;
  text += "</emoji>";
  Measure("document of " + piece.substr(0, 40), [&] {
    const auto attr = std::make_unique<AttrInfo>();
    const auto tags = std::make_unique<TagCollection>();
    std::string copy = text;
    (void)GetLabelInfo(copy.data(), attr.get());
    CollectTagGroups(copy.data(), tags.get());
    for (const char* tag : {"<category>", "<type>", "<tags name=\"n\">"}) {
      char content[1025] = {};
      while (GetElementContent(copy.data(), tag, "</tags>", content) == 0) {
      }
    }
  });
}

}  // namespace

int main() {
  Measure("nothing", [] {});
  RunGif();
  RunPng();
  RunJpeg();
  for (const char* piece :
       {"<label>", "<label></label>", "<label><name>x</name></label>", "<tags name=\"",
        "<tags name=\"n\">", "<tags name=\"n\"></tags>", "</tags>", "\">", "<", "<emoji",
        "<name><note><part>", "<category></category>"}) {
    RunDocument(piece);
  }
  RunDocument("<tags name=\"n\">x</tags>", "<emoji><label><name>x</name>");
  return failed ? 1 : 0;
}
