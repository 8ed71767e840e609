#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/check/check.h"
#include "host/lsp/document.h"

namespace host {

// What an editor asks of a script, in the shapes of the Language Server Protocol. A place is a line
// and an octet of it, counted from 0; one that is not there gets null or nothing.
struct Place {
  size_t line;
  size_t octet;
};

nlohmann::json DiagnosticsOf(const Document& document, const Circumstances& circumstances);
nlohmann::json CompletionAt(const Document& document, Place place,
                            const Circumstances& circumstances);
// Of what the command line brings no value is shown.
nlohmann::json HoverAt(const Document& document, Place place, const Circumstances& circumstances);
nlohmann::json DefinitionAt(const Document& document, Place place, const std::string& uri);
nlohmann::json OutlineOf(const Document& document);

}  // namespace host
