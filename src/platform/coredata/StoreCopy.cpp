#include "platform/coredata/StoreCopy.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace tavrion {
namespace {

namespace fs = std::filesystem;

/// What stands in the name of a draft between the file's name and the process that makes it.
constexpr std::string_view draftMark = ".new-";

void syncDirectory(const fs::path& directory) {
    const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

/// Brings a file that is whole to the disk; false, with errno, when that fails.
bool synchronize(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool done = ::fsync(descriptor) == 0;
    const int code = errno;
    ::close(descriptor);
    errno = code;
    return done;
}

NSError systemError() {
    return {std::strerror(errno), {}};
}

/// The first column of a statement's only row.
Result<std::int64_t> numberOf(SQLiteDatabase& database, const std::string& sql) {
    auto statement = database.prepare(sql);
    if (!statement) {
        return statement.error();
    }
    const Result<bool> row = statement.value().step();
    if (!row) {
        return row.error();
    }
    return row.value() ? statement.value().integer(0) : 0;
}

Result<std::vector<std::string>> tablesOf(SQLiteDatabase& database) {
    auto names = database.prepare("SELECT name FROM sqlite_schema WHERE type = 'table'");
    if (!names) {
        return names.error();
    }
    std::vector<std::string> tables;
    for (;;) {
        const Result<bool> row = names.value().step();
        if (!row) {
            return row.error();
        }
        if (!row.value()) {
            return tables;
        }
        tables.emplace_back(names.value().text(0));
    }
}

/// Both databases give the same number; an error says which and what.
Result<void> agree(SQLiteDatabase& database, SQLiteDatabase& copy, const std::string& sql,
                   const std::string& what) {
    const auto wanted = numberOf(database, sql);
    const auto found = numberOf(copy, sql);
    if (!wanted || !found) {
        return wanted ? found.error() : wanted.error();
    }
    if (wanted.value() != found.value()) {
        return NSError{fmt::format("{} is {} instead of {}", what, found.value(), wanted.value()),
                       {}};
    }
    return {};
}

Result<void> fill(const StoreDraft& draft, SQLiteDatabase& database) {
    auto copying = database.prepare("VACUUM INTO ?1");
    if (!copying) {
        return copying.error();
    }
    const std::string name = draft.file().string();
    copying.value().bindText(1, name);
    if (auto copied = copying.value().run(); !copied) {
        return copied;
    }
    if (auto checked = StoreCopy::check(database, draft.file()); !checked) {
        return checked;
    }
    // SQLite leaves the copy in the system's memory.
    return synchronize(draft.file()) ? Result<void>() : systemError();
}

NSError notMade(const fs::path& copy, const NSError& why) {
    return {fmt::format("{}: the copy can't be made ({})", copy.string(), why.localizedDescription),
            why.userInfo};
}

}  // namespace

StoreDraft::StoreDraft(const fs::path& file)
    : file_(file), draft_(fmt::format("{}{}{}", file.string(), draftMark, ::getpid())) {
    remove();
}

StoreDraft::~StoreDraft() {
    remove();
}

void StoreDraft::remove() const {
    std::error_code ignored;
    for (const char* const ending : {"", "-journal", "-wal", "-shm"}) {
        fs::remove(draft_.string() + ending, ignored);
    }
}

Result<bool> StoreDraft::putInPlace() const {
    const bool done = ::link(draft_.c_str(), file_.c_str()) == 0;
    if (!done && errno != EEXIST) {
        return systemError();
    }
    syncDirectory(file_.parent_path());
    return done;
}

Result<void> StoreDraft::replace() const {
    if (::rename(draft_.c_str(), file_.c_str()) != 0) {
        return systemError();
    }
    syncDirectory(file_.parent_path());
    return {};
}

void StoreDraft::removeThoseOfTheDead(const fs::path& folder) {
    std::error_code failure;
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
        const std::string name = entry.path().filename().string();
        if (const std::size_t mark = name.find(draftMark); mark != std::string::npos) {
            const int process = std::atoi(name.c_str() + mark + draftMark.size());
            if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH) {
                found.push_back(entry.path());
            }
        }
    }
    for (const fs::path& draft : found) {
        fs::remove(draft, failure);
    }
}

Result<void> StoreCopy::make(SQLiteDatabase& database, const fs::path& copy) {
    StoreDraft::removeThoseOfTheDead(copy.parent_path());
    const StoreDraft draft(copy);
    if (const auto filled = fill(draft, database); !filled) {
        return notMade(copy, filled.error());
    }
    const auto placed = draft.putInPlace();
    if (!placed) {
        return notMade(copy, placed.error());
    }
    return placed.value() ? Result<void>() : notMade(copy, {std::strerror(EEXIST), {}});
}

Result<void> StoreCopy::renew(SQLiteDatabase& database, const fs::path& copy) {
    const StoreDraft draft(copy);
    if (const auto filled = fill(draft, database); !filled) {
        return notMade(copy, filled.error());
    }
    const auto replaced = draft.replace();
    return replaced ? Result<void>() : notMade(copy, replaced.error());
}

Result<void> StoreCopy::check(SQLiteDatabase& database, const fs::path& copy) {
    auto opened = SQLiteDatabase::open(copy, SQLiteDatabase::Mode::unchanging);
    if (!opened) {
        return opened.error();
    }
    SQLiteDatabase& other = *opened.value();
    const auto damage = other.quickCheck();
    if (!damage) {
        return damage.error();
    }
    if (damage.value()) {
        return NSError{*damage.value(), {}};
    }
    for (const char* const mark : {"application_id", "user_version"}) {
        if (auto same = agree(database, other, fmt::format("PRAGMA {}", mark), mark); !same) {
            return same;
        }
    }
    const auto tables = tablesOf(database);
    if (!tables) {
        return tables.error();
    }
    for (const std::string& table : tables.value()) {
        if (auto same = agree(database, other, fmt::format("SELECT count(*) FROM {}", table),
                              fmt::format("the number of rows of {}", table));
            !same) {
            return same;
        }
    }
    return {};
}

}  // namespace tavrion
