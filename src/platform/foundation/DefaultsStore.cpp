#include "platform/foundation/DefaultsStore.h"

#include <utility>

namespace tavrion {

namespace {

Value valueIn(const Value::Dictionary& values, const std::string& key) {
    const auto found = values.find(key);
    return found == values.end() ? Value() : found->second;
}

/// An absent value takes the key out.
void put(Value::Dictionary& values, const std::string& key, const Value& value) {
    if (value.isAbsent()) {
        values.erase(key);
    } else {
        values.insert_or_assign(key, value);
    }
}

}  // namespace

Value DefaultsStore::value(const std::string& key, Changes& changes) {
    const MutexLock lock(mutex_);
    refresh(changes);
    return visibleValue(key);
}

Value::Dictionary DefaultsStore::allValues(Changes& changes) {
    const MutexLock lock(mutex_);
    refresh(changes);
    return visibleValues();
}

void DefaultsStore::store(const std::string& key, Value value, Changes& changes) {
    bool isDue = false;
    {
        const MutexLock lock(mutex_);
        refresh(changes);
        const bool isOther = visibleValue(key) != value;
        if (isOther) {
            changes.push_back({key, value});
        }
        if (file_.empty()) {
            put(stored_.values, key, value);
        } else if (isOther || unwritten_.count(key) != 0) {
            unwritten_.insert_or_assign(key, std::move(value));
            isDue = gatherings_ == 0;
        }
    }
    if (isDue) {
        write(changes).ignore();  // It stays unwritten; synchronize() tries again and tells.
    }
}

void DefaultsStore::beginGathering() {
    const MutexLock lock(mutex_);
    ++gatherings_;
}

void DefaultsStore::endGathering(Changes& changes) {
    bool isDue = false;
    {
        const MutexLock lock(mutex_);
        precondition(gatherings_ > 0, "a gathering of defaults ends after it began");
        --gatherings_;
        isDue = gatherings_ == 0 && !unwritten_.empty();
    }
    if (isDue) {
        write(changes).ignore();  // It stays unwritten; synchronize() tries again and tells.
    }
}

Result<void> DefaultsStore::synchronize(Changes& changes) {
    {
        const MutexLock lock(mutex_);
        refresh(changes);
        if (damage_) {
            return *damage_;
        }
        if (unwritten_.empty()) {
            return {};
        }
    }
    return write(changes);
}

Value DefaultsStore::visibleValue(const std::string& key) const {
    const auto found = unwritten_.find(key);
    return found == unwritten_.end() ? valueIn(stored_.values, key) : found->second;
}

Value::Dictionary DefaultsStore::visibleValues() const {
    Value::Dictionary values = stored_.values;
    for (const auto& [key, value] : unwritten_) {
        put(values, key, value);
    }
    return values;
}

void DefaultsStore::refresh(Changes& changes) {
    if (file_.empty()) {
        return;
    }
    const auto present = DefaultsFile::stampOf(file_);
    if (present && present == seen_) {
        return;
    }
    auto outcome = DefaultsFile::read(file_);
    if (auto* damaged = std::get_if<DamagedDefaultsFile>(&outcome)) {
        damage_ = std::move(damaged->error);
        seen_ = damaged->stamp;
        return;
    }
    damage_.reset();
    take(std::get<DefaultsFileVersion>(std::move(outcome)), changes);
}

/// Makes `version` the stored one. A value that waits to be written hides both the old and the new
/// one.
void DefaultsStore::take(DefaultsFileVersion version, Changes& changes) {
    const DefaultsFileVersion before = std::exchange(stored_, std::move(version));
    seen_ = stored_.stamp;
    for (const auto& [key, value] : before.values) {
        if (stored_.values.count(key) == 0 && unwritten_.count(key) == 0) {
            changes.push_back({key, Value()});
        }
    }
    for (const auto& [key, value] : stored_.values) {
        if (unwritten_.count(key) == 0 && valueIn(before.values, key) != value) {
            changes.push_back({key, value});
        }
    }
}

Result<void> DefaultsStore::write(Changes& changes) {
    if (file_.empty()) {
        return {};
    }
    const MutexLock writingLock(writing_);
    const Result<OpenFile> held = DefaultsFile::lock(file_);
    if (!held) {
        return held.error();
    }
    Value::Dictionary written;
    Value::Dictionary merged;
    {
        const MutexLock lock(mutex_);
        refresh(changes);
        if (damage_) {
            return *damage_;
        }
        merged = visibleValues();
        if (merged == stored_.values) {
            unwritten_.clear();
            return {};
        }
        written = unwritten_;
    }
    Result<DefaultsFileVersion> version = DefaultsFile::replace(file_, std::move(merged));
    if (!version) {
        return version.error();
    }
    const MutexLock lock(mutex_);
    take(std::move(version).value(), changes);
    // A value that was set again in between waits for the write of its own setter.
    std::erase_if(unwritten_, [&written](const auto& entry) {
        const auto found = written.find(entry.first);
        return found != written.end() && found->second == entry.second;
    });
    return {};
}

}  // namespace tavrion
