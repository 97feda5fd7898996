#pragma once
// An owning COM interface pointer: released once, whatever path a call takes out.
#include <unknwn.h>

#include <utility>

namespace sw::excel::com {

template <typename Interface>
class ComPtr {
 public:
  ComPtr() = default;
  // Takes over a reference the caller already holds (as a creating or getting call hands it out).
  static ComPtr Adopt(Interface* pointer) {
    ComPtr owned;
    owned.pointer_ = pointer;
    return owned;
  }
  // Adds a reference of its own.
  static ComPtr Share(Interface* pointer) {
    if (pointer != nullptr) pointer->AddRef();
    return Adopt(pointer);
  }
  ComPtr(const ComPtr& other) : pointer_(other.pointer_) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPtr() { Reset(); }

  void Reset() {
    if (pointer_ != nullptr) std::exchange(pointer_, nullptr)->Release();
  }
  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  // For a call that fills in a new reference; whatever was held before is released first.
  Interface** Receive() {
    Reset();
    return &pointer_;
  }

 private:
  Interface* pointer_ = nullptr;
};

// The object's identity: the same pointer for every interface pointer to the same object.
inline ComPtr<IUnknown> Identity(IUnknown* object) {
  ComPtr<IUnknown> identity;
  if (object != nullptr) object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.Receive()));
  return identity;
}

}  // namespace sw::excel::com
