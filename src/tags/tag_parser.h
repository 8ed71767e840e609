#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "orvane.h"

// The object behind the host's handle. It keeps the last value of each tag. The parsed text is kept
// whole and entries point into it; the host's record is made on request.
struct TagParser {
 public:
  // Adds the elements of a text up to the first fault. True if there was no fault. If it throws
  // std::bad_alloc, it has added nothing.
  bool Parse(std::string_view text);

  // Fills a record that comes in all zero. False if the tag, in either case, is not known.
  bool Find(std::string_view tag, TagRecord& record) const;

 private:
  struct Entry {
    std::size_t begin = 0;  // of the value, in digits_
    std::size_t size = 0;
    std::array<char, 2> lengthText{};  // zeros if the tag was never seen
  };
  struct Element;

  bool ReadElement(std::size_t begin, std::size_t end, Element& element) const;
  bool StoreElements(std::size_t begin);
  void Store(const Element& element);
  unsigned OctetAt(std::size_t at) const;
  void GiveBackRoom() noexcept;

  std::array<Entry, 256> entries_{};  // indexed by tag
  std::string digits_;                // the parsed texts, one after the other
  std::size_t used_ = 0;              // the number of digits that the entries use
};
