#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/check/check.h"
#include "host/lsp/document.h"

namespace host {

// Answers to an editor's questions, in the forms of the Language Server Protocol. A place is a line
// and an octet of that line, both counted from 0. A place outside the script gets null or nothing.
struct Place {
  size_t line;
  size_t octet;
};

nlohmann::json DiagnosticsOf(const Document& document, const Circumstances& circumstances);
nlohmann::json CompletionAt(const Document& document, Place place,
                            const Circumstances& circumstances);
// Shows no value that comes from the command line.
nlohmann::json HoverAt(const Document& document, Place place, const Circumstances& circumstances);
nlohmann::json DefinitionAt(const Document& document, Place place, const std::string& uri);
nlohmann::json OutlineOf(const Document& document);

}  // namespace host
