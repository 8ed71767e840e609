#pragma once

#include <memory>
#include <string>

namespace CLI {
class FormatterBase;
}

namespace host {

// The text with lines that fit a screen of 80 columns. Lines of one paragraph flow into each other;
// a line goes on below its second column, if it has one.
std::string FitScreen(const std::string& text);

// The command line's own help, in such lines.
std::shared_ptr<CLI::FormatterBase> MakeHelpFormatter();

}  // namespace host
