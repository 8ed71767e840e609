// Puts a function in the place of one that a loaded module imports.
#pragma once

namespace support {

// For as long as this object lives, the module calls the replacement. Nobody else does. Throws
// std::runtime_error if the module isn't loaded or doesn't import the function.
class ReplacedImport {
 public:
  template <typename Function>
  ReplacedImport(const char* module, const char* function, Function* replacement)
      : ReplacedImport(module, function, reinterpret_cast<void*>(replacement)) {}
  ReplacedImport(const char* module, const char* function, void* replacement);
  ReplacedImport(const ReplacedImport&) = delete;
  ReplacedImport& operator=(const ReplacedImport&) = delete;
  ~ReplacedImport();

 private:
  void** place_;
  void* original_;
};

}  // namespace support
