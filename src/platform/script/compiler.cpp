// Precedence-climbing compiler from VBScript expression text to a postfix Program.
//
// Binding strength, weakest first: Imp, Eqv, Xor, Or, And, Not (prefix), comparisons and Is,
// &, + -, Mod, \, * /, ^, unary - +, then postfix member access and calls. Binary operators are
// left-associative. Unary minus binds tighter than ^ (-3^2 = 9) and Not takes a whole comparison
// as its operand (Not a = b is Not (a = b)).
#include <limits>

#include "platform/script/lexer.h"
#include "platform/script/names.h"
#include "platform/script/program.h"

namespace kivmovfrec::script {

namespace {

constexpr int kPrecNot = 6;
constexpr int kPrecUnary = 14;
constexpr uint32_t kMaxArgs = std::numeric_limits<uint16_t>::max();

int BinaryPrecedence(Tok t) {
  switch (t) {
    case Tok::Imp:
      return 1;
    case Tok::Eqv:
      return 2;
    case Tok::Xor:
      return 3;
    case Tok::Or:
      return 4;
    case Tok::And:
      return 5;
    case Tok::Eq:
    case Tok::Ne:
    case Tok::Lt:
    case Tok::Gt:
    case Tok::Le:
    case Tok::Ge:
    case Tok::Is:
      return 7;
    case Tok::Amp:
      return 8;
    case Tok::Plus:
    case Tok::Minus:
      return 9;
    case Tok::Mod:
      return 10;
    case Tok::Backslash:
      return 11;
    case Tok::Star:
    case Tok::Slash:
      return 12;
    case Tok::Caret:
      return 13;
    default:
      return 0;
  }
}

OpCode BinaryOp(Tok t) {
  switch (t) {
    case Tok::Imp:
      return OpCode::Imp;
    case Tok::Eqv:
      return OpCode::Eqv;
    case Tok::Xor:
      return OpCode::Xor;
    case Tok::Or:
      return OpCode::Or;
    case Tok::And:
      return OpCode::And;
    case Tok::Eq:
      return OpCode::Eq;
    case Tok::Ne:
      return OpCode::Ne;
    case Tok::Lt:
      return OpCode::Lt;
    case Tok::Gt:
      return OpCode::Gt;
    case Tok::Le:
      return OpCode::Le;
    case Tok::Ge:
      return OpCode::Ge;
    case Tok::Is:
      return OpCode::Is;
    case Tok::Amp:
      return OpCode::Concat;
    case Tok::Plus:
      return OpCode::Add;
    case Tok::Minus:
      return OpCode::Sub;
    case Tok::Mod:
      return OpCode::Mod;
    case Tok::Backslash:
      return OpCode::IntDiv;
    case Tok::Star:
      return OpCode::Mul;
    case Tok::Slash:
      return OpCode::Div;
    default:
      return OpCode::Pow;
  }
}

class Compiler {
 public:
  Compiler(std::string_view src, int max_depth, Program& out)
      : lex_(src), max_depth_(max_depth), out_(out) {}

  void Run() {
    lex_.SkipLeadingBreaks();
    Advance();
    if (tok_.kind != Tok::End) Expression(1);
    if (tok_.kind != Tok::End) throw CompileError{1025, tok_.pos};
    uint32_t where = 0;
    if (!lex_.OnlyBlanksFrom(tok_.pos, &where)) throw CompileError{1025, where};
    out_.max_stack = max_stack_;
  }

 private:
  void Advance() {
    tok_ = lex_.Next();
    if (tok_.kind == Tok::Error) throw CompileError{tok_.ival, tok_.pos};
  }

  void Emit(OpCode code, int stack_change, uint32_t a = 0, uint32_t b = 0, int32_t ival = 0,
            double num = 0, uint16_t argc = 0, uint8_t flags = 0) {
    out_.ops.push_back(Op{code, flags, argc, a, b, ival, num});
    stack_ += stack_change;
    if (stack_ > static_cast<int>(max_stack_)) max_stack_ = static_cast<uint32_t>(stack_);
  }

  struct DepthGuard {
    explicit DepthGuard(Compiler& c) : c_(c) {
      if (++c_.depth_ > c_.max_depth_) throw CompileError{28, c_.tok_.pos};
    }
    ~DepthGuard() { --c_.depth_; }
    Compiler& c_;
  };

