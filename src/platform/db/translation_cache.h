// What a connection derives from a statement's text before running it, kept per text.
//
// The component runs the same few hundred statement texts over and over (a posting repeats
// the same inserts for every line, a formula the same query), and translating a text into the
// engine's dialect, counting its placeholders and recognising its shape depend on the text and
// the engine alone. Each adapter gives its own way of deriving them; the cache runs it once
// per text and keeps the answer for the most recently used texts. Internal to the database
// layer.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/db/bounded_cache.h"
#include "platform/db/dialect.h"

namespace kivmovfrec::sql {

struct TranslatedSql {
  std::string run;  // the statement as the engine runs it
  // A second form of `run` the adapter needs, or empty: PostgreSQL's has the placeholders
  // numbered ($1...), SQLite's the rowid in front of the columns of `Select * from T`.
  std::string alternate;
  size_t placeholders = 0;  // `?` marks in `run`
  std::string leading;      // LeadingKeyword(run)
  bool query = false;       // a query (SELECT, WITH or VALUES first, maybe in parentheses)
  std::optional<SingleTableSelect> single_table;  // `Select * from T ...`, for updatable sets

  // DbError (CheckPlaceholders' message) unless the statement has exactly `values` marks.
  void CheckPlaceholders(size_t values) const;
};

class TranslationCache {
 public:
  // Derives everything for one text; throws DbError for text that cannot be translated (such
  // text is not kept: each use throws anew).
  using Translator = TranslatedSql (*)(std::string_view sql);

  explicit TranslationCache(Translator translate, size_t capacity = 256)
      : translate_(translate), cache_(capacity) {}

  // The translation of `sql`, derived now or kept from an earlier call.
  std::shared_ptr<const TranslatedSql> Get(std::string_view sql);

 private:
  Translator translate_;
  BoundedCache<std::shared_ptr<const TranslatedSql>> cache_;
};

// What every engine derives from a statement already translated into its dialect (`run`);
// `alternate` is left empty.
TranslatedSql Derive(std::string run);

}  // namespace kivmovfrec::sql
