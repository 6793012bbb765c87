#include "platform/script/rdo.h"

#include <string>
#include <utility>

#include "platform/script/coerce.h"
#include "platform/script/engine.h"
#include "platform/vb/format.h"
#include "platform/vb/locale.h"
#include "platform/vb/text.h"

namespace kivmovfrec::script {

namespace {

bool Named(std::string_view member, std::string_view name) {
  return vb::EqualsIgnoreCase(member, name);
}

[[noreturn]] void NoSuchMember() {
  throw VbError(438);
}

void ExpectArgs(std::span<const Variant> args, size_t min, size_t max) {
  if (args.size() < min || args.size() > max) throw VbError(450);
}

[[noreturn]] void DatabaseError(const std::string& what) {
  throw VbError(kDatabaseError, ErrorDescription(kDatabaseError) + ": " + what);
}

// The rows of a script's query, within kMaxScriptRows.
std::unique_ptr<Resultset> OpenRows(Connection& cn, const std::string& sql) {
  bool more = false;
  auto rows = cn.OpenReadOnlyRows(sql, kMaxScriptRows, &more);
  if (more) {
    DatabaseError("la consulta devuelve más de " +
                  vb::FormatNumber(static_cast<double>(kMaxScriptRows), 0) +
                  " filas, el máximo que un script puede leer: " + sql);
  }
  return rows;
}

// What a result set and its field objects share.
struct SetState {
  std::shared_ptr<Connection> connection;
  std::unique_ptr<Resultset> rows;
  std::string sql;

  Resultset& Open() {
    if (!rows) DatabaseError("el conjunto de resultados está cerrado");
    return *rows;
  }

  // 0-based column for an index or a name.
  int Column(const Variant& key) {
    Resultset& rs = Open();
    if (key.IsNull()) throw VbError(94);
    if (key.IsString()) {
      const std::string& name = key.AsString();
      for (int i = 0; i < rs.ColumnCount(); ++i) {
        if (vb::EqualsIgnoreCase(rs.ColumnName(i), name)) return i;
      }
      throw VbError(3265, ErrorDescription(3265) + ": '" + name + "'");
    }
    const int32_t index = ToLongRounded(key, vb::Locale::Invariant());
    if (index < 0 || index >= rs.ColumnCount()) throw VbError(9);
    return index;
  }

  Variant Value(int column) {
    Resultset& rs = Open();
    if (rs.Eof()) throw VbError(3021);
    return rs.Get(column);
  }
};

class RdoColumn : public Object {
 public:
  RdoColumn(std::shared_ptr<SetState> state, int column)
      : state_(std::move(state)), column_(column) {}
  std::string TypeName() const override { return "rdoColumn"; }
  Variant Invoke(std::string_view name, std::span<const Variant> args) override {
    if (name.empty() || Named(name, "Value")) {
      ExpectArgs(args, 0, 0);
      return state_->Value(column_);
    }
    if (Named(name, "Name")) {
      ExpectArgs(args, 0, 0);
      return Variant(state_->Open().ColumnName(column_));
    }
    NoSuchMember();
  }

 private:
  std::shared_ptr<SetState> state_;
  int column_;
};

class RdoColumns : public Object {
 public:
  explicit RdoColumns(std::shared_ptr<SetState> state) : state_(std::move(state)) {}
  std::string TypeName() const override { return "rdoColumns"; }
  Variant Invoke(std::string_view name, std::span<const Variant> args) override {
    if (name.empty() || Named(name, "Item")) {
      ExpectArgs(args, 1, 1);
      return Variant(std::make_shared<RdoColumn>(state_, state_->Column(args[0])));
    }
    if (Named(name, "Count")) {
      ExpectArgs(args, 0, 0);
      return Variant(static_cast<int32_t>(state_->Open().ColumnCount()));
    }
    NoSuchMember();
  }

 private:
  std::shared_ptr<SetState> state_;
};

class RdoResultset : public Object {
 public:
  explicit RdoResultset(std::shared_ptr<SetState> state) : state_(std::move(state)) {}
  std::string TypeName() const override { return "rdoResultset"; }

  Variant Invoke(std::string_view name, std::span<const Variant> args) override {
    if (name.empty()) {
      ExpectArgs(args, 1, 1);
      return state_->Value(state_->Column(args[0]));
    }
    if (Named(name, "Fields") || Named(name, "rdoColumns")) {
      ExpectArgs(args, 0, 1);
      if (args.empty()) return Variant(std::make_shared<RdoColumns>(state_));
      return Variant(std::make_shared<RdoColumn>(state_, state_->Column(args[0])));
    }
    if (Named(name, "EOF")) {
      ExpectArgs(args, 0, 0);
      return Variant(state_->Open().Eof());
    }
    if (Named(name, "MoveNext")) {
      ExpectArgs(args, 0, 0);
      Resultset& rs = state_->Open();
      if (rs.Eof()) throw VbError(3021);
      rs.MoveNext();
      return Variant();
    }
    if (Named(name, "RowCount")) {
      ExpectArgs(args, 0, 0);
      state_->Open();
      return Variant(CountRows());
    }
    if (Named(name, "Close")) {
      ExpectArgs(args, 0, 0);
      if (state_->rows) state_->rows->Close();
      state_->rows.reset();
      return Variant();
    }
    NoSuchMember();
  }

 private:
  // All rows of the statement, counted on a second read so the current position is kept.
  int32_t CountRows() {
    auto again = OpenRows(*state_->connection, state_->sql);
    int32_t n = 0;
    for (; !again->Eof(); again->MoveNext()) ++n;
    return n;
  }

  std::shared_ptr<SetState> state_;
};

class RdoConnection : public Object {
 public:
  explicit RdoConnection(std::shared_ptr<Connection> cn) : cn_(std::move(cn)) {}
  std::string TypeName() const override { return "rdoConnection"; }

  Variant Invoke(std::string_view name, std::span<const Variant> args) override {
    if (Named(name, "OpenResultset")) {
      // OpenResultset(sql[, type[, locktype[, options]]]): the cursor arguments are accepted
      // and ignored; every set is read-only and forward-only.
      ExpectArgs(args, 1, 4);
      auto state = std::make_shared<SetState>();
      state->connection = cn_;
      state->sql = ToText(args[0], vb::Locale::Invariant());
      state->rows = OpenRows(*cn_, state->sql);
      return Variant(std::make_shared<RdoResultset>(std::move(state)));
    }
    if (Named(name, "Execute")) {
      DatabaseError("un script no puede modificar la base de datos");
    }
    NoSuchMember();
  }

 private:
  std::shared_ptr<Connection> cn_;
};

}  // namespace

std::shared_ptr<Object> MakeRdoConnection(std::shared_ptr<Connection> connection) {
  return std::make_shared<RdoConnection>(std::move(connection));
}

}  // namespace kivmovfrec::script
