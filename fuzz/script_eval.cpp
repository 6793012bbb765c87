// libFuzzer target for the script engine: any byte string must evaluate or fail with a described
// error at a column inside the text, never crash, hang or throw. Also runs the script host
// (numeric short-cut, decimal-comma retry, result text) without a connection.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "platform/script/engine.h"
#include "platform/script/script_host.h"

namespace {

using kivmovfrec::Object;
using kivmovfrec::Variant;

// An object with a few members so member calls and default members are exercised too.
class Probe : public Object {
 public:
  std::string TypeName() const override { return "Probe"; }
  Variant Invoke(std::string_view name, std::span<const Variant> args) override {
    if (name.empty()) {
      return args.empty() ? Variant(int16_t{7}) : args[0];
    }
    if (name.size() == 4 && (name[0] | 0x20) == 's') return Variant(std::make_shared<Probe>());
    if (name.size() == 5) return Variant(static_cast<int32_t>(args.size()));
    throw kivmovfrec::VbError(438);
  }
};

void Check(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  kivmovfrec::script::Options options;
  options.clock = [] { return kivmovfrec::Date{38566.4375}; };
  kivmovfrec::script::Engine engine(options);
  engine.AddObject("o", std::make_shared<Probe>(), true);
  const auto r = engine.Eval(text);
  if (r.ok) {
    try {
      (void)kivmovfrec::script::ResultText(r.value);
    } catch (const kivmovfrec::VbError&) {
    }
  } else {
    Check(r.error.number != 0);
    Check(!r.error.description.empty());
    Check(r.error.column >= 0 && static_cast<size_t>(r.error.column) <= size);
  }
  const auto h = kivmovfrec::script::EvaluateScript(nullptr, text, false);
  Check(h.ok || !h.error.description.empty());
  return 0;
}
