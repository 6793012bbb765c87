// The members of Connection that have a default, for connections that forward their statements
// to another: reading a limited number of rows through OpenReadOnly, and running several
// statements through Execute.
#include <memory>
#include <string>
#include <vector>

#include "kivmovfrec/db.h"
#include "platform/db/materialised_resultset.h"

namespace kivmovfrec {

namespace {

// Rows copied out of another set; never updatable.
class KeptRows final : public sql::MaterialisedResultset {
 public:
  explicit KeptRows(std::vector<std::string> columns) : MaterialisedResultset(std::move(columns)) {}
  using MaterialisedResultset::AddRow;

 protected:
  std::vector<Variant> WriteRow(std::optional<size_t>, const std::vector<Variant>&,
                                const std::vector<bool>&) override {
    throw DbError("Este conjunto de resultados es de solo lectura");
  }
  void DeleteRow(size_t) override {
    throw DbError("Este conjunto de resultados es de solo lectura");
  }
};

}  // namespace

std::unique_ptr<Resultset> Connection::OpenReadOnlyRows(std::string_view sql, size_t max_rows,
                                                        bool* more) {
  auto all = OpenReadOnly(sql);
  std::vector<std::string> columns;
  for (int i = 0; i < all->ColumnCount(); ++i) columns.push_back(all->ColumnName(i));
  auto kept = std::make_unique<KeptRows>(std::move(columns));
  size_t n = 0;
  for (; !all->Eof() && n < max_rows; all->MoveNext(), ++n) {
    std::vector<Variant> row;
    for (int i = 0; i < all->ColumnCount(); ++i) row.push_back(all->Get(i));
    kept->AddRow(std::move(row));
  }
  if (more) *more = !all->Eof();
  return kept;
}

std::vector<int64_t> Connection::ExecuteAll(const std::vector<DbStatement>& statements) {
  std::vector<int64_t> changed;
  changed.reserve(statements.size());
  const bool own = !InTransaction();
  if (own) BeginTrans();
  try {
    for (const DbStatement& s : statements) changed.push_back(Execute(s.sql, s.params));
    if (own) CommitTrans();
  } catch (...) {
    if (own && InTransaction()) {
      try {
        RollbackTrans();
      } catch (const DbError&) {
        // The statement's own error says more.
      }
    }
    throw;
  }
  return changed;
}

}  // namespace kivmovfrec
