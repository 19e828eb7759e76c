// What writing a record costs, as a ratio to a program that reads the picture, writes a temporary
// file, syncs it and renames it. Usage: writers_bench [benchmark options] FOLDER: copies of built
// pictures are written there; take a folder on a disk and one in memory.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "bench/paired.h"
#include "bench/pictures.h"

namespace lumigram::bench {
namespace {

void Require(bool holds) {
  if (!holds) abort();
}

void Rewrite(const std::string& path) {
  static char contents[kLumigramMaxPictureBytes];
  const int in = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status;
  Require(in >= 0 && fstat(in, &status) == 0);
  const size_t size = static_cast<size_t>(status.st_size);
  Require(read(in, contents, size) == status.st_size);
  close(in);
  const std::string temporary = path + ".new";
  const int out = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  Require(out >= 0 && write(out, contents, size) == status.st_size && fsync(out) == 0 &&
          close(out) == 0);
  Require(rename(temporary.c_str(), path.c_str()) == 0);
}

const AttrInfo& Record() {
  static const AttrInfo& record = *[] {
    AttrInfo* attr = new AttrInfo();
    FillRecord(attr);
    return attr;
  }();
  return record;
}

void WriteRecord(const std::string& path) {
  FILE* stream = nullptr;
  FileType type = 0;
  Require(OpenFile(path.c_str(), 0, &stream, &type) == kLumigramOk);
  Require(SetXmlStringToFile(stream, path.c_str(), &Record(), type) == kLumigramOk);
  fclose(stream);
}

}  // namespace
}  // namespace lumigram::bench

int main(int argc, char** argv) {
  using namespace lumigram::bench;
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::cerr << "usage: writers_bench [benchmark options] FOLDER\n";
    return 2;
  }
  const std::filesystem::path built =
      std::filesystem::path(argv[1]) / ("lumigram-bench-" + std::to_string(getpid()));
  std::filesystem::create_directory(built);
  const std::vector<PictureSet> sets = BuildPictures(built.string());
  for (const PictureSet& set : sets) {
    benchmark::RegisterBenchmark(
        set.name.c_str(),
        [&set](benchmark::State& state) { MeasurePaired(state, set.paths, WriteRecord, Rewrite); })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(1.0);
  }
  benchmark::RunSpecifiedBenchmarks();
  std::filesystem::remove_all(built);
}
