// The dictionary, next to plain loops over the same records. Each measurement is a process of its
// own: the exports read the file once in a process.
#include <benchmark/benchmark.h>
#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "orvane.h"
#include "refuse.h"

namespace {

constexpr std::uint32_t kRecords = 10000;
constexpr int kFinds = 100;

// The current directory, with the file of DF0000 to DF270F, for as long as this lives.
class DictionaryFolder {
 public:
  DictionaryFolder() {
    std::filesystem::create_directory(path_);
    std::filesystem::current_path(path_);
    std::FILE* const file = std::fopen("dictdata.bin", "wb");
    std::fwrite(&kRecords, sizeof kRecords, 1, file);
    const std::string text(120, 'd');
    for (unsigned i = 0; i < kRecords; ++i) {
      std::fprintf(file, "\x06%s%04X\x17%s\x78%s", "DF", i, "A name of common length",
                   text.c_str());
    }
    std::fclose(file);
  }
  ~DictionaryFolder() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(path_);
  }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
  std::filesystem::path path_ =
      std::filesystem::temp_directory_path() / ("orvane-bench-" + std::to_string(getpid()));
};

double Seconds() {
  std::timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

bool Finds(const char* tag) {
  TagdictData found;
  return FindTagdictData(tag, &found) == 1;
}

double FirstUse(const char* tag) {
  const double before = Seconds();
  if (!Finds(tag)) Refuse("FindTagdictData");
  return Seconds() - before;
}

double Find(const char* tag) {
  if (!Finds("DF0000")) Refuse("FindTagdictData");
  const double before = Seconds();
  for (int i = 0; i < kFinds; ++i) Finds(tag);
  return (Seconds() - before) / kFinds;
}

// Records as the plainest reader of a trusted file would have them: one block, short lengths.
TagdictData* PlainLoad() {
  std::FILE* const file = std::fopen("dictdata.bin", "rb");
  std::uint32_t count = 0;
  if (file == nullptr || std::fread(&count, sizeof count, 1, file) != 1) Refuse("fread");
  auto* const records = static_cast<TagdictData*>(std::calloc(count, sizeof(TagdictData)));
  for (std::uint32_t i = 0; i < count; ++i) {
    for (char* field : {records[i].tag, records[i].shortText, records[i].longText}) {
      const auto length = static_cast<std::size_t>(std::fgetc(file));
      if (std::fread(field, 1, length, file) != length) Refuse("fread");
    }
  }
  std::fclose(file);
  return records;
}

const TagdictData* PlainFind(const TagdictData* records, const char* tag) {
  for (std::uint32_t i = 0; i < kRecords; ++i) {
    if (strcasecmp(records[i].tag, tag) == 0) return &records[i];
  }
  return nullptr;
}

double PlainFirstUse(const char* tag) {
  const double before = Seconds();
  if (PlainFind(PlainLoad(), tag) == nullptr) Refuse("strcasecmp");
  return Seconds() - before;
}

double CompareAll(const char* tag) {
  const TagdictData* const records = PlainLoad();
  const double before = Seconds();
  for (int i = 0; i < kFinds; ++i) benchmark::DoNotOptimize(PlainFind(records, tag));
  return (Seconds() - before) / kFinds;
}

void InChild(benchmark::State& state, double (*measure)(const char* tag), const char* tag) {
  const DictionaryFolder folder;
  for (auto _ : state) {
    int ends[2];
    double seconds = 0;
    if (pipe(ends) != 0) Refuse("pipe");
    const pid_t child = fork();
    if (child == 0) {
      seconds = measure(tag);
      _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    close(ends[1]);
    if (read(ends[0], &seconds, sizeof seconds) != sizeof seconds) Refuse("the child");
    close(ends[0]);
    waitpid(child, nullptr, 0);
    state.SetIterationTime(seconds);
  }
}

const bool kRegistered = [] {
  const auto add = [](const char* name, double (*measure)(const char*), const char* tag) {
    benchmark::RegisterBenchmark(name, InChild, measure, tag)->Iterations(8)->UseManualTime();
  };
  add("First use of 10,000 records/Orvane", FirstUse, "df270f");
  add("First use of 10,000 records/fread", PlainFirstUse, "df270f");
  add("Find the first of 10,000/Orvane", Find, "df0000");
  add("Find the last of 10,000/Orvane", Find, "df270f");
  add("Find the last of 10,000/strcasecmp", CompareAll, "df270f");
  add("Find none of 10,000/Orvane", Find, "df9999");
  add("Find none of 10,000/strcasecmp", CompareAll, "df9999");
  return true;
}();

}  // namespace
