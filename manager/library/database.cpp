// SPDX-License-Identifier: MIT
// SQLite calls with their errors turned into exceptions.
#include "manager/library/database.h"

#include "manager/library/places.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace manager {

namespace {

bool may(int what, const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), what, AT_EACCESS) == 0;
}

// The log of a database is made beside it, also for reading. Where nothing can be made and no log
// is left, the file alone is all there is.
bool isReadOnly(const std::string& path) {
    return may(R_OK, path) && !may(W_OK, folderOf(path)) && !may(F_OK, path + "-wal");
}

std::string immutableUri(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> uri(
        g_filename_to_uri(path.c_str(), nullptr, nullptr), g_free);
    return std::string(uri ? uri.get() : "") + "?immutable=1";
}

} // namespace

Statement::Statement(Database& database, const char* sql) : database_(&database) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(database.handle(), sql, -1, SQLITE_PREPARE_PERSISTENT,
                                        &statement, nullptr);
    statement_.reset(statement);
    if (code != SQLITE_OK) {
        database.fail(code);
    }
}

Statement& Statement::bind(int parameter, std::string_view text) {
    // A null pointer would bind NULL; the empty text is one.
    const char* data = text.data() == nullptr ? "" : text.data();
    return checked(sqlite3_bind_text64(statement_.get(), parameter, data, text.size(),
                                       SQLITE_STATIC, SQLITE_UTF8));
}

Statement& Statement::bind(int parameter, std::int64_t number) {
    return checked(sqlite3_bind_int64(statement_.get(), parameter, number));
}

Statement& Statement::bind(int parameter, double number) {
    return checked(sqlite3_bind_double(statement_.get(), parameter, number));
}

Statement& Statement::bindBlob(int parameter, std::string_view bytes) {
    const char* data = bytes.data() == nullptr ? "" : bytes.data();
    return checked(
        sqlite3_bind_blob64(statement_.get(), parameter, data, bytes.size(), SQLITE_STATIC));
}

Statement& Statement::bindNull(int parameter) {
    return checked(sqlite3_bind_null(statement_.get(), parameter));
}

Statement& Statement::checked(int code) {
    if (code != SQLITE_OK) {
        database_->fail(code);
    }
    return *this;
}

bool Statement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        sqlite3_reset(statement_.get());
        database_->fail(code);
    }
    return code == SQLITE_ROW;
}

void Statement::run() {
    step();
    reset();
}

void Statement::reset() {
    sqlite3_reset(statement_.get());
}

std::int64_t Statement::number(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::string_view Statement::view(int column) const {
    const auto* data = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return data == nullptr ? std::string_view()
                           : std::string_view(data, static_cast<std::size_t>(size));
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

Database::Database(const std::string& path, MissingFile missing, std::chrono::milliseconds patience)
    : path_(path), patience_(patience) {
    if (isReadOnly(path)) {
        open(immutableUri(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
        return;
    }
    try {
        open(path,
             SQLITE_OPEN_READWRITE | (missing == MissingFile::IsMade ? SQLITE_OPEN_CREATE : 0));
        // A log beside the file lets the server read while a scan writes.
        run("PRAGMA journal_mode=WAL");
        run("PRAGMA synchronous=NORMAL");
        run("PRAGMA foreign_keys=ON");
    } catch (const DamagedDatabase&) {
        throw;
    } catch (const Locked&) {
        throw; // there is room, then
    } catch (const Error&) {
        if (!may(R_OK, path) || !openWithoutSpace()) {
            throw;
        }
    }
}

Database Database::damaged(const std::string& path) {
    Database database;
    database.path_ = path;
    database.open(path, SQLITE_OPEN_READWRITE);
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    database.run("PRAGMA query_only=ON");
    return database;
}

void Database::open(const std::string& name, int flags) {
    handle_.reset();
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(name.c_str(), &handle,
                                     flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    handle_.reset(handle);
    if (code != SQLITE_OK) {
        fail(code);
    }
    sqlite3_busy_timeout(handle, static_cast<int>(patience_.count()));
}

// On a full disk there is no room for what connections share about the log. What the log holds is
// read by one connection alone; where there is none, the file is all. False: nothing is in it yet.
bool Database::openWithoutSpace() {
    struct stat log {};
    const bool hasLog = stat((path_ + "-wal").c_str(), &log) == 0 && log.st_size > 0;
    if (hasLog) {
        open(path_, SQLITE_OPEN_READWRITE);
        run("PRAGMA locking_mode=EXCLUSIVE");
        run("PRAGMA query_only=ON");
    } else {
        open(immutableUri(path_), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    }
    withoutSpace_ = true;
    Statement tables(*this, "SELECT count(*) FROM sqlite_master");
    tables.step();
    return tables.number(0) != 0;
}

void Database::run(const char* sql) {
    const int code = sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        fail(code);
    }
}

void Database::fail(int code) const {
    const int kind = code & 0xFF;
    if (kind == SQLITE_BUSY) {
        const std::string log = lockHolder(path_ + "-shm");
        throw lockedError(path_, log.empty() ? lockHolder(path_) : log, patience_);
    }
    std::string text = handle_ ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code);
    if (kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB) {
        unlink((path_ + soundMark).c_str()); // whoever opens it next looks at all of it
        if (handle_) {                       // and finds the log, which may hold more than the file
            sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        }
        throw damageOf(path_, text);
    }
    text.insert(0, path_ + ": ");
    // Kept from an earlier call, and so of no meaning, with errors of other kinds.
    const bool fromSystem = kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN || kind == SQLITE_FULL;
    const int reason = handle_ && fromSystem ? sqlite3_system_errno(handle_.get()) : 0;
    if (reason != 0) {
        text.append(": ").append(std::generic_category().message(reason));
    }
    throw Error(text);
}

Reading::Reading(Database& database)
    : database_(database), own_(sqlite3_get_autocommit(database.handle()) != 0) {
    if (own_) {
        database_.run("BEGIN");
    }
}

Reading::~Reading() {
    if (own_) {
        // Nothing was written that could be lost, so an error has nothing to tell.
        sqlite3_exec(database_.handle(), "COMMIT", nullptr, nullptr, nullptr);
    }
}

Transaction::~Transaction() {
    if (open_) {
        // A rollback that fails has happened already: SQLite did it when it met the error.
        sqlite3_exec(database_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::commit() {
    database_.run("COMMIT");
    open_ = false;
}

} // namespace manager
