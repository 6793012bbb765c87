// SQL scripts built into the library at configure time from schema/{sqlite,postgresql}/*.sql.
#pragma once

namespace kivmovfrec::embedded {

extern const char* const schema_sqlite;      // schema/sqlite/schema.sql: tables and indexes
extern const char* const demo_sqlite;        // schema/sqlite/demo.sql: the demo company
extern const char* const schema_postgresql;  // schema/postgresql/schema.sql
extern const char* const demo_postgresql;    // schema/postgresql/demo.sql

}  // namespace kivmovfrec::embedded
