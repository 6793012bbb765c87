// The compiled form of an expression: a postfix program for a value stack. Internal to the
// script engine.
//
// Literals and names refer back into the source text by offset, so compiling copies nothing.
// Small programs live inline (no heap allocation); only long texts spill to the heap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kivmovfrec::script {

enum class OpCode : uint8_t {
  PushEmpty,
  PushNull,
  PushNothing,
  PushBool,     // ival: 0 or -1
  PushInt16,    // ival
  PushLong,     // ival
  PushDouble,   // num
  PushDate,     // num
  PushString,   // a, b: offset and length of the text between the quotes; flags: doubled quotes
  PushConst,    // a: intrinsic constant index
  LoadName,     // a, b: the name
  CallBuiltin,  // a: builtin index; argc; flags & kParens when written with parentheses
  CallName,     // a, b: the name; argc
  Member,       // a, b: the member name; argc; flags & kParens
  CallDefault,  // argc: `(args)` applied to the value below the arguments
  Neg,
  Not,
  Pow,
  Mul,
  Div,
  IntDiv,
  Mod,
  Add,
  Sub,
  Concat,
  Eq,
  Ne,
  Lt,
  Gt,
  Le,
  Ge,
  Is,
  And,
  Or,
  Xor,
  Eqv,
  Imp,
};

inline constexpr uint8_t kParens = 1;
inline constexpr uint8_t kEscaped = 2;

struct Op {
  OpCode code;
  uint8_t flags;
  uint16_t argc;
  uint32_t a;
  uint32_t b;
  int32_t ival;
  double num;
};

// A vector of trivially copyable elements with inline room for N of them.
template <class T, size_t N>
class SmallVec {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  SmallVec() = default;
  SmallVec(const SmallVec&) = delete;
  SmallVec& operator=(const SmallVec&) = delete;

  void push_back(const T& v) {
    if (size_ < N) {
      std::memcpy(inline_ + size_ * sizeof(T), &v, sizeof(T));
    } else {
      if (size_ == N) heap_.assign(begin_inline(), begin_inline() + N);
      heap_.push_back(v);
    }
    ++size_;
  }
  size_t size() const { return size_; }
  const T* data() const { return size_ <= N ? begin_inline() : heap_.data(); }
  const T& operator[](size_t i) const { return data()[i]; }

 private:
  const T* begin_inline() const { return reinterpret_cast<const T*>(inline_); }

  alignas(T) unsigned char inline_[N * sizeof(T)];
  std::vector<T> heap_;
  size_t size_ = 0;
};

struct Program {
  SmallVec<Op, 48> ops;
  uint32_t max_stack = 0;  // deepest the value stack gets
};

// A compile error: VBScript error number and the byte offset it points at.
struct CompileError {
  int number;
  uint32_t pos;
};

// Compiles `src` into `out`. Throws CompileError. Nesting deeper than max_depth -> 28.
void Compile(std::string_view src, int max_depth, Program& out);

}  // namespace kivmovfrec::script
