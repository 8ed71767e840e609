#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <utility>

#include "tags/dictionary.h"

namespace {
bool readingFails = false;
std::function<void()> beforeWrite;  // runs once
}  // namespace

// Stand in the way of the C library's functions.
#define ORVANE_IN_THE_WAY extern "C" __attribute__((visibility("default"))) ssize_t
ORVANE_IN_THE_WAY read(int descriptor, void* area, size_t size) {
  if (!readingFails) return syscall(SYS_read, descriptor, area, size);
  errno = EIO;
  return -1;
}
ORVANE_IN_THE_WAY write(int descriptor, const void* area, size_t size) {
  if (beforeWrite) std::exchange(beforeWrite, nullptr)();
  return syscall(SYS_write, descriptor, area, size);
}

// The dictionary of this process stays untouched, so that each child begins as a new process.
namespace orvane_test {
namespace {

namespace fs = std::filesystem;

bool Succeeds(const std::function<bool()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);  // ends what hangs
    _exit(work() ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Permissions hold for everybody but the superuser, whom tests may run as.
bool GiveUpPrivileges() {
  constexpr uid_t kNobody = 65534;
  return geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
}

bool AddAndFlush() {
  const TagdictData record = MakeRecord({"5A", "new", ""});
  return AddTagdictData(&record) == 1 && FlushTagdict() == 1;
}

const List kOld = {{"57", "old", ""}};
const List kNew = {{"57", "old", ""}, {"5A", "new", ""}};
const List kMany(300, {"57", std::string(100, 'x'), ""});

class Flush : public testing::Test {
  WorkingFolder folder;
};

TEST_F(Flush, KeepsThePermissions) {
  for (const auto& [mode, kept] :
       {std::pair(0640U, 0640U), {0600U, 0600U}, {0777U, 0777U}, {06755U, 0755U}, {0606U, 0606U}}) {
    WriteFile(kDictionaryFile, FileImage(kOld));
    chmod(kDictionaryFile, mode);
    EXPECT_TRUE(Succeeds([] { return umask(027), AddAndFlush(); }));
    EXPECT_EQ(static_cast<mode_t>(fs::status(kDictionaryFile).permissions()), kept);
  }
}

std::string Attribute(const char* name) {
  std::string value(100, '\0');
  const ssize_t size = getxattr(kDictionaryFile, name, value.data(), value.size());
  return size < 0 ? "none" : value.substr(0, static_cast<std::size_t>(size));
}

TEST_F(Flush, KeepsAttributesAndAccessLists) {
  // In the form of the system: the owner, one user more, the group, the mask, the others.
  std::string list = LittleEndian(2, 4);
  for (const std::uint64_t entry : std::initializer_list<std::uint64_t>{
           0xFFFFFFFF'0006'0001, 0x0000FFFE'0004'0002, 0xFFFFFFFF'0000'0004, 0xFFFFFFFF'0004'0010,
           0xFFFFFFFF'0000'0020}) {
    list += LittleEndian(entry, 8);
  }
  const auto set = [&](const char* file, const char* name, const std::string& value) {
    return setxattr(file, name, value.data(), value.size(), 0) == 0;
  };
  WriteFile(kDictionaryFile, FileImage(kOld));
  if (!set(kDictionaryFile, "user.orvane", "note")) GTEST_SKIP() << "no attributes in this folder";
  const char* const access = "system.posix_acl_access";
  for (const std::string& expected : {list, std::string("none")}) {
    ASSERT_TRUE(expected != list || set(kDictionaryFile, access, list));
    EXPECT_TRUE(Succeeds(AddAndFlush));
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(kNew));
    EXPECT_EQ(Attribute(access), expected);
    EXPECT_EQ(Attribute("user.orvane"), "note");
    // What the folder gives to new files.
    removexattr(kDictionaryFile, access);
    ASSERT_TRUE(set(".", "system.posix_acl_default", list));
    WriteFile(kDictionaryFile, FileImage(kOld));
  }
}

TEST_F(Flush, KeepsItsNewFileFromOthersUntilItIsWhole) {
  WriteFile(kDictionaryFile, FileImage(kOld));
  WriteFile("dictdata.bin.1.new", "of a process that died");
  WriteFile("dictdata.bin.1x.new", "");
  EXPECT_TRUE(Succeeds([] {
    static bool kept = false;
    beforeWrite = [] {
      // The old one is whole, and another process flushes meanwhile.
      kept = ReadFile(kDictionaryFile) == FileImage(kOld) &&
             Succeeds([] { return FlushTagdict() == 1; }) && FilesIn(".") == 3;
      for (const auto& file : fs::directory_iterator(".")) {
        if (file.path() == "./dictdata.bin" || file.path() == "./dictdata.bin.1x.new") continue;
        kept = kept && file.status().permissions() == fs::perms(0600);
      }
    };
    return AddAndFlush() && kept;
  }));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(kNew));
  EXPECT_EQ(FilesIn("."), 2);
}

// tests/host/posix/tags_sharing_test.cpp has a full disk.
TEST_F(Flush, WritesWhatItMayAndLeavesTheRest) {
  List grown = kMany;
  grown.push_back(kNew[1]);
  const rlim_t half = FileImage(kMany).size() + 4;  // half of the record fits
  const struct {
    const char* what;
    mode_t file, folder;  // no file: 0
    List before, after;
    rlim_t room = RLIM_INFINITY;
    bool shrinks = false;
  } rows[] = {
      {"a file that it may not write", 0444, 0777, kOld, kOld},
      {"no file, in a folder that takes none", 0, 0555, {}, {}},
      {"a folder that takes no other", 0666, 0555, kMany, grown},
      {"a smaller content there", 0666, 0555, kMany, {kNew[1]}, RLIM_INFINITY, true},
      {"no room there", 0666, 0555, kMany, kMany, half},
      {"no room for another file", 0666, 0777, kMany, kMany, half},
  };
  for (const auto& row : rows) {
    chmod(".", 0777);
    fs::remove(kDictionaryFile);
    if (row.file != 0) WriteFile(kDictionaryFile, FileImage(row.before));
    chmod(kDictionaryFile, row.file);
    chmod(".", row.folder);
    EXPECT_TRUE(Succeeds([&] {
      const rlimit limit{row.room, row.room};
      if (!GiveUpPrivileges() || setrlimit(RLIMIT_FSIZE, &limit) != 0) return false;
      while (row.shrinks && DeleteTagdictData("57") == 1) continue;
      return AddAndFlush();
    })) << row.what;
    EXPECT_EQ(FilesIn("."), row.file != 0 ? 1 : 0) << row.what;
    const auto content = ReadFile(kDictionaryFile);
    EXPECT_EQ(content.value_or(FileImage({})), FileImage(row.after)) << row.what;
  }
  chmod(".", 0777);
  fs::remove(kDictionaryFile);
  fs::create_directory(kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_EQ(FilesIn("."), 1);
  EXPECT_EQ(FilesIn(kDictionaryFile), 0);
}

TEST_F(Flush, FollowsSymbolicLinks) {
  const fs::path target = fs::current_path() / "target";
  const WorkingFolder elsewhere;
  WriteFile(target, FileImage(kOld));
  fs::create_symlink(target, "middle");
  fs::create_symlink("middle", kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_EQ(ReadFile(target), FileImage(kNew));

  // A link that leads to no file yet.
  fs::remove(target);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_TRUE(fs::is_symlink(kDictionaryFile) && fs::is_symlink("middle"));
  EXPECT_EQ(ReadFile(target), FileImage({kNew[1]}));
  EXPECT_EQ(FilesIn(target.parent_path()), 1);

  // A link in a circle, and those to something that is no file.
  ASSERT_EQ(mkfifo("pipe", 0666), 0);
  for (const char* end : {kDictionaryFile, "/dev/null", "pipe"}) {
    fs::remove(kDictionaryFile);
    fs::create_symlink(end, kDictionaryFile);
    EXPECT_TRUE(Succeeds(AddAndFlush));
    EXPECT_TRUE(fs::is_symlink(kDictionaryFile));
  }
  EXPECT_TRUE(fs::is_character_file("/dev/null") && fs::is_fifo("pipe"));
  EXPECT_EQ(FilesIn("."), 3);
}

TEST_F(Flush, FollowsNoLinkThatTheSystemDoesNotFollow) {
  // As in a folder where everybody may put things.
  const auto enter = [] {
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", ".", "tmpfs", MS_NOSYMFOLLOW, nullptr) == 0 &&
           chdir(fs::current_path().c_str()) == 0;
  };
  if (!Succeeds(enter)) GTEST_SKIP() << "only the superuser can make such a folder";
  EXPECT_TRUE(Succeeds([&] {
    if (!enter()) return false;
    WriteFile("ours", FileImage(kOld));
    fs::create_symlink("ours", kDictionaryFile);
    return AddAndFlush() && ReadFile("ours") == FileImage(kOld) && fs::is_symlink(kDictionaryFile);
  }));
}

TEST_F(Flush, DoesNotTouchAFileThatFailedWhileItWasRead) {
  WriteFile(kDictionaryFile, FileImage(kOld));
  EXPECT_TRUE(Succeeds([] {
    readingFails = true;
    const bool flushed = AddAndFlush();
    readingFails = false;
    return flushed && ReadFile(kDictionaryFile) == FileImage(kOld) && FlushTagdict() == 1;
  }));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({kNew[1], kNew[0]}));
}

}  // namespace
}  // namespace orvane_test
