#pragma once

#include <memory>
#include <string>

namespace CLI {
class FormatterBase;
}

namespace host {

// The text, wrapped for a screen of 80 columns. The lines of one paragraph are joined. A line with
// two columns continues below its second one.
std::string FitScreen(const std::string& text);

// Formats the command line's help in such lines.
std::shared_ptr<CLI::FormatterBase> MakeHelpFormatter();

}  // namespace host
