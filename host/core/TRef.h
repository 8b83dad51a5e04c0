#pragma once

#include <utility>

// Holds one reference to a counted object. Who holds an object holds it by this; AddRef and Release
// are called elsewhere only where a reference is handed out through a pointer.
template <class T>
class TRef {
  public:
    TRef() = default;
    TRef(T* object) : object_(object) {  // NOLINT: a pointer becomes a held reference
        if (object_) object_->AddRef();
    }
    TRef(const TRef& other) : TRef(other.object_) {}
    TRef(TRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    TRef(const TRef<U>& other) : TRef(static_cast<T*>(other.Get())) {}  // NOLINT
    ~TRef() {
        if (object_) object_->Release();
    }
    TRef& operator=(TRef other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    // Takes over a reference that an out argument delivered.
    static TRef Adopt(T* object) {
        TRef held;
        held.object_ = object;
        return held;
    }
    // For out arguments: drops what is held, then takes over the delivered reference.
    T** Receive() {
        *this = TRef();
        return &object_;
    }
    // Gives the reference away; the caller owns it.
    T* Detach() { return std::exchange(object_, nullptr); }

    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

  private:
    T* object_ = nullptr;
};

// Asks `object` for the interface I (whose id is I::kId); empty when it has none.
template <class I, class Object>
TRef<I> QueryFor(Object* object) {
    void* found = nullptr;
    if (!object || object->QueryInterface(I::kId, &found) != 0) return {};
    return TRef<I>::Adopt(static_cast<I*>(found));
}
