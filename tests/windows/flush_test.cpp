// What the dictionary's file goes through when others have it open.
#include <gtest/gtest.h>
#include <windows.h>
// Behind the types that it takes from there.
#include <sddl.h>

#include "tags/dictionary.h"

namespace orvane_test {
namespace {

// Opens the file as another program does, for as long as this lives.
class OpenElsewhere {
 public:
  explicit OpenElsewhere(DWORD sharing, const wchar_t* file = L"dictdata.bin")
      : handle_(CreateFileW(file, GENERIC_READ, sharing, nullptr, OPEN_ALWAYS,
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
  ~Flush() override {
    for (const Texts& texts : records_) DeleteTagdictData(texts[0].c_str());
  }
  // Adds a record and flushes. The number of files is then this.
  void AddAndFlush(std::ptrdiff_t files = 1) {
    records_.push_back({std::to_string(records_.size()), "short", std::string(1000, 'x')});
    const TagdictData record = MakeRecord(records_.back());
    EXPECT_EQ(AddTagdictData(&record), 1);
    EXPECT_EQ(FlushTagdict(), 1);
    EXPECT_EQ(FilesIn("."), files);
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
  constexpr DWORD kRead = FILE_SHARE_READ, kWrite = kRead | FILE_SHARE_WRITE;
  AddAndFlush();
  EXPECT_EQ(Stored(), 1);
  const struct {
    DWORD sharing;
    int stored;
  } rows[] = {{kRead, 1},                        // nobody else may write
              {kWrite, 3},                       // it can't be replaced, but overwritten
              {kWrite | FILE_SHARE_DELETE, 4}};  // others let go of it
  for (const auto& row : rows) {
    const OpenElsewhere reader(row.sharing);
    AddAndFlush();
    EXPECT_EQ(Stored(), row.stored);
  }
  AddAndFlush();
  EXPECT_EQ(Stored(), 5);
}

TEST_F(Flush, StaysInAFolderThatTheCodePageCannotName) {
  for (const char16_t* const name :
       {u"\u041F\u0440\u043E\u0435\u043A\u0442 \u4E2D\u6587", u"\u0101"}) {
    const std::filesystem::path above = std::filesystem::current_path();
    std::filesystem::create_directory("a");  // what the second one becomes in a code page
    WriteFile("a/dictdata.bin", "the neighbour's");
    std::filesystem::create_directory(name);
    std::filesystem::current_path(name);
    AddAndFlush();
    AddAndFlush();
    EXPECT_GE(Stored(), 2);
    std::filesystem::current_path(above);
    EXPECT_EQ(ReadFile("a/dictdata.bin"), "the neighbour's");
  }
}

TEST_F(Flush, RemovesWhatDeadProcessesLeftAndNoMore) {
  AddAndFlush();
  WriteFile("dictdata.bin.1.new", "");
  AddAndFlush();
  const OpenElsewhere living(FILE_SHARE_READ, L"dictdata.bin.2.new");
  WriteFile("dictdata.bin.1x.new", "");
  AddAndFlush(3);
  EXPECT_EQ(Stored(), 3);
}

std::string AccessList() {
  std::string list(1000, '\0');
  DWORD size = 0;
  EXPECT_NE(GetFileSecurityA(kDictionaryFile, DACL_SECURITY_INFORMATION, list.data(), 1000, &size),
            0);
  return list.substr(0, size);
}

TEST_F(Flush, KeepsTheAccessListAndAttributes) {
  AddAndFlush();
  // Everything for the owner, and nothing for anybody else.
  PSECURITY_DESCRIPTOR own = nullptr;
  ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorA("D:P(A;;FA;;;OW)", SDDL_REVISION_1,
                                                                 &own, nullptr),
            0);
  const std::string usual = AccessList();
  ASSERT_NE(SetFileSecurityA(kDictionaryFile, DACL_SECURITY_INFORMATION, own), 0);
  LocalFree(own);
  SetFileAttributesA(kDictionaryFile, FILE_ATTRIBUTE_HIDDEN);
  const std::string before = AccessList();
  ASSERT_NE(before, usual);
  AddAndFlush();
  EXPECT_EQ(Stored(), 2);
  EXPECT_EQ(AccessList(), before);
  EXPECT_NE(GetFileAttributesA(kDictionaryFile) & FILE_ATTRIBUTE_HIDDEN, 0U);
}

}  // namespace
}  // namespace orvane_test
