#include "platform/coredata/ChangeWriter.h"

#include <fmt/format.h>

#include <type_traits>

namespace tavrion {
namespace {

void bindField(SQLiteStatement& statement, int parameter, const FieldView& field,
               NSAttributeType type) {
    std::visit(
        [&](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, std::monostate>) {
                statement.bindNull(parameter);
            } else if constexpr (std::is_same_v<T, bool>) {
                statement.bindInteger(parameter, value ? 1 : 0);
            } else if constexpr (std::is_same_v<T, std::int64_t>) {
                statement.bindInteger(parameter, value);
            } else if constexpr (std::is_same_v<T, double>) {
                statement.bindReal(parameter, value);
            } else if constexpr (std::is_same_v<T, NSDate>) {
                statement.bindReal(parameter, value.timeIntervalSinceReferenceDate());
            } else if constexpr (std::is_same_v<T, Link>) {
                statement.bindInteger(parameter, value.counter);
            } else if (type == NSAttributeType::binaryData) {
                statement.bindBlobInPlace(parameter, value);
            } else {
                statement.bindTextInPlace(parameter, value);
            }
        },
        field);
}

}  // namespace

Result<void> ChangeWriter::write(const ChangeSet& changes) {
    for (std::size_t i = 0; i < changes.entityCount(); ++i) {
        const auto index = static_cast<EntityIndex>(i);
        const EntityChanges& entityChanges = changes.entity(index);
        const NSEntityDescription& entity = model_.entity(index);
        for (const auto step : {&ChangeWriter::writeInserts, &ChangeWriter::writeUpdates,
                                &ChangeWriter::writeDeletes}) {
            if (auto written = (this->*step)(entity, entityChanges); !written) {
                return written;
            }
        }
    }
    return {};
}

Result<SQLiteStatement*> ChangeWriter::statement(const std::string& sql) {
    auto found = statements_.find(sql);
    if (found == statements_.end()) {
        auto prepared = database_.prepare(sql);
        if (!prepared) {
            return prepared.error();
        }
        found = statements_.emplace(sql, std::move(prepared).value()).first;
    }
    return &found->second;
}

Result<void> ChangeWriter::writeInserts(const NSEntityDescription& entity,
                                        const EntityChanges& changes) {
    if (changes.insertedCount() == 0) {
        return {};
    }
    std::string columns = "id";
    std::string parameters = "?1";
    for (std::size_t i = 0; i < entity.properties.size(); ++i) {
        columns += ", " + entity.properties[i].name;
        parameters += fmt::format(", ?{}", i + 2);
    }
    const auto insert =
        statement(fmt::format("INSERT INTO {} ({}) VALUES ({})", entity.name, columns, parameters));
    if (!insert) {
        return insert.error();
    }
    Result<void> written;
    changes.forEachInserted([&](RecordCounter record, std::size_t row) {
        if (!written) {
            return;
        }
        insert.value()->bindInteger(1, record);
        for (std::size_t i = 0; i < entity.properties.size(); ++i) {
            bindField(*insert.value(), static_cast<int>(i) + 2,
                      changes.insertedField(row, static_cast<PropertyIndex>(i)),
                      entity.properties[i].type);
        }
        written = insert.value()->run();
    });
    return written;
}

Result<void> ChangeWriter::writeUpdates(const NSEntityDescription& entity,
                                        const EntityChanges& changes) {
    for (const RecordCounter record : changes.updatedRecords()) {
        const RowUpdate& update = changes.update(record);
        std::string sql = fmt::format("UPDATE {} SET ", entity.name);
        for (std::size_t i = 0; i < update.size(); ++i) {
            sql += fmt::format("{}{} = ?{}", i == 0 ? "" : ", ",
                               entity.properties[update[i].first].name, i + 2);
        }
        const auto change = statement(sql + " WHERE id = ?1");
        if (!change) {
            return change.error();
        }
        change.value()->bindInteger(1, record);
        for (std::size_t i = 0; i < update.size(); ++i) {
            bindField(*change.value(), static_cast<int>(i) + 2, viewOf(update[i].second),
                      entity.properties[update[i].first].type);
        }
        if (auto changed = change.value()->run(); !changed) {
            return changed;
        }
    }
    return {};
}

Result<void> ChangeWriter::writeDeletes(const NSEntityDescription& entity,
                                        const EntityChanges& changes) {
    for (const RecordCounter record : changes.deletedRecords()) {
        const auto remove = statement(fmt::format("DELETE FROM {} WHERE id = ?1", entity.name));
        if (!remove) {
            return remove.error();
        }
        remove.value()->bindInteger(1, record);
        if (auto removed = remove.value()->run(); !removed) {
            return removed;
        }
    }
    return {};
}

}  // namespace tavrion
