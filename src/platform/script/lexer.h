// Tokenizer for VBScript expressions. Internal to the script engine.
//
// Works on the source text in place: tokens carry byte offsets into it, never copies. Numbers,
// &H/&O literals and #date# literals are converted while scanning; a malformed token comes back
// as Tok::Error carrying the compile error number (1031 invalid number, 1032 invalid character,
// 1033 unterminated string, 1002 bad date literal) at the token's start.
//
// A line break, ':' or a comment (') ends the statement and is reported as Tok::End at its
// offset; the end of the text is Tok::End at offset size().
#pragma once

#include <cstdint>
#include <string_view>

namespace kivmovfrec::script {

enum class Tok : uint8_t {
  End,
  Error,
  // literals
  Int16,
  Long,
  Double,
  String,
  Date,
  Name,
  True,
  False,
  Empty,
  Null,
  Nothing,
  // word operators
  Not,
  And,
  Or,
  Xor,
  Eqv,
  Imp,
  Mod,
  Is,
  // punctuation
  LParen,
  RParen,
  Comma,
  Dot,
  Plus,
  Minus,
  Star,
  Slash,
  Backslash,
  Caret,
  Amp,
  Eq,
  Ne,
  Lt,
  Gt,
  Le,
  Ge,
};

struct Token {
  Tok kind = Tok::End;
  bool escaped = false;  // String: holds doubled quotes to undo
  uint32_t pos = 0;      // byte offset where the token starts
  // String: the text between the quotes; Name: the name (without [ ] when bracketed).
  uint32_t start = 0;
  uint32_t len = 0;
  int32_t ival = 0;  // Int16, Long; Error: the error number
  double num = 0.0;  // Double; Date: the serial
};

class Lexer {
 public:
  explicit Lexer(std::string_view src) : src_(src) {}

  // The next token after blanks and line continuations.
  Token Next();
  // After '.': a member name, keywords allowed (`rs.EOF`, `x.Close`). Tok::Error (1002) when no
  // name follows at once.
  Token NextMemberName();
  // Skips blanks, line breaks, ':' and comments before the first token.
  void SkipLeadingBreaks();
  // True when nothing but blanks, line breaks, ':' and comments remains from `pos`; otherwise
  // `*where` receives the offset of the first thing that does.
  bool OnlyBlanksFrom(uint32_t pos, uint32_t* where) const;

  std::string_view source() const { return src_; }

 private:
  void SkipBlanks();
  Token Number(uint32_t start);
  Token Radix(uint32_t start, int base);
  Token StringLiteral(uint32_t start);
  Token DateLiteral(uint32_t start);
  Token Word(uint32_t start);
  static Token Fail(int number, uint32_t pos);

  std::string_view src_;
  uint32_t i_ = 0;
};

}  // namespace kivmovfrec::script
