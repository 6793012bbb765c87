#include "platform/db/translation_cache.h"

#include "platform/db/sql_tokens.h"

namespace kivmovfrec::sql {

void TranslatedSql::CheckPlaceholders(size_t values) const {
  if (placeholders != values) sql::CheckPlaceholders(run, values);
}

std::shared_ptr<const TranslatedSql> TranslationCache::Get(std::string_view sql) {
  if (auto* known = cache_.Find(sql)) return *known;
  auto made = std::make_shared<const TranslatedSql>(translate_(sql));
  cache_.Insert(std::string(sql), made);
  return made;
}

TranslatedSql Derive(std::string run) {
  TranslatedSql out;
  out.placeholders = CountPlaceholders(run);
  out.leading = LeadingKeyword(run);
  const auto list = Tokenize(run);
  for (const auto& t : list.tokens) {
    if (IsSymbol(t, "(")) continue;
    out.query = IsKeyword(t, "SELECT") || IsKeyword(t, "WITH") || IsKeyword(t, "VALUES");
    break;
  }
  out.single_table = MatchSingleTableSelect(run);
  out.run = std::move(run);
  return out;
}

}  // namespace kivmovfrec::sql
