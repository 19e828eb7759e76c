// Makes folders of pictures for the benchmarks. Usage:
//   make_pictures FOLDER            builds pictures without a document in FOLDER/plain, and copies
//                                   with a document in FOLDER/tagged
//   make_pictures FOLDER PICTURES   copies the pictures of the folder PICTURES instead
#include <filesystem>
#include <iostream>
#include <memory>

#include "bench/pictures.h"

namespace fs = std::filesystem;
using namespace lumigram::bench;

namespace {

bool Tag(const std::string& path) {
  const auto attr = std::make_unique<AttrInfo>();
  FillRecord(attr.get());
  FILE* stream = nullptr;
  FileType type;
  if (OpenFile(path.c_str(), 0, &stream, &type) != kLumigramOk) return false;
  const int32_t status = SetXmlStringToFile(stream, path.c_str(), attr.get(), type);
  fclose(stream);
  return status == kLumigramOk;
}

// Copies are named by numbers: pictures from several folders may have the same name.
void Copy(const std::string& pictures, const fs::path& folder) {
  for (const PictureSet& set : PicturesOf(pictures)) {
    for (size_t i = 0; i < set.paths.size(); ++i)
      fs::copy_file(set.paths[i], folder / (std::to_string(i) + "." + set.name),
                    fs::copy_options::overwrite_existing);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: make_pictures FOLDER [PICTURES]\n";
    return 2;
  }
  const fs::path plain = fs::path(argv[1]) / "plain", tagged = fs::path(argv[1]) / "tagged";
  fs::create_directories(plain);
  fs::create_directories(tagged);
  argc == 3 ? Copy(argv[2], plain) : BuildPictures(plain);
  Copy(plain, tagged);
  for (const PictureSet& set : PicturesOf(tagged)) {
    for (const std::string& path : set.paths) {
      if (!Tag(path)) fs::remove(path);
    }
    std::cout << set.paths.size() << " " << set.name << " in " << plain << " and " << tagged
              << "\n";
  }
}
