#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "orvane.h"
#include "tags/dictionary_image.h"

namespace orvane_test {

/// The current directory for as long as this lives: an empty one, removed with all that is in it.
class WorkingFolder {
 public:
  WorkingFolder();
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder();

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path before_;
  std::filesystem::path path_;
};

constexpr char kDictionaryFile[] = "dictdata.bin";

void WriteFile(const std::filesystem::path& path, const std::string& octets);

/// None if there is no such file.
std::optional<std::string> ReadFile(const std::filesystem::path& path);

/// A dictionary that no call has touched yet, as a process has it that has just begun: that of a
/// copy of the library, which stays loaded. The functions are those of orvane.h.
class DictionaryProcess {
 public:
  DictionaryProcess();

  int Find(const std::string& tag, TagdictData& out) const { return find_(tag.c_str(), &out); }
  int Add(const TagdictData& record) const { return add_(&record); }
  int Add(const Texts& texts) const { return Add(MakeRecord(texts)); }
  int Delete(const std::string& tag) const { return delete_(tag.c_str()); }
  int Update(const TagdictData& record) const { return update_(&record); }
  int Update(const Texts& texts) const { return Update(MakeRecord(texts)); }
  int Flush() const { return flush_(); }

  /// The whole list. Tests keep it below 1,000 records.
  std::vector<Texts> List() const;

 private:
  decltype(GetTagdict)* list_;
  decltype(FindTagdictData)* find_;
  decltype(AddTagdictData)* add_;
  decltype(DeleteTagdictData)* delete_;
  decltype(UpTagdictData)* update_;
  decltype(FlushTagdict)* flush_;
};

}  // namespace orvane_test