  void Expression(int min_prec) {
    DepthGuard guard(*this);
    switch (tok_.kind) {
      case Tok::Not:
        Advance();
        Expression(kPrecNot);
        Emit(OpCode::Not, 0);
        break;
      case Tok::Minus:
        Advance();
        Expression(kPrecUnary);
        Emit(OpCode::Neg, 0);
        break;
      case Tok::Plus:  // unary plus leaves its operand as it is
        Advance();
        Expression(kPrecUnary);
        break;
      default:
        Primary();
        break;
    }
    for (;;) {
      const int prec = BinaryPrecedence(tok_.kind);
      if (prec == 0 || prec < min_prec) return;
      const OpCode op = BinaryOp(tok_.kind);
      Advance();
      Expression(prec + 1);
      Emit(op, -1);
    }
  }

  void Primary() {
    const Token t = tok_;
    switch (t.kind) {
      case Tok::Int16:
        Emit(OpCode::PushInt16, 1, 0, 0, t.ival);
        Advance();
        return;
      case Tok::Long:
        Emit(OpCode::PushLong, 1, 0, 0, t.ival);
        Advance();
        return;
      case Tok::Double:
        Emit(OpCode::PushDouble, 1, 0, 0, 0, t.num);
        Advance();
        return;
      case Tok::Date:
        Emit(OpCode::PushDate, 1, 0, 0, 0, t.num);
        Advance();
        return;
      case Tok::String:
        Emit(OpCode::PushString, 1, t.start, t.len, 0, 0, 0, t.escaped ? kEscaped : 0);
        Advance();
        return;
      case Tok::True:
      case Tok::False:
        Emit(OpCode::PushBool, 1, 0, 0, t.kind == Tok::True ? -1 : 0);
        Advance();
        return;
      case Tok::Empty:
        Emit(OpCode::PushEmpty, 1);
        Advance();
        return;
      case Tok::Null:
        Emit(OpCode::PushNull, 1);
        Advance();
        return;
      case Tok::Nothing:
        Emit(OpCode::PushNothing, 1);
        Advance();
        return;
      case Tok::LParen:
        Advance();
        Expression(1);
        if (tok_.kind != Tok::RParen) throw CompileError{1006, tok_.pos};
        Advance();
        return;
      case Tok::Name:
        NameExpression(t);
        return;
      default:
        throw CompileError{1023, t.pos};
    }
  }

  // Parses "(args)" when the current token is "("; returns the count and whether there were
  // parentheses.
  uint16_t Arguments(bool* parens) {
    *parens = tok_.kind == Tok::LParen;
    if (!*parens) return 0;
    DepthGuard guard(*this);
    Advance();
    uint32_t argc = 0;
    if (tok_.kind == Tok::RParen) {
      Advance();
      return 0;
    }
    for (;;) {
      Expression(1);
      if (++argc > kMaxArgs) throw CompileError{28, tok_.pos};
      if (tok_.kind == Tok::Comma) {
        Advance();
        continue;
      }
      if (tok_.kind != Tok::RParen) throw CompileError{1006, tok_.pos};
      Advance();
      return static_cast<uint16_t>(argc);
    }
  }

  void NameExpression(const Token& name) {
    Advance();
    const NameInfo info = LookupName(lex_.source().substr(name.start, name.len));
    bool parens = false;
    if (info.kind == NameKind::Constant) {
      Emit(OpCode::PushConst, 1, info.index);
    } else {
      const uint16_t argc = Arguments(&parens);
      if (info.kind == NameKind::Builtin) {
        Emit(OpCode::CallBuiltin, 1 - argc, info.index, 0, 0, 0, argc, parens ? kParens : 0);
      } else if (parens) {
        Emit(OpCode::CallName, 1 - argc, name.start, name.len, 0, 0, argc, kParens);
      } else {
        Emit(OpCode::LoadName, 1, name.start, name.len);
      }
    }
    // Member access and default-member calls on the result.
    for (;;) {
      if (tok_.kind == Tok::Dot) {
        const Token member = lex_.NextMemberName();
        if (member.kind != Tok::Name) throw CompileError{member.ival, member.pos};
        Advance();
        const uint16_t argc = Arguments(&parens);
        Emit(OpCode::Member, -argc, member.start, member.len, 0, 0, argc, parens ? kParens : 0);
      } else if (tok_.kind == Tok::LParen) {
        const uint16_t argc = Arguments(&parens);
        Emit(OpCode::CallDefault, -argc, 0, 0, 0, 0, argc, kParens);
      } else {
        return;
      }
    }
  }

  Lexer lex_;
  Token tok_;
  int depth_ = 0;
  int max_depth_;
  int stack_ = 0;
  uint32_t max_stack_ = 0;
  Program& out_;
};

}  // namespace

void Compile(std::string_view src, int max_depth, Program& out) {
  Compiler(src, max_depth, out).Run();
}

}  // namespace kivmovfrec::script
