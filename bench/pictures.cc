#include "bench/pictures.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::bench {
namespace {

using namespace lumigram::test;

constexpr int kPicturesOfASet = 300;

using Random = std::mt19937;

// A random size from a quarter of the median to four times the median.
size_t SizeAround(size_t median, Random& random) {
  return static_cast<size_t>(static_cast<double>(median) *
                             std::exp2(std::uniform_real_distribution(-2.0, 2.0)(random)));
}

// Random bytes like compressed pixels. They lack FF, which a JPEG would have to escape.
Bytes Pixels(size_t size, Random& random) {
  Bytes bytes(size);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() % 255);
  return bytes;
}

Bytes Gif(Random& random) {
  Bytes picture = GifScreen(64, 64, "GIF89a", 0xF4);  // 32 colours
  picture.resize(13 + 96);
  const int frames = 1 + static_cast<int>(random() % 3);
  for (int i = 0; i < frames; ++i) {
    picture += Bytes{0x21, 0xF9, 4, 4, 10, 0, 0, 0};
    picture += Bytes{0x2C, 0, 0, 0, 0, 64, 0, 64, 0, 0, 5};
    picture += GifChain(Pixels(SizeAround(500, random), random));
  }
  return picture + kGifEnd;
}

Bytes Png(Random& random) {
  return PngStart(64, 64) + PngChunk("gAMA", Be32(45455)) + PngChunk("PLTE", Pixels(96, random)) +
         PngChunk("IDAT", Pixels(SizeAround(1500, random), random)) + kPngEnd;
}

Bytes Jpeg(Random& random) {
  Bytes picture = kJpegStart + JpegSegment(0xE0, Pixels(14, random));
  for (int i = 0; i < 2; ++i) picture += JpegSegment(0xDB, Pixels(65, random));
  picture += JpegFrame(64, 64);
  for (size_t size : {29, 179, 29, 179}) picture += JpegSegment(0xC4, Pixels(size, random));
  return picture + JpegSegment(0xDA, Pixels(10, random)) +
         Pixels(SizeAround(14000, random), random) + kJpegEnd;
}

struct Kind {
  const char* extension;
  FileType type;
  Bytes (*build)(Random&);
};

constexpr Kind kKinds[] = {
    {"gif", kFileTypeGif, Gif}, {"png", kFileTypePng, Png}, {"jpg", kFileTypeJpeg, Jpeg}};

void Write(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
}

// This read also brings the file into the page cache.
bool IsReadable(const std::string& path, FileType* type) {
  FILE* stream = nullptr;
  if (OpenFile(path.c_str(), 0, &stream, type) != kLumigramOk) return false;
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t height = 0, width = 0, pop = 0;
  const int32_t status = GetXmlString(stream, *type, document, &height, &width, &pop);
  fclose(stream);
  return status == kLumigramOk || status == kLumigramNoDocument;
}

}  // namespace

std::vector<PictureSet> PicturesOf(const std::string& folder) {
  std::vector<PictureSet> sets;
  for (const Kind& kind : kKinds) sets.push_back({kind.extension, {}});
  const auto options = std::filesystem::directory_options::skip_permission_denied;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, options)) {
    FileType type;
    if (!entry.is_regular_file() || !IsReadable(entry.path().string(), &type)) continue;
    for (size_t k = 0; k < std::size(kKinds); ++k) {
      if (kKinds[k].type == type) sets[k].paths.push_back(entry.path().string());
    }
  }
  std::erase_if(sets, [](const PictureSet& set) { return set.paths.empty(); });
  return sets;
}

void BuildPictures(const std::string& folder) {
  Random random(1);
  for (const Kind& kind : kKinds) {
    for (int i = 0; i < kPicturesOfASet; ++i)
      Write(folder + "/" + std::to_string(i) + "." + kind.extension, kind.build(random));
  }
}

std::vector<PictureSet> BuildPicturesOfSize(const std::string& folder, size_t size) {
  Random random(2);
  // Subtract the size of the rest of the picture, and of the size bytes of a GIF.
  const size_t room = size - 200 - size / 255;
  const Bytes pixels = Pixels(room, random);
  const Bytes head = kJpegStart + JpegFrame(64, 64) + JpegSegment(0xDA, Pixels(10, random));
  const Bytes image = Bytes{0x2C, 0, 0, 0, 0, 64, 0, 64, 0, 0, 5};
  const struct {
    const char* name;
    const char* extension;
    Bytes bytes;
  } pictures[] = {
      {"gif", ".gif", GifScreen(64, 64, "GIF89a", 0) + image + GifChain(pixels) + kGifEnd},
      {"jpg", ".jpg", head + pixels + kJpegEnd},
      {"jpg, searched", ".jpg", head + pixels + kJpegEnd + Bytes{0}},
      {"png", ".png", PngStart(64, 64) + PngChunk("IDAT", pixels) + kPngEnd}};
  std::vector<PictureSet> sets;
  for (const auto& picture : pictures) {
    const std::string name = std::to_string(size) + "-" + std::to_string(sets.size());
    sets.push_back({picture.name, {folder + "/" + name + picture.extension}});
    Write(sets.back().paths[0], picture.bytes);
  }
  return sets;
}

void FillTags(AttrInfo* record, int count) {
  for (int i = 0; i < count; ++i) {
    strcpy(record->tag[i].tagName, ("tag" + std::to_string(i % 10)).c_str());
    strcpy(record->tag[i].tagElement, "content");
  }
}

void FillBlobs(AttrInfo* record, int count, const std::string& folder) {
  for (int i = 0; i < count; ++i) {
    const std::string name = "blob" + std::to_string(100 + i), path = folder + "/" + name;
    if (folder != "file://THIS") Write(path, Bytes(64, 7));
    strcpy(record->appExt[i].labelName, "EMJ");
    strcpy(record->appExt[i].fileName, name.c_str());
    strcpy(record->appExt[i].binaryDataUri, path.c_str());
  }
}

void FillRecord(AttrInfo* record) {
  strcpy(record->name[0], "smile");
  strcpy(record->note[0], "happy");
  strcpy(record->part[0], GetPartName(1));
  strcpy(record->name[1], "wink");
  strcpy(record->category, "face");
  strcpy(record->type, "anime");
  strcpy(record->tag[0].tagName, "color");
  strcpy(record->tag[0].tagElement, "yellow");
}

}  // namespace lumigram::bench
