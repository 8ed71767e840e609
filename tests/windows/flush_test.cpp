// What the dictionary's file goes through when others have it open.
#include <gtest/gtest.h>
#include <windows.h>

#include "tags/dictionary.h"

namespace orvane_test {
namespace {

// Opens the file as another program does, for as long as this lives.
class OpenElsewhere {
 public:
  explicit OpenElsewhere(DWORD sharing)
      : handle_(CreateFileA(kDictionaryFile, GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
  }
  OpenElsewhere(const OpenElsewhere&) = delete;
  OpenElsewhere& operator=(const OpenElsewhere&) = delete;
  ~OpenElsewhere() { CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

class Flush : public testing::Test {
 protected:
  // Adds a record and flushes.
  void AddAndFlush() {
    records_.push_back({std::to_string(records_.size()), "short", std::string(1000, 'x')});
    const TagdictData record = MakeRecord(records_.back());
    EXPECT_EQ(AddTagdictData(&record), 1);
    EXPECT_EQ(FlushTagdict(), 1);
    EXPECT_EQ(FilesIn("."), 1);
  }
  // How many records the file holds; -1 if it isn't whole.
  int Stored() const {
    const std::string content = ReadFile(kDictionaryFile).value_or("");
    for (std::size_t count = 0; count <= records_.size(); ++count) {
      const List first(records_.begin(), records_.begin() + static_cast<std::ptrdiff_t>(count));
      if (content == FileImage(first)) return static_cast<int>(count);
    }
    return -1;
  }

 private:
  const WorkingFolder folder_;
  List records_;
};

TEST_F(Flush, WritesTheWholeFileOrNothing) {
  AddAndFlush();
  EXPECT_EQ(Stored(), 1);
  AddAndFlush();
  EXPECT_EQ(Stored(), 2);
  {
    const OpenElsewhere reader(FILE_SHARE_READ);
    AddAndFlush();
    EXPECT_EQ(Stored(), 2) << "nobody else may write";
  }
  {
    const OpenElsewhere reader(FILE_SHARE_READ | FILE_SHARE_WRITE);
    AddAndFlush();
    EXPECT_EQ(Stored(), 4) << "it can't be replaced, but overwritten";
  }
  {
    const OpenElsewhere reader(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    AddAndFlush();
    EXPECT_EQ(Stored(), 5) << "others let go of it";
  }
  AddAndFlush();
  EXPECT_EQ(Stored(), 6);
}

}  // namespace
}  // namespace orvane_test
