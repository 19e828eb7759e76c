// Pictures cut to each length, and streams whose seeks and reads fail in turn.
#include <gtest/gtest.h>

#include <functional>

#include "core/gif/gif_writer.h"
#include "core/jpeg/jpeg_writer.h"
#include "core/png/png_writer.h"
#include "tests/support/fail_calls.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

using Operation = std::function<int32_t(FILE*)>;
using std::placeholders::_1;

// The statuses of all lengths; each is given with the length at which it begins: "0: -30 14: 0 ".
std::string StatusesOfCuts(const Bytes& picture, const Operation& operate) {
  std::string statuses;
  for (size_t n = 0; n <= picture.size(); ++n) {
    const std::string status = ": " + std::to_string(operate(Stream(FirstOf(picture, n)).get()));
    if (!statuses.ends_with(status + " ")) statuses += std::to_string(n) + status + " ";
  }
  return statuses;
}

// The statuses when the first of the calls fails, the second, and so on, until none fails.
std::string StatusesOfRefused(const char* calls, const Bytes& picture, const Operation& operate) {
  std::string statuses;
  bool refused = true;
  for (int nth = 0; refused; ++nth) {
    const ScopedFile stream = Stream(picture, Opened::kForUpdate);
    const FailCalls fail(calls, nth, EIO);
    const std::string status = " " + std::to_string(operate(stream.get()));
    if (!statuses.ends_with(status)) statuses += status;
    refused = fail.Happened();
  }
  return statuses;
}

void Check(const char* what, const Bytes& picture, const Operation& operate,
           std::string_view wantSeeks, const std::string& wantCuts) {
  EXPECT_EQ(StatusesOfCuts(picture, operate), wantCuts) << what;
  EXPECT_EQ(StatusesOfRefused("fseek ftell", picture, operate), wantSeeks) << what;
  EXPECT_EQ(StatusesOfRefused("fread", picture, operate), " -30 0") << what;
}

char text[kLumigramDocumentBufferBytes];
int32_t height, width, pop;
uint32_t high, wide, size;
uint8_t bytes[999];
const AttrInfo kNone = {};

// Removes documents and blobs. Returns 7 when the stream cannot be measured.
template <typename Writer, typename... Record>
Operation Writes(uint32_t room, Writer write, const Record&... record) {
  return [=](FILE* stream) {
    const XmlStringInfo none{};
    OutputBuffer out(bytes, room);
    ByteSource source(stream);
    return source.Measure() ? write(source, none, record..., out) : 7;
  };
}

TEST(Damage, OfGif) {
  const Bytes gif = GifScreen() + GifApplication("EM", GifChain({1})) + GifComment("other") +
                    GifComment("<emoji>") + GifBlob("EMJ1", "b", {1, 2}) + GifImage() + kGifEnd;
  const auto measure = GetSizeApplicationExtensionFromGif;
  // If the last byte follows a block, it is taken for the trailer. Image data may end early.
  const std::string start = "0: -30 28: 0 29: -30 37: 0 38: -30 48: 0 49: -30 ";
  const std::string image = "68: 0 69: -30 92: 0 95: -30 96: 0 97: -30 98: 0 ";
  Check("read", gif, std::bind(GetXmlStringFromGif, _1, text, &height, &width, &pop), " -99 0",
        "0: -30 37: 0 38: -30 48: 0 49: -30 " + image);
  Check("written", gif, Writes(999, SetXmlStringToGif, kNone), " 7 -1 -99 0",
        "0: -30 22: -99 24: -30 50: -99 61: -30 98: 0 ");
  Check("all measured", gif, std::bind(measure, _1, &size, nullptr), " -99 0", start + image);
  Check("one measured", gif, std::bind(measure, _1, &size, "b"), " -99 0", start + "67: 0 ");
  Check("one copied", gif,
        std::bind(GetApplicationExtensionDataFromGif, _1, bytes, &size, "EMJ", "b"), " -99 0",
        start + "67: 0 ");
}

TEST(Damage, OfPng) {
  const Bytes png = PngStart() + PngChunk("tEXt", Text("other text")) + PngDocument(Document()) +
                    PngBlob("EMJ00000000", "a", {}) + PngBlob("EMJ00000000", "b", {1, 2}) +
                    kPngImage + kPngEnd;
  const auto measure = GetSizeApplicationExtensionFromPng;
  Check("read", png, std::bind(GetXmlStringFromPng, _1, text, &high, &wide), " -99 -30 0",
        "0: -30 47: -99 51: -30 69: -99 77: -30 173: 0 ");
  Check("written", png, Writes(999, SetXmlStringToPng, kNone), " 7 -99 0",
        "0: -30 37: -99 55: -30 59: -99 81: -30 85: -99 113: -30 117: -99 147: -30 151: -99 165: "
        "-30 169: -99 177: 0 ");
  Check("all measured", png, std::bind(measure, _1, &size, nullptr), " -99 0", "0: -30 173: 0 ");
  Check("one measured", png, std::bind(measure, _1, &size, "b"), " -99 0", "0: -30 137: 0 ");
  Check("one copied", png,
        std::bind(GetApplicationExtensionDataFromPng, _1, bytes, &size, "EMJ", "b"), " -99 0",
        "0: -30 141: -99 143: 0 ");
}

TEST(Damage, OfJpeg) {
  const Bytes jpeg = kJpegStart + JpegComment("a longer one") + JpegFrame() +
                     JpegComment(Document()) + kJpegScan + kJpegEnd;
  Check("read", jpeg, std::bind(GetXmlStringFromJpg, _1, text, &high, &wide), " 0 -30 0",
        "0: -30 63: 0 ");
  Check("written", jpeg, Writes(999, SetXmlStringToJpg), " 7 -1 -99 0", "0: -30 63: 0 ");
  for (const Bytes& bad : {FirstOf(jpeg, 9), Bytes{0xFF, 0xD9} + jpeg})
    EXPECT_EQ(Writes(2, SetXmlStringToJpg)(Stream(bad).get()), -30) << "rather than no room";
}

}  // namespace
}  // namespace lumigram::test
