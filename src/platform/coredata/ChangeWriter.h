// Writes change sets as SQL, inside a transaction of the caller's.
//
// Queue: that of the database. Errors are SQLite's own.
#pragma once

#include <map>
#include <vector>

#include "platform/coredata/ChangeSet.h"
#include "platform/sqlite/SQLiteDatabase.h"

namespace tavrion {

class ChangeWriter {
  public:
    ChangeWriter(const NSManagedObjectModel& model, SQLiteDatabase& database)
        : model_(model), database_(database) {}

    Result<void> write(const ChangeSet& changes);

  private:
    Result<void> writeInserts(const NSEntityDescription& entity, const EntityChanges& changes);
    Result<void> writeUpdates(const NSEntityDescription& entity, const EntityChanges& changes);
    Result<void> writeDeletes(const NSEntityDescription& entity, const EntityChanges& changes);
    /// The statement of that text, prepared once.
    Result<SQLiteStatement*> statement(const std::string& sql);

    const NSManagedObjectModel& model_;
    SQLiteDatabase& database_;
    std::map<std::string, SQLiteStatement> statements_;
};

}  // namespace tavrion
