// The component's own error. Database failures are DbError (db.h); VB-level failures inside the
// script engine and the VB functions are VbError (variant.h).
#pragma once

#include <stdexcept>
#include <string>

#include "kivmovfrec/export.h"

namespace kivmovfrec {

// Raised when the component itself cannot go on, e.g. no new key can be drawn for a table
// (number 8000, source "DBFncs").
class KMF_API ComponentError : public std::runtime_error {
 public:
  ComponentError(int number, std::string source, const std::string& description)
      : std::runtime_error(description), number_(number), source_(std::move(source)) {}
  int number() const { return number_; }
  const std::string& source() const { return source_; }
  const char* description() const { return what(); }

 private:
  int number_;
  std::string source_;
};

}  // namespace kivmovfrec
