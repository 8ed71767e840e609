#include "host/lsp/server.h"

#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/failure.h"
#include "host/lsp/answers.h"
#include "host/lsp/message_stream.h"

namespace host {
namespace {

using Json = nlohmann::json;

// Error codes of JSON-RPC and of the protocol.
enum ErrorCode {
  kParseError = -32700,
  kInvalidRequest = -32600,
  kMethodNotFound = -32601,
  kInvalidParams = -32602,
  kServerNotInitialized = -32002,
};

struct RequestFault {
  ErrorCode code;
  const char* text;
};

Json Capabilities() {
  constexpr int kFullText = 1;
  return {{"capabilities",
           {{"positionEncoding", "utf-16"},
            {"textDocumentSync", {{"openClose", true}, {"change", kFullText}}},
            {"completionProvider", {{"triggerCharacters", {"@", "%", "("}}}},
            {"hoverProvider", true},
            {"definitionProvider", true},
            {"documentSymbolProvider", true}}},
          {"serverInfo", {{"name", "orvane"}, {"version", ORVANE_VERSION}}}};
}

class Server {
 public:
  explicit Server(const Circumstances& circumstances) : circumstances_(circumstances) {}

  int Serve() {
    while (const std::optional<std::string> text = stream_.Next()) {
      if (!Take(*text)) return shutDown_ ? kDone : 1;
    }
    return 1;
  }

 private:
  // False after the last message.
  bool Take(const std::string& text) {
    const Json message = Json::parse(text, nullptr, false);
    if (message.is_discarded()) {
      SendFault(nullptr, {kParseError, "no JSON message of the length that its header tells"});
      return true;
    }
    const bool response = message.is_object() && !message.contains("method") &&
                          (message.contains("result") || message.contains("error"));
    if (response) return true;  // to no request of ours
    const Json id = IdOf(message);
    if (!message.is_object() || !message.contains("method") || !message["method"].is_string()) {
      SendFault(id, {kInvalidRequest, "this is no request"});
      return true;
    }
    const std::string method = message["method"];
    if (!message.contains("id")) return Notice(method, message.value("params", Json()));
    try {
      const Json result = Answer(method, message.value("params", Json()));
      SendMessage({{"id", id}, {"result", result}});
    } catch (const RequestFault& fault) {
      SendFault(id, fault);
    } catch (const Json::exception&) {
      SendFault(id, {kInvalidParams, "the parameters are not those of this request"});
    }
    return true;
  }

  static Json IdOf(const Json& message) {
    if (!message.is_object() || !message.contains("id")) return nullptr;
    const Json& id = message["id"];
    return id.is_string() || id.is_number_integer() ? id : Json();
  }

  bool Notice(const std::string& method, const Json& params) {
    if (method == "exit") return false;
    if (!initialized_ || shutDown_) return true;
    try {
      if (method == "textDocument/didOpen") {
        const Json& document = params.at("textDocument");
        Store(document.at("uri"), document.at("text"));
      } else if (method == "textDocument/didChange") {
        const Json& changes = params.at("contentChanges");
        if (!changes.empty()) {
          Store(params.at("textDocument").at("uri"), changes.back().at("text"));
        }
      } else if (method == "textDocument/didClose") {
        const std::string uri = params.at("textDocument").at("uri");
        documents_.erase(uri);
        Publish(uri, Json::array());
      }
    } catch (const Json::exception&) {  // a notification gets no answer
    }
    return true;
  }

  void Store(const std::string& uri, const std::string& text) {
    const Document& document = documents_.insert_or_assign(uri, Document(text)).first->second;
    Publish(uri, DiagnosticsOf(document, circumstances_));
  }

  Json Answer(const std::string& method, const Json& params) {
    if (shutDown_) throw RequestFault{kInvalidRequest, "the server has been shut down"};
    if (method == "initialize") {
      if (initialized_) throw RequestFault{kInvalidRequest, "the server is initialized already"};
      initialized_ = true;
      return Capabilities();
    }
    if (!initialized_) throw RequestFault{kServerNotInitialized, "initialize comes first"};
    if (method == "shutdown") {
      shutDown_ = true;
      return nullptr;
    }
    if (method == "textDocument/completion")
      return CompletionAt(At(params), PlaceIn(params), circumstances_);
    if (method == "textDocument/hover") return HoverAt(At(params), PlaceIn(params), circumstances_);
    if (method == "textDocument/definition") {
      return DefinitionAt(At(params), PlaceIn(params), params.at("textDocument").at("uri"));
    }
    if (method == "textDocument/documentSymbol") return OutlineOf(At(params));
    throw RequestFault{kMethodNotFound, "the server has no such method"};
  }

  const Document& At(const Json& params) const {
    const auto found = documents_.find(params.at("textDocument").at("uri").get<std::string>());
    if (found == documents_.end()) {
      throw RequestFault{kInvalidParams, "this document is not open"};
    }
    return found->second;
  }

  Place PlaceIn(const Json& params) const {
    const Json& position = params.at("position");
    const Json& character = position.at("character");
    const std::vector<std::string>& lines = At(params).Lines();
    if (!position.at("line").is_number_unsigned() || position["line"] >= lines.size() ||
        !character.is_number_unsigned()) {
      throw RequestFault{kInvalidParams, "there is no such place"};
    }
    const size_t line = position["line"];
    return {line, OctetAt(lines[line], character)};
  }

  static void Publish(const std::string& uri, const Json& found) {
    SendMessage({{"method", "textDocument/publishDiagnostics"},
                 {"params", {{"uri", uri}, {"diagnostics", found}}}});
  }

  static void SendFault(const Json& id, const RequestFault& fault) {
    SendMessage({{"id", id}, {"error", {{"code", fault.code}, {"message", fault.text}}}});
  }

  static void SendMessage(Json message) {
    message["jsonrpc"] = "2.0";
    MessageStream::Send(message.dump(-1, ' ', false, Json::error_handler_t::replace));
  }

  const Circumstances& circumstances_;
  MessageStream stream_;
  std::map<std::string, Document> documents_;
  bool initialized_ = false;
  bool shutDown_ = false;
};

}  // namespace

int ServeEditor(const Circumstances& circumstances) { return Server(circumstances).Serve(); }

}  // namespace host
