#include "platform/script/engine.h"

#include <array>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "kivmovfrec/db.h"
#include "platform/script/builtins.h"
#include "platform/script/coerce.h"
#include "platform/script/names.h"
#include "platform/script/operators.h"
#include "platform/script/program.h"

namespace kivmovfrec::script {

namespace {

// Longest text Eval accepts; offsets in the compiled program are 32-bit.
constexpr size_t kMaxSourceBytes = size_t{16} << 20;
// Objects whose default member yields another object are followed this many times.
constexpr int kMaxDefaultChain = 8;
constexpr size_t kInlineStack = 16;

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
  }
  return true;
}

// Character (code point) offset of byte offset `pos` in UTF-8 text.
int CharColumn(std::string_view text, size_t pos) {
  int column = 0;
  for (size_t i = 0; i < pos && i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) ++column;
  }
  return column;
}

size_t FirstNonBlank(std::string_view text) {
  size_t i = 0;
  while (i < text.size() &&
         (text[i] == ' ' || text[i] == '\t' || text[i] == '\r' || text[i] == '\n')) {
    ++i;
  }
  return i;
}

std::string Unescape(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    out += s[i];
    if (s[i] == '"') ++i;  // "" stands for one quote
  }
  return out;
}

// Runs a compiled program. One per Eval.
class Machine {
 public:
  Machine(const Options& options, const std::vector<Engine::NamedObject>& objects,
          std::string_view src)
      : objects_(objects), src_(src), loc_(*options.locale), cx_{*options.locale, options.clock} {}

  Variant Run(const Program& prog) {
    Variant* base = inline_.data();
    if (prog.max_stack > kInlineStack) {
      heap_.resize(prog.max_stack);
      base = heap_.data();
    }
    Variant* sp = base;
    const Op* ops = prog.ops.data();
    const size_t count = prog.ops.size();
    for (size_t pc = 0; pc < count; ++pc) {
      const Op& op = ops[pc];
      switch (op.code) {
        case OpCode::PushEmpty:
          *sp++ = Variant();
          break;
        case OpCode::PushNull:
          *sp++ = Variant::Null();
          break;
        case OpCode::PushNothing:
          *sp++ = Variant(std::shared_ptr<Object>());
          break;
        case OpCode::PushBool:
          *sp++ = Variant(op.ival != 0);
          break;
        case OpCode::PushInt16:
          *sp++ = Variant(static_cast<int16_t>(op.ival));
          break;
        case OpCode::PushLong:
          *sp++ = Variant(op.ival);
          break;
        case OpCode::PushDouble:
          *sp++ = Variant(op.num);
          break;
        case OpCode::PushDate:
          *sp++ = Variant(Date{op.num});
          break;
        case OpCode::PushString: {
          const std::string_view text = src_.substr(op.a, op.b);
          *sp++ = (op.flags & kEscaped) ? Variant(Unescape(text)) : Variant(text);
          break;
        }
        case OpCode::PushConst:
          *sp++ = ConstantValue(static_cast<uint16_t>(op.a));
          break;
        case OpCode::LoadName:
          *sp++ = LoadName(src_.substr(op.a, op.b));
          break;
        case OpCode::CallBuiltin: {
          sp -= op.argc;
          Variant r = CallBuiltin(op, std::span<Variant>(sp, op.argc));
          *sp++ = std::move(r);
          break;
        }
        case OpCode::CallName: {
          sp -= op.argc;
          Variant r = CallName(src_.substr(op.a, op.b), std::span<const Variant>(sp, op.argc));
          *sp++ = std::move(r);
          break;
        }
        case OpCode::Member:
        case OpCode::CallDefault: {
          sp -= op.argc;
          const std::string_view member =
              op.code == OpCode::Member ? src_.substr(op.a, op.b) : std::string_view();
          Variant r = CallMember(sp[-1], member, std::span<const Variant>(sp, op.argc));
          sp[-1] = std::move(r);
          break;
        }
        case OpCode::Neg:
          Deref(sp[-1]);
          ApplyNegate(sp[-1], loc_);
          break;
        case OpCode::Not:
          Deref(sp[-1]);
          ApplyNot(sp[-1], loc_);
          break;
        case OpCode::Is: {
          if (!sp[-2].IsObject() || !sp[-1].IsObject()) throw VbError(424);
          const bool same = sp[-2].AsObject() == sp[-1].AsObject();
          sp[-2] = Variant(same);
          --sp;
          break;
        }
        default:
          Deref(sp[-2]);
          Deref(sp[-1]);
          ApplyBinary(op.code, sp[-2], sp[-1], loc_);
          --sp;
          break;
      }
    }
    return count == 0 ? Variant() : std::move(base[0]);
  }

 private:
  // Replaces an object by its default value.
  static void Deref(Variant& v) {
    for (int i = 0; v.IsObject(); ++i) {
      const std::shared_ptr<Object> obj = v.AsObject();
      if (!obj) throw VbError(91);
      if (i == kMaxDefaultChain) throw VbError(438);
      v = obj->Invoke("", {});
    }
  }

