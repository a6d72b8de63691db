#include "platform/windows/word/Automation.h"

#include "base/RuntimeError.h"
#include "platform/windows/system/Wide.h"

#include <memory>
#include <vector>

#include <oleauto.h>

namespace voxmate::windows_platform
{

namespace
{

// Numbers of run-time errors.
constexpr int NotSupported = 438;
constexpr int AutomationFailed = 440;
constexpr int ServerGone = 462;

std::string Taken(BSTR text)
{
    std::string narrow = text ? Narrow({text, ::SysStringLen(text)}) : std::string();
    ::SysFreeString(text);
    return narrow;
}

// A program that numbers its errors itself does so in the low word of a code of this facility.
RuntimeError ErrorOf(EXCEPINFO& exception)
{
    if (exception.pfnDeferredFillIn)
        exception.pfnDeferredFillIn(&exception);
    std::string description = Taken(exception.bstrDescription);
    ::SysFreeString(exception.bstrSource);
    ::SysFreeString(exception.bstrHelpFile);
    constexpr SCODE control = FACILITY_CONTROL;
    const int number = exception.wCode != 0                           ? exception.wCode
                       : HRESULT_FACILITY(exception.scode) == control ? HRESULT_CODE(exception.scode)
                                                                      : AutomationFailed;
    return {number, description.empty() ? "Automation error" : std::move(description)};
}

RuntimeError ErrorOf(HRESULT code)
{
    switch (code) {
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
        return {NotSupported, "Object doesn't support this property or method"};
    case HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE):
    case HRESULT_FROM_WIN32(RPC_S_CALL_FAILED):
    case RPC_E_DISCONNECTED:
        return {ServerGone, "The remote server machine does not exist or is unavailable"};
    default:
        return {AutomationFailed, "Automation error"};
    }
}

} // namespace

Automation::Value::Value(const Argument& argument)
{
    ::VariantInit(this);
    if (const auto* flag = std::get_if<bool>(&argument)) {
        vt = VT_BOOL;
        boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const auto* number = std::get_if<std::int32_t>(&argument)) {
        vt = VT_I4;
        lVal = *number;
    } else {
        const std::wstring text = Wide(std::get<std::string>(argument));
        vt = VT_BSTR;
        bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
}

Automation Automation::Create(const char* programId)
{
    CLSID type{};
    ComObject<IDispatch> object;
    if (FAILED(::CLSIDFromProgID(Wide(programId).c_str(), &type)) ||
        FAILED(::CoCreateInstance(type, nullptr, CLSCTX_SERVER, __uuidof(IDispatch), Out(object))) || !object)
        throw CannotCreateObject();
    return Automation(std::move(object));
}

void Automation::Invoke(const char* name, WORD kind, std::initializer_list<Argument> arguments, Value& result) const
{
    std::wstring wide = Wide(name);
    wchar_t* names = wide.data();
    DISPID member = 0;
    HRESULT code = object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &member);
    if (FAILED(code))
        throw ErrorOf(code);
    // The last argument comes first.
    std::vector<std::unique_ptr<Value>> values;
    std::vector<VARIANT> given;
    for (auto argument = std::rbegin(arguments); argument != std::rend(arguments); ++argument)
        given.push_back(*values.emplace_back(std::make_unique<Value>(*argument)));
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{given.data(), nullptr, static_cast<UINT>(given.size()), 0};
    if (kind == DISPATCH_PROPERTYPUT) {
        parameters.rgdispidNamedArgs = &put;
        parameters.cNamedArgs = 1;
    }
    EXCEPINFO exception{};
    code = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &result, &exception, nullptr);
    if (code == DISP_E_EXCEPTION)
        throw ErrorOf(exception);
    if (FAILED(code))
        throw ErrorOf(code);
}

Automation Automation::ObjectOf(Value& value)
{
    if (value.vt != VT_DISPATCH || !value.pdispVal)
        throw ErrorOf(E_UNEXPECTED);
    ComObject<IDispatch> object(value.pdispVal);
    value.vt = VT_EMPTY;
    return Automation(std::move(object));
}

void Automation::Set(const char* property, const Argument& value) const
{
    Value nothing;
    Invoke(property, DISPATCH_PROPERTYPUT, {value}, nothing);
}

Automation Automation::GetObject(const char* property) const
{
    Value value;
    Invoke(property, DISPATCH_PROPERTYGET, {}, value);
    return ObjectOf(value);
}

std::int32_t Automation::GetNumber(const char* property) const
{
    Value value;
    Invoke(property, DISPATCH_PROPERTYGET, {}, value);
    if (const HRESULT code = ::VariantChangeType(&value, &value, 0, VT_I4); FAILED(code))
        throw ErrorOf(code);
    return value.lVal;
}

std::string Automation::GetText(const char* property) const
{
    Value value;
    Invoke(property, DISPATCH_PROPERTYGET, {}, value);
    if (value.vt != VT_BSTR || !value.bstrVal)
        return {};
    return Narrow({value.bstrVal, ::SysStringLen(value.bstrVal)});
}

void Automation::Call(const char* method, std::initializer_list<Argument> arguments) const
{
    Value nothing;
    Invoke(method, DISPATCH_METHOD, arguments, nothing);
}

// Some objects have as a property with arguments what others have as a method.
Automation Automation::CallForObject(const char* method, std::initializer_list<Argument> arguments) const
{
    Value value;
    Invoke(method, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, value);
    return ObjectOf(value);
}

} // namespace voxmate::windows_platform
