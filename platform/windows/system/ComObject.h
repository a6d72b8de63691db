// Objects of other programs and of Windows, by its component model (COM).
#pragma once

#include <utility>

namespace voxmate::windows_platform
{

/// One reference to an object, given back with it; or none.
template <class T>
class ComObject
{
public:
    ComObject() = default;
    /// Takes over a reference.
    explicit ComObject(T* object) : object_(object) {}
    ComObject(ComObject&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComObject& operator=(ComObject&& other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComObject()
    {
        if (object_)
            object_->Release();
    }

    explicit operator bool() const { return object_ != nullptr; }
    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    void reset() { *this = ComObject(); }

private:
    template <class>
    friend class Out;

    T* object_ = nullptr;
};

/// What a call gives by the address of a pointer becomes that object: `Call(Out(object))`. There must be none before.
template <class T>
class Out
{
public:
    explicit Out(ComObject<T>& object) : object_(object) {}
    operator T**() { return &object_.object_; }
    operator void**() { return reinterpret_cast<void**>(&object_.object_); }

private:
    ComObject<T>& object_;
};

} // namespace voxmate::windows_platform
