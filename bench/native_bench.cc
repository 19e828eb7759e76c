// Measures the exported functions. Usage: native_bench [benchmark options] [FOLDER...]
//
//   read/...         reading each kind in each folder. "ratio" compares with the yardstick: open,
//                    fstat, read of the whole file, close
//   read N KiB/...   reading pictures of growing size: "ns_per_byte", and the ratio
//   bytes N KiB/...  reading the same pictures in memory. "ratio" compares with one pass over the
//                    bytes, a sum
//   entries/...      reading and writing with growing numbers of tags and blobs: "ns_per_entry"
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <numeric>
#include <thread>

#include "bench/paired.h"
#include "bench/pictures.h"
#include "tests/support/bytes.h"

namespace lumigram::bench {
namespace {

void Require(bool holds) {
  if (!holds) abort();
}

void ReadWhole(const std::string& path) {
  static char contents[kLumigramMaxPictureBytes];
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status;
  Require(fd >= 0 && fstat(fd, &status) == 0);
  Require(read(fd, contents, static_cast<size_t>(status.st_size)) == status.st_size);
  close(fd);
}

FileType TypeOf(const std::string& path) {
  FileType type = kFileTypeUnknown;
  Require(GetFileType(path.c_str(), &type) == kLumigramOk);
  return type;
}

char document[kLumigramDocumentBufferBytes];

void ReadDocument(const std::string& path) {
  memset(document, 0, strlen(document));
  FILE* stream = nullptr;
  FileType type = 0;
  int32_t height = 0, width = 0, pop = 0;
  Require(OpenFile(path.c_str(), 0, &stream, &type) == kLumigramOk);
  uint32_t* const unsignedHeight = reinterpret_cast<uint32_t*>(&height);
  uint32_t* const unsignedWidth = reinterpret_cast<uint32_t*>(&width);
  const int32_t status = type == kFileTypeGif
                             ? GetXmlStringFromGif(stream, document, &height, &width, &pop)
                         : type == kFileTypeJpeg
                             ? GetXmlStringFromJpg(stream, document, unsignedHeight, unsignedWidth)
                             : GetXmlStringFromPng(stream, document, unsignedHeight, unsignedWidth);
  Require(status == kLumigramOk);
  fclose(stream);
}

void ReadTags(const std::string& path) {
  static TagCollection tags;
  memset(&tags, 0, sizeof(tags));
  ReadDocument(path);
  CollectTagGroups(document, &tags);
}

void Write(const std::string& path, const AttrInfo& record) {
  FILE* stream = nullptr;
  FileType type = 0;
  Require(OpenFile(path.c_str(), 0, &stream, &type) == kLumigramOk);
  Require(SetXmlStringToFile(stream, path.c_str(), &record, type) == kLumigramOk);
  fclose(stream);
}

benchmark::internal::Benchmark* Register(const std::string& name,
                                         std::function<void(benchmark::State&)> run) {
  return benchmark::RegisterBenchmark(name.c_str(), run)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond)
      ->MinTime(0.5);
}

void RegisterFolder(const std::string& folder) {
  for (const PictureSet& set : PicturesOf(folder)) {
    Register("read/" + std::filesystem::path(folder).filename().string() + "/" + set.name,
             [set](benchmark::State& state) {
               MeasurePaired(state, set.paths, ReadDocument, ReadWhole);
             });
  }
}

void RegisterSizes(const std::string& folder) {
  for (size_t size = 2048; size <= kLumigramMaxPictureBytes; size *= 4) {
    for (const PictureSet& set : BuildPicturesOfSize(folder, size)) {
      Register("read " + std::to_string(size / 1024) + " KiB/" + set.name,
               [set, size](benchmark::State& state) {
                 MeasurePaired(state, set.paths, ReadDocument, ReadWhole);
                 state.counters["ns_per_byte"] =
                     state.counters["us"] * 1e3 / static_cast<double>(size);
               });
    }
  }
}

// The pictures of a round are all the same, because one takes less time than the clock can tell.
void RegisterBytes(const std::string& folder) {
  for (size_t size = 1024; size <= kLumigramMaxPictureBytes; size *= 2) {
    for (const PictureSet& set : BuildPicturesOfSize(folder, size)) {
      const std::vector<uint8_t> bytes = test::ReadWhole(set.paths[0]);
      const FileType type = TypeOf(set.paths[0]);
      const auto read = [bytes, type](const std::string&) {
        memset(document, 0, strlen(document));
        int32_t height = 0, width = 0, pop = 0;
        Require(GetXmlStringFromBytes(bytes.data(), bytes.size(), type, document, &height, &width,
                                      &pop) == kLumigramNoDocument);
      };
      const auto pass = [bytes](const std::string&) {
        benchmark::DoNotOptimize(std::accumulate(bytes.begin(), bytes.end(), 0u));
      };
      Register("bytes " + std::to_string(size / 1024) + " KiB/" + set.name, [=](benchmark::State&
                                                                                    state) {
        MeasurePaired(state, std::vector<std::string>(100), read, pass);
        state.counters["ns_per_byte"] = state.counters["us"] * 1e3 / static_cast<double>(size);
      })->MinTime(0.002);  // The sum takes a thousand times as long.
    }
  }
}

// The measured work starts with a picture that has the entries already.
void RegisterEntries(const std::string& folder) {
  const std::string path = BuildPicturesOfSize(folder, 2048).back().paths[0];
  for (const int count : {1, 5, 20, 50, 100}) {
    const auto tags = std::make_shared<AttrInfo>(), blobs = std::make_shared<AttrInfo>(),
               kept = std::make_shared<AttrInfo>();
    FillTags(tags.get(), count);
    FillBlobs(blobs.get(), count, folder);
    FillBlobs(kept.get(), count, "file://THIS");
    const auto add = [&](const std::string& name, auto first, auto work) {
      Register("entries/" + name + " of " + std::to_string(count), [=](benchmark::State& state) {
        Write(path, *first);
        MeasurePaired(state, {path}, work, ReadWhole);
        state.counters["ns_per_entry"] = state.counters["us"] * 1e3 / count;
      });
    };
    add("read tags", tags, ReadTags);
    add("write tags", tags, [=](const std::string& to) { Write(to, *tags); });
    add("write blobs", blobs, [=](const std::string& to) { Write(to, *blobs); });
    add("keep blobs", blobs, [=](const std::string& to) { Write(to, *kept); });
  }
}

// Because of a second thread stdio takes its locks, as it does in a Java virtual machine.
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
  namespace fs = std::filesystem;
  benchmark::Initialize(&argc, argv);
  const fs::path built = fs::temp_directory_path() / ("lumigram-bench-" + std::to_string(getpid()));
  fs::create_directory(built);
  for (int i = 1; i < argc; ++i) RegisterFolder(argv[i]);
  RegisterSizes(built.string());
  RegisterBytes(built.string());
  RegisterEntries(built.string());
  const IdleThread idle;
  benchmark::RunSpecifiedBenchmarks();
  fs::remove_all(built);
}
