#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "host/core/IUnknown.h"

// One line of a class's interface table: which interface, and where it lies in the object. The
// table ends with an entry whose `id` is null.
struct SInterfaceEntry {
    const GUID* id;
    std::ptrdiff_t offset;
};

// Adds reference operations that do not destroy the object.
struct HOST_API VUnknownImplementationExtensions {
    virtual std::uint32_t LocalAddRef() = 0;
    virtual std::uint32_t LocalRelease() = 0;
    virtual std::uint32_t ReferenceCount() const = 0;

  protected:
    ~VUnknownImplementationExtensions() = default;
};

// Reference counting and QueryInterface, shared by everything the host sees. The count is changed
// atomically; Release destroys the object through its virtual destructor.
template <class Interface>
class HOST_API TUnknownCoreImpl : public Interface, public VUnknownImplementationExtensions {
  public:
    TUnknownCoreImpl() = default;
    // A copy is an object of its own: it starts uncounted.
    TUnknownCoreImpl(const TUnknownCoreImpl& other) : Interface(other) {}
    TUnknownCoreImpl& operator=(const TUnknownCoreImpl&) { return *this; }

    HRESULT QueryInterface(const GUID& id, void** out) override {
        const SInterfaceEntry* entry = GetInterfaceTable();
        const bool wants_root = id == IID_IUnknown;
        while (entry->id && !wants_root && *entry->id != id) ++entry;
        if (!entry->id) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = reinterpret_cast<char*>(static_cast<Interface*>(this)) + entry->offset;
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() override { return ++count_; }
    std::uint32_t Release() override {
        const std::uint32_t left = --count_;
        if (left == 0) delete this;
        return left;
    }
    std::uint32_t LocalAddRef() override { return ++count_; }
    std::uint32_t LocalRelease() override { return --count_; }
    std::uint32_t ReferenceCount() const override { return count_; }

  protected:
    // The interfaces of the most derived class; offsets count from its `Interface` part.
    virtual const SInterfaceEntry* GetInterfaceTable() const = 0;

  private:
    std::atomic<std::uint32_t> count_{0};
};

// The usual case: `Class` answers `Interface` (whose id is Interface::kId) and nothing else.
template <class Class, class Interface>
class HOST_API TUnknownImpl : public TUnknownCoreImpl<Interface> {
  protected:
    const SInterfaceEntry* GetInterfaceTable() const override {
        static constexpr SInterfaceEntry kTable[] = {{&Interface::kId, 0}, {nullptr, 0}};
        return kTable;
    }
};
