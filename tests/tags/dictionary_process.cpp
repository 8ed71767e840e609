#include "tags/dictionary_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

#include "support/module_loading.h"

namespace orvane_test {
namespace {

std::filesystem::path MakeTemporaryFolder() {
  std::random_device random;
  for (;;) {
    const std::string name = "orvane-tags-" + std::to_string(random());
    const auto folder = std::filesystem::temp_directory_path() / name;
    if (std::filesystem::create_directory(folder)) return folder;
  }
}

/// Loaded from a file of its own, so that it shares nothing with other copies.
void* LoadCopy() {
  const std::string fileName = support::ModuleFileName("orvane");
  const auto folder = MakeTemporaryFolder();
  std::filesystem::copy_file(std::filesystem::path(ORVANE_BUILD_FOLDER) / fileName,
                             folder / fileName);
  std::string why;
  void* const module = support::LoadModule(folder / fileName, why);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  if (module == nullptr) throw std::runtime_error(why);
  return module;
}

template <typename Function>
void Bind(void* module, const char* name, Function*& out) {
  out = reinterpret_cast<Function*>(support::FindExport(module, name));
  if (out == nullptr) throw std::runtime_error(std::string("no export ") + name);
}

}  // namespace

WorkingFolder::WorkingFolder()
    : before_(std::filesystem::current_path()), path_(MakeTemporaryFolder()) {
  std::filesystem::current_path(path_);
}

WorkingFolder::~WorkingFolder() {
  std::error_code ignored;
  std::filesystem::current_path(before_, ignored);
  std::filesystem::remove_all(path_, ignored);
}

void WriteFile(const std::filesystem::path& path, const std::string& octets) {
  std::ofstream file(path, std::ios::binary);
  file << octets;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

DictionaryProcess::DictionaryProcess() {
  void* const module = LoadCopy();
  Bind(module, "GetTagdict", list_);
  Bind(module, "FindTagdictData", find_);
  Bind(module, "AddTagdictData", add_);
  Bind(module, "DeleteTagdictData", delete_);
  Bind(module, "UpTagdictData", update_);
  Bind(module, "FlushTagdict", flush_);
}

std::vector<Texts> DictionaryProcess::List() const {
  std::vector<TagdictData> records(1000);
  int32_t count = -1;
  EXPECT_EQ(list_(records.data(), &count), 1);
  std::vector<Texts> texts;
  std::transform(records.begin(), records.begin() + count, std::back_inserter(texts), TextsOf);
  return texts;
}

}  // namespace orvane_test
