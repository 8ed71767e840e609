#pragma once

#include <string>
#include <vector>

namespace host {

// The lines that a person typed, for recall by the arrow keys, in this session and in later ones,
// where there is line editing that takes lines. Whoever calls leaves out what is hidden.
class History {
 public:
  History();

  void Add(const std::string& line);
  // Takes back the lines of this session: one of them has turned out to be secret.
  void Forget();
  // Adds them to the file, which nobody else reads. A file that can't be written is no reason to
  // fail.
  void Save() const;

 private:
  std::vector<std::string> earlier_;
  std::vector<std::string> typed_;
};

}  // namespace host
