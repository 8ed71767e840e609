#pragma once

#include <string>
#include <vector>

namespace host {

// The lines that a person typed, for recall by the arrow keys in this session and later ones. Keeps
// nothing where the line editing takes no lines. The caller leaves out hidden lines.
class History {
 public:
  History();

  void Add(const std::string& line);
  // Removes this session's lines: one of them has turned out to be secret.
  void Forget();
  // Adds the lines to the file, which only the owner can read. A failed write is ignored.
  void Save() const;

 private:
  std::vector<std::string> earlier_;
  std::vector<std::string> typed_;
};

}  // namespace host
