// Test doubles shared by the model tests.
#pragma once

#include <string>
#include <vector>

#include "kivmovfrec/services.h"

namespace kivmovfrec::testing {

// Counter service handing out 100, 101, ... or, when `falla`, always -1. Remembers the tables
// asked for.
class FakeDBFncs : public IDBFncs {
 public:
  explicit FakeDBFncs(bool falla = false) : falla_(falla) {}
  int32_t GetTableCounter(std::string_view table) override {
    tablas.emplace_back(table);
    return falla_ ? -1 : siguiente++;
  }
  Variant GetSetting(std::string_view name) override {
    return name == "Idioma" ? idioma : Variant();
  }
  void ShowHelp(int) override {}
  bool VincularAvisos(int32_t, const std::string&) override { return true; }

  int32_t siguiente = 100;
  Variant idioma;
  std::vector<std::string> tablas;

 private:
  bool falla_;
};

}  // namespace kivmovfrec::testing
