// Writes the seeds of the fuzz targets: inputs that reach much of the code, built with the builders
// of the tests. Usage: make_seeds FOLDER; writes FOLDER/TARGET/NAME.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

using namespace lumigram::test;

namespace {

std::filesystem::path folder;

void Write(const char* target, const std::string& name, const Bytes& bytes) {
  std::filesystem::create_directories(folder / target);
  std::ofstream file(folder / target / name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) std::exit((std::perror(name.c_str()), 1));
}

// A text as Input::Text() takes it: its length and its bytes.
Bytes Sized(std::string_view text) { return Le16(uint32_t(text.size())) + Text(text); }

const std::string kLabels =
    "<label><name>smile</name><note>happy</note><part>名詞</part></label>"
    "<label><name>\xF0\x9F\x98\x80</name></label>";
const std::string kTags =
    "<category>face</category><type>anime</type><tags name=\"color\">yellow</tags>"
    "<tags name=\"col\">red</tags><tags name=\"sound\">file://THIS/beep</tags>";
const std::string kDocument = "<emoji>" + kLabels + kTags + "</emoji>";
const std::string kShort = "<emoji></emoji>";

// Every kind of block, with the document before or after the first image.
Bytes Gif(std::string_view document, bool documentFirst) {
  const Bytes comment = GifComment(document);
  const Bytes image = kGifControl + GifImage();
  return GifScreen() + kGifPopMarker + GifComment("Creator=a.b\r\nx\r\nEmojiID=1") +
         GifBlob("EMJ00000000", "beep", Text("some bytes")) + GifComment("other") +
         GifApplication("NETSCAPE2.0", GifChain({1, 0, 0})) +
         (documentFirst ? comment + image : image + comment) + kGifPlainText + GifImage() + kGifEnd;
}

Bytes Png(std::string_view document) {
  return PngStart() + PngChunk("tEXt", Text("Title") + Bytes{0, 'x'}) + PngDocument(document) +
         PngBlob("EMJ00000000", "beep", Text("some bytes")) +
         PngBlob("other label", "beep", Text("others")) + kPngImage + kPngImage + kPngEnd;
}

Bytes Jpeg(std::string_view document) {
  return kJpegStart + JpegSegment(0xE0, Text("JFIF")) + JpegComment("other") +
         JpegComment(document) + JpegFrame() + kJpegScan + kJpegEnd;
}

// One label, a tag and a blob, as the target "writers" takes them.
Bytes Record(uint8_t uri) {
  return Bytes{1} + Sized("smile") + Sized("color") + Sized("yellow") + Bytes{1} +
         Sized("00000000") + Sized("beep") + Bytes{uri};
}

void WritePictures(const std::string& name, uint8_t type, const Bytes& picture) {
  const char* const reader[] = {"gif_reader", "jpeg_reader", "png_reader"};
  Write(reader[type], name, picture);
  Write("dispatch", name, Bytes{static_cast<uint8_t>(type + 1)} + Sized("color") + picture);
  Write("writers", name + "-bare", Bytes{type, 0} + picture);
  for (const uint8_t uri : Bytes{0, 1, 3, 7})
    Write("writers", name + "-uri" + std::to_string(uri), Bytes{type} + Record(uri) + picture);
  if (type == 1) return;  // no blobs
  const Bytes wanted = Sized("EMJ") + Sized("beep");
  Write("blobs", name, Bytes{static_cast<uint8_t>(type / 2)} + wanted + picture);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  WritePictures("blocks.gif", 0, Gif(kDocument, true));
  WritePictures("behind.gif", 0, Gif(kShort, false));
  WritePictures("still.gif", 0, GifScreen() + GifImage() + kGifEnd);
  WritePictures("chunks.png", 2, Png(kDocument));
  WritePictures("plain.png", 2, PngStart() + kPngImage + kPngEnd);
  WritePictures("claims.png", 2, PngStart() + kPngImage + kPngHuge);
  WritePictures("segments.jpg", 1, Jpeg(kDocument));
  WritePictures("plain.jpg", 1, kJpegStart + JpegFrame() + kJpegScan + kJpegEnd);

  Write("document", "full", Text(kDocument));
  Write("document", "labels", Text("<emoji>" + kLabels + "</emoji>"));
  Write("elements", "name", Sized("<name>") + Sized("</name>") + Sized(kDocument));
  Write("elements", "group", Sized("<tags name=\"color\">") + Sized("</tags>") + Sized(kDocument));
  Write("elements", "tags", Sized("<tags name=\"") + Sized("</tags>") + Sized(kDocument));
  Write("java_text", "characters",
        Text("a\xC0\x80\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xED\xA0\xBD\xFF"));
  const Bytes label = Sized("smile") + Sized("happy") + Bytes{1};
  Write("round_trip", "record",
        Bytes{1} + label + label + Sized("face") + Sized("anime") + Bytes{2} + Sized("color") +
            Sized("yellow") + Sized("motion") + Sized(""));
}
