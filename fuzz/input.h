#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace orvane_fuzz {

// Ends the process, naming what was wrong.
inline void Expect(bool right, const char* what) {
  if (right) return;
  std::fprintf(stderr, "wrong: %s\n", what);
  std::abort();
}

// For two answers that must be the same; bytes that don't print are shown as \xx, zeros at
// the end not at all.
inline void ExpectSame(std::string_view ours, std::string_view expected, const char* what) {
  if (ours == expected) return;
  const auto show = [](const char* name, std::string_view text) {
    std::fprintf(stderr, "%s, %zu bytes: ", name, text.size());
    for (const char byte : text.substr(0, text.find_last_not_of('\0') + 1)) {
      const bool prints = byte >= ' ' && byte <= '~' && byte != '\\';
      std::fprintf(stderr, prints ? "%c" : "\\%02x", static_cast<unsigned char>(byte));
    }
    std::fputc('\n', stderr);
  };
  show("gave", ours);
  show("not ", expected);
  Expect(false, what);
}

// Takes an input apart, from the front. Where it has ended, numbers are 0 and texts empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(size == 0 ? "" : reinterpret_cast<const char*>(data), size) {}

  bool Empty() const { return rest_.empty(); }
  std::string_view Rest() { return Take(rest_.size()); }
  std::string_view Take(std::size_t count) {
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  std::uint8_t Byte() {
    const std::string_view byte = Take(1);
    return byte.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(byte[0]);
  }
  // What stands before the next such byte, which is taken too; all the rest if there is none.
  std::string_view Until(char end) {
    const std::string_view part = Take(std::min(rest_.find(end), rest_.size()));
    Take(1);
    return part;
  }
  std::string_view Line() { return Until('\n'); }

 private:
  std::string_view rest_;
};

// A caller's buffer of just the size that the header promises to be enough. Writing beside it ends
// the process: at once under the address sanitizer, else when the buffer is given back.
class Room {
 public:
  static constexpr char kFiller = '\xA5';

  explicit Room(std::size_t size) : size_(size), bytes_(new char[kGuard + size + kGuard]) {
    std::memset(bytes_.get(), kFiller, kGuard + size + kGuard);
  }
  ~Room() {
    for (std::size_t i = 0; i < kGuard; ++i) {
      Expect(bytes_[i] == kFiller, "what stands before a buffer");
      Expect(bytes_[kGuard + size_ + i] == kFiller, "what stands behind a buffer");
    }
  }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

  char* Data() { return bytes_.get() + kGuard; }
  std::size_t Size() const { return size_; }
  std::string_view Bytes() const { return {bytes_.get() + kGuard, size_}; }
  // What stands before the first zero, or the whole room.
  std::string_view Text() const { return Bytes().substr(0, Bytes().find('\0')); }

 private:
  static constexpr std::size_t kGuard = ORVANE_GUARD;
  std::size_t size_;
  std::unique_ptr<char[]> bytes_;
};

// Has a buffer written to that is just large enough for what should come out.
template <typename Write>
void ExpectWritten(std::string_view expected, const char* what, const Write& write) {
  Room room(expected.size());
  write(room.Data());
  ExpectSame(room.Bytes(), expected, what);
}

// A copy of a text that ends with its terminator, in an area of its own: reading on behind the
// terminator shows under the address sanitizer.
class Text {
 public:
  explicit Text(std::string_view text) : room_(text.size() + 1) {
    text.copy(room_.Data(), text.size());
    room_.Data()[text.size()] = '\0';
  }
  operator const char*() const { return room_.Bytes().data(); }

 private:
  Room room_;
};

}  // namespace orvane_fuzz
