// Lua 5.4 and LuaJIT: two libraries with the same names, so each is linked to a program of its own.
#include <lua.hpp>

#include "statements.h"

namespace {

class Lua {
 public:
  Lua() { luaL_openlibs(state_); }
  Lua(const Lua&) = delete;
  Lua& operator=(const Lua&) = delete;
  ~Lua() { lua_close(state_); }

  void Set(const char* name, const char* value) {
    lua_pushstring(state_, value);
    lua_setglobal(state_, name);
  }

  bool Evaluate(const std::string& script) {
    lua_settop(state_, 0);
    return luaL_loadbuffer(state_, script.data(), script.size(), "=") == 0 &&
           lua_pcall(state_, 0, 1, 0) == 0;
  }

  std::string Value() {
    if (lua_isnil(state_, -1)) lua_getglobal(state_, "CMD");
    const char* const text = lua_tostring(state_, -1);
    return text != nullptr ? text : "";
  }

 private:
  lua_State* const state_ = luaL_newstate();
};

const bool kMeasured = MeasureStatements<Lua>(LUA_NAME, &Statement::lua);

}  // namespace