  Variant LoadName(std::string_view name) {
    for (const auto& o : objects_) {
      if (SameName(o.name, name)) return Variant(o.object);
    }
    for (const auto& o : objects_) {
      if (!o.members_global || !o.object) continue;
      try {
        return o.object->Invoke(name, {});
      } catch (const VbError& e) {
        if (e.number() != 438) throw;
      }
    }
    return Variant();  // an unknown name is an uninitialised variable
  }

  Variant CallName(std::string_view name, std::span<const Variant> args) {
    for (const auto& o : objects_) {
      if (SameName(o.name, name)) {
        if (!o.object) throw VbError(91);
        return o.object->Invoke("", args);
      }
    }
    for (const auto& o : objects_) {
      if (!o.members_global || !o.object) continue;
      try {
        return o.object->Invoke(name, args);
      } catch (const VbError& e) {
        if (e.number() != 438) throw;
      }
    }
    throw VbError(13, ErrorDescription(13) + ": '" + std::string(name) + "'");
  }

  Variant CallMember(const Variant& target, std::string_view member,
                     std::span<const Variant> args) {
    if (!target.IsObject()) throw VbError(member.empty() ? 13 : 424);
    const std::shared_ptr<Object>& obj = target.AsObject();
    if (!obj) throw VbError(91);
    return obj->Invoke(member, args);
  }

  Variant CallBuiltin(const Op& op, std::span<Variant> args) {
    const Builtin& b = BuiltinTable()[op.a];
    if (args.size() < b.min_args || args.size() > b.max_args) throw VbError(450);
    if (!(b.flags & kRawArgs)) {
      for (Variant& v : args) Deref(v);
    }
    return b.fn(args, cx_);
  }

  const std::vector<Engine::NamedObject>& objects_;
  std::string_view src_;
  const vb::Locale& loc_;
  CallContext cx_;
  std::array<Variant, kInlineStack> inline_;
  std::vector<Variant> heap_;
};

EvalResult Failure(int number, std::string description, int column) {
  EvalResult r;
  r.ok = false;
  r.error = ScriptError{number, std::move(description), column};
  return r;
}

}  // namespace

bool IsCompileError(int number) {
  return number == 28 || (number >= 1001 && number <= 1099);
}

std::string ErrorDescription(int number) {
  switch (number) {
    case 7:
      return "Memoria insuficiente";
    case 91:
      return "Variable de objeto o bloque With no establecido";
    case 3021:
      return "No hay registro actual";
    case 3265:
      return "No se encontró el elemento en la colección";
    case kDatabaseError:
      return "Error de la base de datos";
    default:
      break;
  }
  std::string text = VbErrorDescription(number);
  if (text.empty()) text = "Error " + std::to_string(number);
  return text;
}

Engine::Engine(Options options) : options_(std::move(options)) {
  if (!options_.locale) options_.locale = &vb::Locale::Spanish();
  if (options_.max_depth < 1) options_.max_depth = 1;
}

void Engine::AddObject(std::string name, std::shared_ptr<Object> obj, bool members_global) {
  for (auto& o : objects_) {
    if (SameName(o.name, name)) {
      o.object = std::move(obj);
      o.members_global = members_global;
      return;
    }
  }
  objects_.push_back(NamedObject{std::move(name), std::move(obj), members_global});
}

EvalResult Engine::Eval(std::string_view text) const {
  const int runtime_column = CharColumn(text, FirstNonBlank(text));
  try {
    if (text.size() > kMaxSourceBytes) return Failure(7, ErrorDescription(7), 0);
    Program prog;
    try {
      Compile(text, options_.max_depth, prog);
    } catch (const CompileError& e) {
      return Failure(e.number, ErrorDescription(e.number), CharColumn(text, e.pos));
    }
    Machine machine(options_, objects_, text);
    EvalResult r;
    r.value = machine.Run(prog);
    r.ok = true;
    return r;
  } catch (const VbError& e) {
    const std::string_view what = e.what();
    return Failure(e.number(), what.empty() ? ErrorDescription(e.number()) : std::string(what),
                   runtime_column);
  } catch (const DbError& e) {
    // The adapters' messages already open with the generic description; others get it.
    const std::string generic = ErrorDescription(kDatabaseError);
    const std::string_view what = e.what();
    return Failure(
        kDatabaseError,
        what.starts_with(generic) ? std::string(what) : generic + ": " + std::string(what),
        runtime_column);
  } catch (const std::bad_alloc&) {
    return Failure(7, ErrorDescription(7), runtime_column);
  } catch (const std::exception& e) {
    return Failure(5, ErrorDescription(5) + ": " + e.what(), runtime_column);
  } catch (...) {
    return Failure(5, ErrorDescription(5), runtime_column);
  }
}

}  // namespace kivmovfrec::script
