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

// Looks `id` up in the interface table of an object, IUnknown being the first entry:
// QueryInterface.
inline HRESULT AnswerFrom(const SInterfaceEntry* entry, IUnknown* object, const GUID& id,
                          void** out) {
    if (!out) return E_POINTER;
    const bool wants_root = id == IID_IUnknown;
    while (entry->id && !wants_root && *entry->id != id) ++entry;
    *out = entry->id ? reinterpret_cast<char*>(object) + entry->offset : nullptr;
    if (!*out) return E_NOINTERFACE;
    object->AddRef();
    return S_OK;
}

// Reference counting and QueryInterface, shared by everything the host sees. The count is changed
// atomically; Release destroys the object through its virtual destructor. It answers `Interface`
// (whose id is Interface::kId); a class with more interfaces overrides QueryInterface with a table
// of its own. Modules export all of it, so nothing is defaulted.
// NOLINTBEGIN(modernize-use-equals-default)
template <class Interface>
class HOST_API TUnknownCoreImpl : public Interface, public VUnknownImplementationExtensions {
  public:
    TUnknownCoreImpl() {}
    ~TUnknownCoreImpl() override {}
    // A copy is an object of its own: it starts uncounted.
    TUnknownCoreImpl(const TUnknownCoreImpl& other) : Interface(other) {}
    TUnknownCoreImpl& operator=(const TUnknownCoreImpl&) { return *this; }

    HRESULT QueryInterface(const GUID& id, void** out) override {
        return AnswerFrom(GetInterfaceTable(), this, id, out);
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

    static const SInterfaceEntry* GetInterfaceTable() {
        static constexpr SInterfaceEntry kTable[] = {{&Interface::kId, 0}, {nullptr, 0}};
        return kTable;
    }

  private:
    std::atomic<std::uint32_t> count_{0};
};

// The usual case: `Class` answers `Interface` and nothing else.
template <class Class, class Interface>
class HOST_API TUnknownImpl : public TUnknownCoreImpl<Interface> {
  public:
    TUnknownImpl() {}
    ~TUnknownImpl() override {}
    TUnknownImpl(const TUnknownImpl& other) : TUnknownCoreImpl<Interface>(other) {}
    TUnknownImpl& operator=(const TUnknownImpl&) { return *this; }

    static const SInterfaceEntry* GetInterfaceTable() {
        return TUnknownCoreImpl<Interface>::GetInterfaceTable();
    }
};
// NOLINTEND(modernize-use-equals-default)
