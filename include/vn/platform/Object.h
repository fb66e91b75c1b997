// vn::Object: the root of the library's reference types.
//
// Objects are held by std::shared_ptr (strong) and std::weak_ptr (weak). An object carries
// its identity (its address), a textual description, value equality and a hash that
// subclasses refine, and a table of associated objects that lives and dies with it.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <typeinfo>

namespace vn {

class Object : public std::enable_shared_from_this<Object> {
  public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    // "<ClassName: 0x...>" unless a subclass says more.
    virtual std::string description() const;
    // Identity unless a subclass defines value equality; must agree with hash().
    virtual bool isEqual(const Object& other) const;
    virtual std::size_t hash() const;
    // Unqualified, demangled name of the dynamic type ("VNLog", "Error").
    virtual std::string className() const;
    // The object's answer to the boolean-value message; absent when it has none (the default).
    virtual std::optional<bool> boolValue() const;

    // Associated objects: strong references stored under an address-identified key and
    // released with this object. Setting null removes the entry. Safe from any thread.
    void setAssociatedObject(const void* key, std::shared_ptr<Object> value);
    std::shared_ptr<Object> associatedObject(const void* key) const;

  private:
    struct AssociatedObjects;
    // Created on the first association: most objects never have one, and an object should
    // cost no more than its own fields.
    AssociatedObjects& associatedObjects() const;

    mutable std::atomic<AssociatedObjects*> associated_{nullptr};
};

using ObjectPtr = std::shared_ptr<Object>;

// Demangled, namespace-free name of a type_info, as className() reports it.
std::string unqualifiedTypeName(const std::type_info& type);

}  // namespace vn
