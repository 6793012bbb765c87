// Every SQL text the component sends, as it builds it, with sample values filled in, and what
// the demo data makes it return. Used to prove that the suite tables and the demo company
// answer each of them.
#pragma once

#include <string>
#include <vector>

namespace kivmovfrec::testing {

enum class CorpusKind {
  kSelect,    // opened with OpenResultset and read to the end
  kReadOnly,  // text of a [query] block: opened with OpenReadOnly
  kWrite,     // run with Execute inside a transaction that is rolled back
};

struct CorpusEntry {
  std::string name;  // test name: letters, digits and '_'
  std::string sql;
  CorpusKind kind = CorpusKind::kSelect;
  int rows = -1;  // rows returned (or changed) against the demo data; -1 = not checked
};

const std::vector<CorpusEntry>& SqlCorpus();

}  // namespace kivmovfrec::testing
