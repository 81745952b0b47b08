// SPDX-License-Identifier: MIT
// A thin, owning layer over SQLite: connection, statement, transaction.
#pragma once

#include "manager/library/error.h"
#include "manager/library/places.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace manager {

/// The file is no database any more; it can be moved aside and made again.
class DamagedDatabase : public Error {
public:
    using Error::Error;
};

/// "PATH: the index is damaged (WHAT)"
inline DamagedDatabase damageOf(const std::string& path, const std::string& what) {
    return DamagedDatabase(path + ": the index is damaged (" + what + ")");
}

/// Ends the name of the file beside a database that tells when it was last known to be sound. It is
/// removed when damage is met.
constexpr const char* soundMark = ".sound";

class Database;

/// A prepared statement, for repeated use: bind, step, read, reset. Not to outlive its database.
class Statement {
public:
    Statement(Database& database, const char* sql);

    /// Parameters count from 1. Texts are referred to, not copied, until the next reset.
    Statement& bind(int parameter, std::string_view text);
    Statement& bind(int parameter, std::int64_t number);
    Statement& bind(int parameter, double number);
    /// Refers to the bytes, like bind().
    Statement& bindBlob(int parameter, std::string_view bytes);
    Statement& bindNull(int parameter);
    /// Advances to the next row; false at the end. Throws Error.
    bool step();
    /// Runs a statement without rows, and readies it for the next use.
    void run();
    void reset();

    [[nodiscard]] std::int64_t number(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] std::string text(int column) const { return std::string(view(column)); }
    /// The bytes of a text or blob, until the next step or reset.
    [[nodiscard]] std::string_view view(int column) const;
    [[nodiscard]] bool isNull(int column) const;

private:
    Statement& checked(int code);

    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    Database* database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

/// Readies a statement again when the scope that reads its rows is left.
class StatementUse {
public:
    explicit StatementUse(Statement& statement) : statement_(statement) { statement_.reset(); }
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;
    ~StatementUse() { statement_.reset(); }

private:
    Statement& statement_;
};

/// What to do when there is no such file.
enum class MissingFile { IsMade, IsAnError };

/// [one-thread] One connection.
class Database {
public:
    /// Throws Error; DamagedDatabase when the file is none. In a folder that cannot be written to,
    /// or on a full disk, it can be read only. Whatever others have locked is waited for up to
    /// `patience`; then Locked is thrown, also by what is done with the database later.
    explicit Database(const std::string& path, MissingFile missing = MissingFile::IsMade,
                      std::chrono::milliseconds patience = lockPatience);
    /// Opens a damaged file, to read what is left of it. The log is left as it is. Throws Error.
    [[nodiscard]] static Database damaged(const std::string& path);

    void run(const char* sql);
    [[nodiscard]] std::int64_t lastRow() const { return sqlite3_last_insert_rowid(handle_.get()); }
    [[nodiscard]] const std::string& path() const { return path_; }
    /// Whether it could be opened for reading only, for want of space, and sees no changes.
    [[nodiscard]] bool isWithoutSpace() const { return withoutSpace_; }
    [[nodiscard]] sqlite3* handle() const { return handle_.get(); }
    /// Throws the error of a call that did not succeed, with the system's reason where it has one.
    [[noreturn]] void fail(int code) const;

private:
    Database() = default;
    void open(const std::string& name, int flags);
    bool openWithoutSpace();

    struct Closer {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };
    std::string path_;
    std::chrono::milliseconds patience_ = lockPatience;
    bool withoutSpace_ = false;
    std::unique_ptr<sqlite3, Closer> handle_;
};

/// Until it ends, everything that is read is of one moment; and costs less than alone. What is read
/// within another, or within a Transaction, is part of that.
class Reading {
public:
    explicit Reading(Database& database);
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading();

private:
    Database& database_;
    bool own_;
};

/// Rolled back unless committed.
class Transaction {
public:
    explicit Transaction(Database& database) : database_(database) {
        database_.run("BEGIN IMMEDIATE");
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();
    void commit();

private:
    Database& database_;
    bool open_ = true;
};

} // namespace manager
