// Runs every function that takes a picture or a document over pictures of 2 MiB and documents of
// 10 KiB that are built to take much time or memory. Prints the longest call and the memory of all
// calls. Fails when a call takes a second, or when they take more memory than kMaxKilobytes.
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

bool failed = false;

// The time and memory that the process has used so far.
struct Usage {
  Usage() {
    rusage used;
    getrusage(RUSAGE_SELF, &used);
    const auto spent = [](const timeval& t) { return t.tv_sec * 1000 + t.tv_usec / 1000; };
    milliseconds = spent(used.ru_utime) + spent(used.ru_stime);
    kilobytes = used.ru_maxrss;
  }
  long milliseconds, kilobytes;
};

// The longest call of this process, in milliseconds.
long worst = 0;
const char* worstCall = "none";

void Call(const char* name, const std::function<void()>& run) {
  const Usage before;
  run();
  const long took = Usage().milliseconds - before.milliseconds;
  if (took <= worst) return;
  worst = took;
  worstCall = name;
}

// Runs in a child process, so that the memory of each input is measured separately.
void Measure(const std::string& name, const std::function<void()>& run) {
  fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    const Usage before;
    run();
    const long kilobytes = Usage().kilobytes - before.kilobytes;
    const bool passes = worst < kMaxMilliseconds && kilobytes <= kMaxKilobytes;
    printf("%s %s: %ld ms (%s), %ld KiB\n", passes ? "PASS" : "FAIL", name.c_str(), worst,
           worstCall, kilobytes);
    fflush(stdout);
    _exit(passes ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  failed |= status != 0;
  if (!WIFEXITED(status)) printf("FAIL %s: signal %d\n", name.c_str(), WTERMSIG(status));
}

// Repeats the piece as often as it fits between head and tail.
Bytes Filled(const Bytes& head, const Bytes& piece, const Bytes& tail) {
  Bytes all = head;
  all.reserve(kSize);
  while (all.size() + piece.size() + tail.size() <= kSize)
    all.insert(all.end(), piece.begin(), piece.end());
  all.insert(all.end(), tail.begin(), tail.end());
  return all;
}

// A hundred entries that keep blobs; their names are found nowhere, or begin every name.
std::unique_ptr<AttrInfo> Record(std::string_view name) {
  auto attr = std::make_unique<AttrInfo>();
  for (AppExtEntry& entry : attr->appExt) {
    CopyText(entry.fileName, name);
    CopyText(entry.binaryDataUri, "file://THIS/" + std::string(1000, 'x'));
  }
  return attr;
}

void CallAll(FILE* stream, const std::string& path, FileType type, const std::string& wanted) {
  const auto document = std::make_unique<char[]>(kLumigramDocumentBufferBytes);
  const auto results = std::make_unique<char[][1025]>(10);
  int32_t height = 0, width = 0, pop = 0;
  Call("GetXmlString",
       [&] { (void)GetXmlString(stream, type, document.get(), &height, &width, &pop); });
  rewind(stream);
  Call("GetTagInfo", [&] { (void)GetTagInfo(stream, type, "tag", results.get()); });
  const bool isGif = type == kFileTypeGif;
  const auto measure =
      isGif ? GetSizeApplicationExtensionFromGif : GetSizeApplicationExtensionFromPng;
  const auto copy = isGif ? GetApplicationExtensionDataFromGif : GetApplicationExtensionDataFromPng;
  for (const char* label : {"EMJ", wanted.c_str()}) {
    if (type == kFileTypeJpeg) break;
    const auto out = std::make_unique<uint8_t[]>(kSize);
    uint32_t size = 0;
    rewind(stream);
    Call("size of a blob", [&] { (void)measure(stream, &size, wanted.c_str()); });
    rewind(stream);
    Call("a blob", [&] { (void)copy(stream, out.get(), &size, label, wanted.c_str()); });
  }
  for (const char* name : {"nowhere", "n", ""}) {
    const auto attr = Record(name);
    Call("SetXmlStringToFile",
         [&] { (void)SetXmlStringToFile(stream, path.c_str(), attr.get(), type); });
  }
}

void Run(const std::string& name, FileType type, const Bytes& picture, const std::string& wanted) {
  const char* const names[] = {"", "p.gif", "p.jpg", "p.png"};
  for (const char* mode : {"rb", "r+b"}) {
    const TempFolder folder;
    const std::string path = folder.Write(names[type], picture);
    const ScopedFile stream(fopen(path.c_str(), mode));
    Measure(name + ", " + mode, [&] { CallAll(stream.get(), path, type, wanted); });
  }
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

// Takes a document apart with the functions of a batch read.
void RunDocument(const std::string& piece, const std::string& head = "<emoji>") {
  std::string text = head;
  while (text.size() + piece.size() + 8 <= kLumigramMaxDocumentBytes) text += piece;
  text += "</emoji>";
  const auto attr = std::make_unique<AttrInfo>();
  const auto tags = std::make_unique<TagCollection>();
  Measure("document of " + piece, [&] {
    std::string copy = text;
    Call("GetLabelInfo", [&] { (void)GetLabelInfo(copy.data(), attr.get()); });
    copy = text;
    Call("CollectTagGroups", [&] { CollectTagGroups(copy.data(), tags.get()); });
    for (const char* tag : {"<category>", "<type>", "<tags name=\"n\">"}) {
      char content[1025] = {};
      copy = text;
      Call("GetElementContent", [&] {
        while (GetElementContent(copy.data(), tag, "</tags>", content) == 0) {
        }
      });
    }
  });
}

}  // namespace

int main() {
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
