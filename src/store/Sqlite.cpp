// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/Sqlite.h"

#include <sqlite3.h>

#include <limits>

namespace gavelscope::store::sqlite {

Connection::Connection(const std::filesystem::path& file, const Options& options) {
  int flags = options.readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  if (options.create && !options.readOnly) flags |= SQLITE_OPEN_CREATE;
  // A connection of its own: the window and a test may hold two on one file at once.
  flags |= SQLITE_OPEN_PRIVATECACHE;
  const int code = sqlite3_open_v2(file.c_str(), &m_db, flags, nullptr);
  if (code != SQLITE_OK) {
    const std::string message = m_db != nullptr ? sqlite3_errmsg(m_db) : sqlite3_errstr(code);
    const int extended = m_db != nullptr ? sqlite3_extended_errcode(m_db) : code;
    sqlite3_close_v2(m_db);
    m_db = nullptr;
    throw Error(extended, message);
  }
  sqlite3_extended_result_codes(m_db, 1);
  sqlite3_busy_timeout(m_db, static_cast<int>(std::min<std::chrono::milliseconds::rep>(
                                 options.busyTimeout.count(), std::numeric_limits<int>::max())));
  sqlite3_limit(m_db, SQLITE_LIMIT_LENGTH, options.maxValueBytes);
  // The file comes from outside: its schema's triggers and views may not call functions with side
  // effects, and nothing may write to the schema behind SQLite's back.
  sqlite3_db_config(m_db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(m_db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

Connection::~Connection() {
  sqlite3_close_v2(m_db);
}

void Connection::Fail(int code) const {
  throw Error(m_db != nullptr ? sqlite3_extended_errcode(m_db) : code,
              m_db != nullptr ? sqlite3_errmsg(m_db) : sqlite3_errstr(code));
}

void Connection::Execute(const char* sql) {
  const int code = sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code);
}

std::int64_t Connection::Integer(const char* sql) {
  Statement statement(*this, sql);
  return statement.Step() ? statement.Integer(0) : 0;
}

bool Connection::IsReadOnly() const {
  return sqlite3_db_readonly(m_db, "main") == 1;
}

std::int64_t Connection::LastInsertId() const {
  return sqlite3_last_insert_rowid(m_db);
}

Statement::Statement(Connection& connection, std::string_view sql) : m_connection(connection) {
  const int code =
      sqlite3_prepare_v3(connection.handle(), sql.data(), static_cast<int>(sql.size()), 0, &m_statement, nullptr);
  if (code != SQLITE_OK) {
    sqlite3_finalize(m_statement);
    connection.Fail(code);
  }
}

Statement::~Statement() {
  sqlite3_finalize(m_statement);
}

Statement& Statement::Bind(int index, std::int64_t value) {
  if (const int code = sqlite3_bind_int64(m_statement, index, value); code != SQLITE_OK) m_connection.Fail(code);
  return *this;
}

Statement& Statement::Bind(int index, double value) {
  if (const int code = sqlite3_bind_double(m_statement, index, value); code != SQLITE_OK) m_connection.Fail(code);
  return *this;
}

Statement& Statement::Bind(int index, std::string_view text) {
  // Longer than an int can say, it is longer than the value limit anyway.
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), std::numeric_limits<int>::max()));
  if (const int code = sqlite3_bind_text(m_statement, index, text.data(), size, SQLITE_TRANSIENT); code != SQLITE_OK) {
    m_connection.Fail(code);
  }
  return *this;
}

Statement& Statement::BindNull(int index) {
  if (const int code = sqlite3_bind_null(m_statement, index); code != SQLITE_OK) m_connection.Fail(code);
  return *this;
}

bool Statement::Step() {
  const int code = sqlite3_step(m_statement);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  m_connection.Fail(code);
}

void Statement::Run() {
  while (Step()) {
  }
}

void Statement::Reset() {
  sqlite3_reset(m_statement);
  sqlite3_clear_bindings(m_statement);
}

bool Statement::IsNull(int column) const {
  return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

bool Statement::IsInteger(int column) const {
  return sqlite3_column_type(m_statement, column) == SQLITE_INTEGER;
}

bool Statement::IsReal(int column) const {
  return sqlite3_column_type(m_statement, column) == SQLITE_FLOAT;
}

std::int64_t Statement::Integer(int column) const {
  return sqlite3_column_int64(m_statement, column);
}

double Statement::Real(int column) const {
  return sqlite3_column_double(m_statement, column);
}

std::string Statement::Text(int column) const {
  // A value over the length limit never gets here: the step that reads its row fails.
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
  return text != nullptr ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)))
                         : std::string();
}

std::optional<std::int64_t> Statement::OptionalInteger(int column) const {
  return IsNull(column) ? std::nullopt : std::optional<std::int64_t>(Integer(column));
}

std::optional<double> Statement::OptionalReal(int column) const {
  return IsNull(column) ? std::nullopt : std::optional<double>(Real(column));
}

Transaction::Transaction(Connection& connection) : m_connection(connection) {
  m_connection.Execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  // SQLite may have rolled back already (a full disk does); then there is nothing left to end.
  if (m_open && sqlite3_get_autocommit(m_connection.handle()) == 0) {
    sqlite3_exec(m_connection.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
  }
}

void Transaction::Commit() {
  m_connection.Execute("COMMIT");
  m_open = false;
}

}  // namespace gavelscope::store::sqlite
