// A record as the flows hold it: a light handle of a context and an identifier. It holds no values
// of its own.
//
// Queue: that of its context. Who owns: the context must outlive its handles; copies of a handle
// are the same object. Values are those the context sees now, unsaved changes included. A record
// that is gone reads as never set, unless a batch delete removed it: then it keeps its last saved
// values.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/coredata/Field.h"

namespace tavrion {

class ChangedRecord;
class NSManagedObjectContext;

class NSManagedObject {
  public:
    NSManagedObject(NSManagedObjectContext& context, NSManagedObjectID id)
        : context_(&context), id_(id) {}

    NSManagedObjectID objectID() const { return id_; }
    NSManagedObjectContext& managedObjectContext() const { return *context_; }
    /// Whether the context no longer sees the record.
    bool isDeleted() const;

    bool operator==(const NSManagedObject& other) const {
        return context_ == other.context_ && id_ == other.id_;
    }

  protected:
    std::optional<std::string> text(PropertyIndex property) const;
    std::optional<NSDate> date(PropertyIndex property) const;
    std::optional<NSData> data(PropertyIndex property) const;
    double real(PropertyIndex property) const;
    std::int64_t integer(PropertyIndex property) const;
    bool boolean(PropertyIndex property) const;
    /// The record that a reference points to and that the context still sees.
    std::optional<NSManagedObject> reference(PropertyIndex property) const;
    /// The records of `entity` whose `property` refers to this one, in identifier order.
    std::vector<NSManagedObject> referringObjects(EntityIndex entity, PropertyIndex property) const;

    void setText(PropertyIndex property, const std::optional<std::string_view>& value);
    void setDate(PropertyIndex property, std::optional<NSDate> value);
    void setData(PropertyIndex property, std::optional<NSData> value);
    void setReal(PropertyIndex property, double value);
    void setInteger(PropertyIndex property, std::int64_t value);
    void setBoolean(PropertyIndex property, bool value);
    void setReference(PropertyIndex property, const std::optional<NSManagedObjectID>& value);

    /// Calls `use(record)` with all properties at once; the record and its views are valid within.
    template <class Use>
    void readRecord(Use use) const {
        readRecord(
            [](void* user, const ChangedRecord& record) { (*static_cast<Use*>(user))(record); },
            &use);
    }

  private:
    void readRecord(void (*use)(void*, const ChangedRecord&), void* user) const;

    NSManagedObjectContext* context_;
    NSManagedObjectID id_;
};

}  // namespace tavrion
