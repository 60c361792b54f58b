// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace gavelscope::store::sqlite {

// A failed SQLite call: its extended result code and SQLite's own text for it. Thrown inside the
// store only; the store's API turns it into a message that names the file.
class Error : public std::runtime_error {
 public:
  Error(int code, const std::string& message) : std::runtime_error(message), m_code(code) {}
  int code() const { return m_code; }            // extended code
  int primary() const { return m_code & 0xFF; }  // SQLITE_BUSY, SQLITE_READONLY, ...

 private:
  int m_code;
};

// One open database file. Every value read is at most `maxValueBytes` long: SQLite refuses longer
// ones with SQLITE_TOOBIG rather than handing a hostile file's gigabyte string to us.
class Connection {
 public:
  struct Options {
    bool readOnly = false;
    bool create = false;
    std::chrono::milliseconds busyTimeout{5000};
    int maxValueBytes = 1 << 20;
  };

  Connection(const std::filesystem::path& file, const Options& options);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Runs our own fixed SQL, which takes no values; every value goes through Statement::Bind.
  void Execute(const char* sql);
  // The single value of a one-row statement without parameters (a PRAGMA, a count).
  std::int64_t Integer(const char* sql);
  bool IsReadOnly() const;
  std::int64_t LastInsertId() const;
  sqlite3* handle() const { return m_db; }
  // The error of the last call on this connection, as an exception.
  [[noreturn]] void Fail(int code) const;

 private:
  sqlite3* m_db = nullptr;
};

// A prepared statement. Values are bound by position, counting from 1; columns are read counting
// from 0.
class Statement {
 public:
  Statement(Connection& connection, std::string_view sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& Bind(int index, std::int64_t value);
  Statement& Bind(int index, double value);
  Statement& Bind(int index, std::string_view text);
  Statement& BindNull(int index);
  template <typename T>
  Statement& Bind(int index, const std::optional<T>& value) {
    return value ? Bind(index, *value) : BindNull(index);
  }

  // True while a row is ready; false once the statement has run to its end.
  bool Step();
  // Runs a statement that returns no rows.
  void Run();
  // Ready to run again, its bindings cleared.
  void Reset();

  bool IsNull(int column) const;
  bool IsInteger(int column) const;
  bool IsReal(int column) const;
  std::int64_t Integer(int column) const;
  double Real(int column) const;
  std::string Text(int column) const;
  std::optional<std::int64_t> OptionalInteger(int column) const;
  std::optional<double> OptionalReal(int column) const;

 private:
  Connection& m_connection;
  sqlite3_stmt* m_statement = nullptr;
};

// BEGIN IMMEDIATE ... COMMIT: the write lock is taken at the start, where the busy timeout applies,
// rather than half-way through. Ended without Commit (an exception, a return), it rolls back.
class Transaction {
 public:
  explicit Transaction(Connection& connection);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Commit();

 private:
  Connection& m_connection;
  bool m_open = true;
};

}  // namespace gavelscope::store::sqlite
