// What reading a document costs, as a ratio to the least that any program does with a picture:
// open, fstat, read whole, close. Both are measured in turn, round by round; "ratio" is the median
// of the rounds' ratios. Usage: readers_bench [benchmark options] [FOLDER]: the pictures of a
// folder, or a set built for the occasion.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <thread>

#include "bench/paired.h"
#include "bench/pictures.h"

namespace lumigram::bench {
namespace {

void ReadWhole(const std::string& path) {
  static char contents[kLumigramMaxPictureBytes];
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status;
  if (fd < 0 || fstat(fd, &status) != 0) abort();
  if (read(fd, contents, static_cast<size_t>(status.st_size)) != status.st_size) abort();
  close(fd);
}

void ReadDocument(const std::string& path) {
  static char document[kLumigramDocumentBufferBytes];
  FILE* stream = nullptr;
  FileType type = 0;
  int32_t height = 0, width = 0, pop = 0;
  if (OpenFile(path.c_str(), 0, &stream, &type) != kLumigramOk) abort();
  int32_t status = kLumigramBadArgument;
  switch (type) {
    case kFileTypeGif:
      status = GetXmlStringFromGif(stream, document, &height, &width, &pop);
      break;
    case kFileTypeJpeg:
      status = GetXmlStringFromJpg(stream, document, reinterpret_cast<uint32_t*>(&height),
                                   reinterpret_cast<uint32_t*>(&width));
      break;
    case kFileTypePng:
      status = GetXmlStringFromPng(stream, document, reinterpret_cast<uint32_t*>(&height),
                                   reinterpret_cast<uint32_t*>(&width));
      break;
  }
  if (status != kLumigramOk) abort();
  memset(document, 0, strlen(document));
  fclose(stream);
}

// A second thread makes stdio take its locks, as it does in a Java virtual machine.
class IdleThread {
 public:
  IdleThread()
      : thread_([this] {
          std::unique_lock lock(mutex_);
          end_.wait(lock, [this] { return ended_; });
        }) {}
  ~IdleThread() {
    {
      std::lock_guard lock(mutex_);
      ended_ = true;
    }
    end_.notify_all();
    thread_.join();
  }

 private:
  std::mutex mutex_;
  std::condition_variable end_;
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace
}  // namespace lumigram::bench

int main(int argc, char** argv) {
  using namespace lumigram::bench;
  benchmark::Initialize(&argc, argv);
  const std::filesystem::path built =
      std::filesystem::temp_directory_path() / ("lumigram-bench-" + std::to_string(getpid()));
  std::filesystem::create_directory(built);
  const std::vector<PictureSet> sets =
      argc > 1 ? PicturesOf(argv[1]) : BuildPictures(built.string());
  for (const PictureSet& set : sets) {
    benchmark::RegisterBenchmark(set.name.c_str(),
                                 [&set](benchmark::State& state) {
                                   MeasurePaired(state, set.paths, ReadDocument, ReadWhole);
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(1.0);
  }
  const IdleThread idle;
  benchmark::RunSpecifiedBenchmarks();
  std::filesystem::remove_all(built);
}
