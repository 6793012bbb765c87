#include "platform/script/script_host.h"

#include <algorithm>
#include <memory>

#include "platform/script/coerce.h"
#include "platform/script/rdo.h"
#include "platform/vb/convert.h"

namespace kivmovfrec::script {

namespace {

int FirstNonBlankColumn(std::string_view text) {
  const size_t i = text.find_first_not_of(" \t\r\n");
  return i == std::string_view::npos ? 0 : static_cast<int>(i);
}

HostResult Attempt(Connection* connection, std::string_view expression, bool expose_connection,
                   const HostOptions& options) {
  Options engine_options;
  engine_options.clock = options.clock;
  Engine engine(std::move(engine_options));
  if (expose_connection && connection) {
    // The objects borrow the connection for this call only: a shared_ptr that owns nothing.
    std::shared_ptr<Connection> borrowed(std::shared_ptr<void>(), connection);
    engine.AddObject("rdoCBase", MakeRdoConnection(std::move(borrowed)), true);
  }
  const EvalResult r = engine.Eval(expression);
  HostResult out;
  if (!r.ok) {
    out.error = r.error;
    return out;
  }
  try {
    out.text = ResultText(r.value);
    out.ok = true;
  } catch (const VbError& e) {
    const std::string_view what = e.what();
    out.error = {e.number(), what.empty() ? ErrorDescription(e.number()) : std::string(what),
                 FirstNonBlankColumn(expression)};
  } catch (const DbError& e) {
    out.error = {kDatabaseError, ErrorDescription(kDatabaseError) + ": " + e.what(),
                 FirstNonBlankColumn(expression)};
  } catch (...) {
    out.error = {5, ErrorDescription(5), FirstNonBlankColumn(expression)};
  }
  return out;
}

}  // namespace

std::string ResultText(const Variant& value) {
  Variant v = value;
  for (int i = 0; v.IsObject(); ++i) {
    if (!v.AsObject()) throw VbError(91);
    if (i == 8) throw VbError(438);
    const std::shared_ptr<Object> obj = v.AsObject();
    v = obj->Invoke("", {});
  }
  switch (KindOf(v)) {
    case kByte:
    case kInt:
    case kLong:
    case kSingle:
    case kDouble:
    case kCur:
      return ToText(v, vb::Locale::Invariant());
    default:
      return ToText(v, vb::Locale::Spanish());
  }
}

HostResult EvaluateScript(Connection* connection, std::string_view expression,
                          bool expose_connection, const HostOptions& options) {
  try {
    if (vb::ParseNumber(expression).has_value()) {
      HostResult out;
      out.ok = true;
      out.text = std::string(expression);
      return out;
    }
    HostResult first = Attempt(connection, expression, expose_connection, options);
    if (first.ok || expression.find(',') == std::string_view::npos) return first;
    std::string dotted(expression);
    std::replace(dotted.begin(), dotted.end(), ',', '.');
    HostResult second = Attempt(connection, dotted, expose_connection, options);
    if (!second.ok) return first;
    if (!IsCompileError(first.error.number)) second.first_error = std::move(first.error);
    return second;
  } catch (...) {
    HostResult out;
    out.error = {7, ErrorDescription(7), 0};
    return out;
  }
}

std::string EvaluateScript(Connection* connection, std::string_view expression,
                           bool expose_connection, std::string& error_text, int& error_column,
                           const HostOptions& options) {
  HostResult r = EvaluateScript(connection, expression, expose_connection, options);
  if (r.ok) {
    error_text.clear();
    error_column = 0;
    return std::move(r.text);
  }
  error_text = std::move(r.error.description);
  error_column = r.error.column;
  return {};
}

}  // namespace kivmovfrec::script
