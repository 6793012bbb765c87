// SQL scripts built into the library at configure time from schema/.
#pragma once

namespace kivmovfrec::embedded {

extern const char* const schema_sqlite;      // schema/sqlite/schema.sql: tables and indexes
extern const char* const schema_postgresql;  // schema/postgresql/schema.sql
extern const char* const demo;               // schema/demo.sql: the demo company, every engine

}  // namespace kivmovfrec::embedded
