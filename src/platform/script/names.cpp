#include "platform/script/names.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "platform/script/builtins.h"

namespace kivmovfrec::script {

namespace {

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// `word` equals the lower-case `lower` without regard to case.
bool Is(std::string_view word, std::string_view lower) {
  if (word.size() != lower.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    if (Lower(word[i]) != lower[i]) return false;
  }
  return true;
}

struct Constant {
  std::string_view name;
  Variant value;
};

const std::vector<Constant>& Constants() {
  static const std::vector<Constant> table = [] {
    std::vector<Constant> t;
    auto add_long = [&](std::string_view n, int32_t v) { t.push_back({n, Variant(v)}); };
    auto add_text = [&](std::string_view n, std::string v) { t.push_back({n, Variant(v)}); };
    add_text("vbcr", "\r");
    add_text("vblf", "\n");
    add_text("vbcrlf", "\r\n");
    add_text("vbnewline", "\r\n");
    add_text("vbtab", "\t");
    add_text("vbnullstring", "");
    add_text("vbnullchar", std::string(1, '\0'));
    add_text("vbback", "\b");
    add_text("vbformfeed", "\f");
    add_text("vbverticaltab", "\v");
    add_long("vbtrue", -1);
    add_long("vbfalse", 0);
    add_long("vbusedefault", -2);
    add_long("vbbinarycompare", 0);
    add_long("vbtextcompare", 1);
    add_long("vbusesystemdayofweek", 0);
    add_long("vbsunday", 1);
    add_long("vbmonday", 2);
    add_long("vbtuesday", 3);
    add_long("vbwednesday", 4);
    add_long("vbthursday", 5);
    add_long("vbfriday", 6);
    add_long("vbsaturday", 7);
    add_long("vbusesystem", 0);
    add_long("vbfirstjan1", 1);
    add_long("vbfirstfourdays", 2);
    add_long("vbfirstfullweek", 3);
    add_long("vbgeneraldate", 0);
    add_long("vblongdate", 1);
    add_long("vbshortdate", 2);
    add_long("vblongtime", 3);
    add_long("vbshorttime", 4);
    add_long("vbempty", 0);
    add_long("vbnull", 1);
    add_long("vbinteger", 2);
    add_long("vblong", 3);
    add_long("vbsingle", 4);
    add_long("vbdouble", 5);
    add_long("vbcurrency", 6);
    add_long("vbdate", 7);
    add_long("vbstring", 8);
    add_long("vbobject", 9);
    add_long("vberror", 10);
    add_long("vbboolean", 11);
    add_long("vbvariant", 12);
    add_long("vbdataobject", 13);
    add_long("vbdecimal", 14);
    add_long("vbbyte", 17);
    add_long("vbarray", 8192);
    add_long("vbobjecterror", -2147221504);
    return t;
  }();
  return table;
}

struct Entry {
  std::string key;  // lower case
  NameInfo info;
};

const std::vector<Entry>& Index() {
  static const std::vector<Entry> index = [] {
    std::vector<Entry> e;
    const auto builtins = BuiltinTable();
    for (size_t i = 0; i < builtins.size(); ++i) {
      std::string key(builtins[i].name);
      for (char& c : key) c = Lower(c);
      e.push_back({key, {NameKind::Builtin, static_cast<uint16_t>(i)}});
    }
    const auto& constants = Constants();
    for (size_t i = 0; i < constants.size(); ++i) {
      e.push_back({std::string(constants[i].name), {NameKind::Constant, static_cast<uint16_t>(i)}});
    }
    std::sort(e.begin(), e.end(), [](const Entry& a, const Entry& b) { return a.key < b.key; });
    return e;
  }();
  return index;
}

}  // namespace

Tok KeywordToken(std::string_view w) {
  switch (w.size()) {
    case 2:
      if (Is(w, "or")) return Tok::Or;
      if (Is(w, "is")) return Tok::Is;
      break;
    case 3:
      if (Is(w, "not")) return Tok::Not;
      if (Is(w, "and")) return Tok::And;
      if (Is(w, "mod")) return Tok::Mod;
      if (Is(w, "xor")) return Tok::Xor;
      if (Is(w, "eqv")) return Tok::Eqv;
      if (Is(w, "imp")) return Tok::Imp;
      break;
    case 4:
      if (Is(w, "true")) return Tok::True;
      if (Is(w, "null")) return Tok::Null;
      break;
    case 5:
      if (Is(w, "false")) return Tok::False;
      if (Is(w, "empty")) return Tok::Empty;
      break;
    case 7:
      if (Is(w, "nothing")) return Tok::Nothing;
      break;
    default:
      break;
  }
  return Tok::Name;
}

NameInfo LookupName(std::string_view name) {
  std::array<char, 32> buf;
  if (name.size() > buf.size()) return {};
  for (size_t i = 0; i < name.size(); ++i) buf[i] = Lower(name[i]);
  const std::string_view key(buf.data(), name.size());
  const auto& index = Index();
  auto it = std::lower_bound(index.begin(), index.end(), key,
                             [](const Entry& e, std::string_view k) { return e.key < k; });
  if (it == index.end() || it->key != key) return {};
  return it->info;
}

const Variant& ConstantValue(uint16_t index) {
  return Constants()[index].value;
}

}  // namespace kivmovfrec::script
