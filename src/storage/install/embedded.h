// SQL scripts built into the library at configure time from schema/sqlite/*.sql.
#pragma once

namespace kivmovfrec::embedded {

extern const char* const schema_sqlite;  // schema/sqlite/schema.sql: tables and indexes
extern const char* const demo_sqlite;    // schema/sqlite/demo.sql: the demo company

}  // namespace kivmovfrec::embedded
