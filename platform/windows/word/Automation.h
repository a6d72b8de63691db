// Another program's objects by their automation (IDispatch): properties and methods called by name.
#pragma once

#include "platform/windows/system/ComObject.h"
#include "platform/windows/system/WindowsApi.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <variant>

#include <oaidl.h>

namespace voxmate::windows_platform
{

/// What is given to a property or method.
using Argument = std::variant<bool, std::int32_t, std::string>;

/// All calls are made on one thread, which has initialised COM. Each raises the run-time error that the other program
/// reports, by its own number and words; otherwise 462 when that program is no longer there, 438 when it has nothing of
/// that name, and 440 "Automation error".
class Automation
{
public:
    /// Creates the object of that name ("Word.Application"); raises run-time error 429 when there is none.
    static Automation Create(const char* programId);

    void Set(const char* property, const Argument& value) const;
    Automation GetObject(const char* property) const;
    std::int32_t GetNumber(const char* property) const;
    /// Empty when there is no text.
    std::string GetText(const char* property) const;
    void Call(const char* method, std::initializer_list<Argument> arguments = {}) const;
    Automation CallForObject(const char* method, std::initializer_list<Argument> arguments = {}) const;

private:
    explicit Automation(ComObject<IDispatch> object) : object_(std::move(object)) {}

    /// Clears itself.
    struct Value : VARIANT {
        Value() { ::VariantInit(this); }
        explicit Value(const Argument& argument);
        ~Value() { ::VariantClear(this); }
        Value(const Value&) = delete;
        Value& operator=(const Value&) = delete;
    };
    void Invoke(const char* name, WORD kind, std::initializer_list<Argument> arguments, Value& result) const;
    static Automation ObjectOf(Value& value);

    ComObject<IDispatch> object_;
};

} // namespace voxmate::windows_platform
