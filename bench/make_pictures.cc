// Makes folders of pictures to measure with. Usage:
//   make_pictures FOLDER             FOLDER/plain and FOLDER/tagged: a built set, without and with
//   a document make_pictures FOLDER PICTURES    the same of the pictures in the folder PICTURES:
//   copies, and tagged copies
#include <filesystem>
#include <iostream>
#include <memory>

#include "bench/pictures.h"

namespace {

namespace fs = std::filesystem;

bool Tag(const std::string& path, FileType type) {
  const auto attr = std::make_unique<AttrInfo>();
  lumigram::bench::FillRecord(attr.get());
  FILE* stream = nullptr;
  if (OpenFile(path.c_str(), 0, &stream, &type) != kLumigramOk) return false;
  const int32_t status = SetXmlStringToFile(stream, path.c_str(), attr.get(), type);
  fclose(stream);
  return status == kLumigramOk;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace lumigram::bench;
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: make_pictures FOLDER [PICTURES]\n";
    return 2;
  }
  const fs::path plain = fs::path(argv[1]) / "plain", tagged = fs::path(argv[1]) / "tagged",
                 all = fs::path(argv[1]) / "all";
  for (const fs::path& folder : {plain, tagged, all}) fs::create_directories(folder);
  const std::vector<PictureSet> sets =
      argc == 3 ? PicturesOf(argv[2]) : BuildPictures(all.string());
  int count = 0;
  for (const PictureSet& set : sets) {
    if (set.name.ends_with("tagged")) continue;
    for (const std::string& path : set.paths) {
      const std::string name = std::to_string(count++) + "." +
                               (set.type == 1   ? "gif"
                                : set.type == 2 ? "jpg"
                                                : "png");
      fs::copy_file(path, plain / name, fs::copy_options::overwrite_existing);
      fs::copy_file(path, tagged / name, fs::copy_options::overwrite_existing);
      if (!Tag((tagged / name).string(), set.type)) fs::remove(tagged / name);
    }
  }
  fs::remove_all(all);
  std::cout << count << " pictures in " << plain << " and " << tagged << "\n";
}
