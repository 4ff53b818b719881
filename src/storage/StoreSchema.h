#pragma once

#include <filesystem>
#include <span>
#include <stdexcept>

namespace SQLite {
class Database;
}

namespace tendel {

// What makes a file unusable as a store besides SQLite's own errors; caught in this folder.
class StoreError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The steps from an empty file to the present version: the first makes version 1 of it, each
// further one the next version. Those that were ever released stay as they are.
std::span<const char* const> storeMigrations();

// Takes the steps that the database has not taken yet, each in a transaction of its own. Before the
// first change of a database that holds something, a copy is made beside it, named after `file` and
// its version. Throws for a database that is not a store or that comes from a newer version, and
// leaves it as it is.
void bringUpToDate(SQLite::Database& database, const std::filesystem::path& file,
                   std::span<const char* const> migrations);

// Reads all pages; throws when one is damaged.
void checkPages(SQLite::Database& database);

}  // namespace tendel
