// The part of a result set that both adapters share. Every row is read when the set opens and
// kept in memory, so reading, moving, column lookup, AddNew / Edit / Set and the bookkeeping of
// Update and Delete are the same on every engine and live here. Writing a row back to its
// table is the adapter's: it gets the pending values and the position of the row, and gives
// back the row as the table stores it. Internal to the database layer.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"

namespace kivmovfrec::sql {

// The table behind an updatable set: its name as written in the statement (for messages) and
// its columns as declared, in table order (the order of `Select *`).
struct TableColumns {
  std::string table;
  std::vector<std::string> columns;
};

class MaterialisedResultset : public Resultset {
 public:
  bool Eof() const override;
  // Moving abandons an unfinished AddNew / Edit and steps over deleted rows.
  void MoveNext() override;
  int ColumnCount() const override;
  std::string ColumnName(int index) const override;
  bool HasColumn(std::string_view name) const override;
  // During AddNew / Edit these read the pending values.
  Variant Get(int index) const override;
  Variant Get(std::string_view name) const override;
  void AddNew() override;
  void Edit() override;
  void Set(std::string_view name, const Variant& value) override;
  // Writes the pending row through WriteRow and keeps the row it returns in its place (a new
  // row goes last and becomes the current one). When WriteRow throws, the rows and the pending
  // values stay as they were.
  void Update() override;
  // Deletes the current row through DeleteRow, then marks it deleted.
  void Delete() override;
  // Drops the rows; every later call but Close throws DbError. Adapters extend it to release
  // their engine handle.
  void Close() override;

 protected:
  // `columns`: the result's column names, as the reader sees them. The set starts read only.
  explicit MaterialisedResultset(std::vector<std::string> columns);

  // Makes the set updatable through `target`. A target whose column count differs from the
  // result's (not `Select *` of that table) leaves the set read only; returns whether it took.
  bool SetWriteTarget(TableColumns target);
  bool writable() const { return target_.has_value(); }
  // Valid only when writable().
  const TableColumns& target() const { return *target_; }

  // Appends a row read from the engine (values in result column order).
  void AddRow(std::vector<Variant> values);

  // Writes the pending values to the table: a new row when `row` is empty (AddNew), else row
  // `*row` of the set (Edit). `assigned[i]` tells whether column i was given a value since. The
  // adapter keeps its own identity of the row (rowid, key) in step, and returns the row as
  // stored (defaults, conversions and triggers applied). Throws DbError.
  virtual std::vector<Variant> WriteRow(std::optional<size_t> row,
                                        const std::vector<Variant>& values,
                                        const std::vector<bool>& assigned) = 0;
  // Deletes row `row` of the set from the table. Throws DbError.
  virtual void DeleteRow(size_t row) = 0;

 private:
  enum class EditMode { None, AddNew, Edit };
  struct Row {
    std::vector<Variant> values;
    bool deleted = false;
  };

  void CheckOpen() const;
  void CheckWritable() const;
  // The current row's position; DbError `what` when there is none (end, deleted).
  size_t CurrentRow(const char* what) const;
  size_t CheckIndex(int index) const;
  std::optional<size_t> Find(std::string_view name) const;
  size_t TableColumn(std::string_view name) const;
  // The values read now: the pending ones during AddNew / Edit, else the current row's.
  const std::vector<Variant>& Current() const;

  // Where to look first for a column name: callers ask for the columns of each row in the
  // same order, so the positions found for one row, in the order asked, are remembered and
  // tried first for the next (MoveNext, AddNew and Edit start the sequence again). Of equal
  // names, the first column is the one found.
  struct Guess {
    std::vector<size_t> order;  // positions found, in the order asked
    size_t next = 0;            // the entry of `order` to try for the next name
  };
  static std::optional<size_t> Find(const std::vector<std::string>& names, Guess& guess,
                                    std::string_view name);

  std::vector<std::string> columns_;
  mutable Guess column_guess_;  // for columns_
  mutable Guess table_guess_;   // for target_->columns
  std::optional<TableColumns> target_;
  std::vector<Row> rows_;
  size_t pos_ = 0;
  bool closed_ = false;
  EditMode mode_ = EditMode::None;
  std::vector<Variant> buffer_;
  std::vector<bool> assigned_;
};

}  // namespace kivmovfrec::sql
