#include "host/output.h"

#include <cerrno>
#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <system_error>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"

namespace host {

// Keeps text until it is flushed, or until it has a line end and this many octets.
class DescriptorBuffer : public std::streambuf {
 public:
  DescriptorBuffer(std::ostream& stream, int descriptor, std::string name, size_t kept)
      : stream_(stream),
        before_(stream.rdbuf(this)),
        descriptor_(descriptor),
        name_(std::move(name)),
        kept_(kept) {}
  ~DescriptorBuffer() override { stream_.rdbuf(before_); }

 protected:
  int_type overflow(int_type character) override {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
    const char c = traits_type::to_char_type(character);
    xsputn(&c, 1);
    return character;
  }

  std::streamsize xsputn(const char* text, std::streamsize count) override {
    text_.append(text, static_cast<size_t>(count));
    if (text_.size() < kept_) return count;
    if (const size_t end = text_.rfind('\n'); end != text_.npos) Write(end + 1);
    return count;
  }

  int sync() override {
    Write(text_.size());
    return 0;
  }

 private:
  void Write(size_t count) {
    const std::string text = text_.substr(0, count);
    text_.erase(0, count);
    for (size_t at = 0; at < count;) {
      const std::ptrdiff_t written = WriteSome(descriptor_, std::string_view(text).substr(at));
      if (written <= 0) Fail();
      at += static_cast<size_t>(written);
    }
  }

  [[noreturn]] void Fail() {
    text_.clear();
    std::cerr.tie(nullptr);  // flushing a bad stream would throw
    throw Failure(kFileFault,
                  "can't write " + name_ + ": " + std::generic_category().message(errno));
  }

  std::ostream& stream_;
  std::streambuf* before_;
  int descriptor_;
  std::string name_;
  size_t kept_;
  std::string text_;
};

StandardStreams::StandardStreams()
    : output_(std::make_unique<DescriptorBuffer>(std::cout, 1, "standard output", 8192)),
      error_(std::make_unique<DescriptorBuffer>(std::cerr, 2, "standard error", 0)) {
  std::cout.exceptions(std::ios::badbit);
  std::cerr << std::nounitbuf;
}

StandardStreams::~StandardStreams() { std::cout.exceptions(std::ios::goodbit); }

void PrintFailure(const Failure& failure) {
  if (dynamic_cast<const ScriptFailure*>(&failure) == nullptr) std::cerr << "orvane: ";
  std::istringstream message(failure.what());
  for (std::string line; std::getline(message, line);) std::cerr << Printable(line) << '\n';
}

}  // namespace host
