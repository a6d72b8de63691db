// Word by its automation: the calls that reach an object that stands in for it, their order, and its errors.
#include "platform/windows/word/AutomatedWord.h"

#include "base/RuntimeError.h"
#include "platform/windows/system/ComObject.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <oleauto.h>

namespace voxmate::windows_platform
{
namespace
{

using ::testing::ElementsAre;

constexpr CLSID StandInClass{0x5B1C2D3E, 0x4F50, 0x4A61, {0x8B, 0x72, 0x9C, 0x83, 0xAD, 0x94, 0xBE, 0xA5}};
constexpr const wchar_t* ClassText = L"{5B1C2D3E-4F50-4A61-8B72-9C83AD94BEA5}";

/// What was called, and what the stand-in answers.
struct Record {
    std::mutex mutex;
    std::vector<std::string> log;
    std::u16string text = u"One paragraph.\rTw\u00F6 more.\r";
    std::atomic<bool> openWaits = false; ///< a document takes until this is false
    SCODE openFails = 0;                 ///< a code, with the words "Told by Word"
    int objects = 0;                     ///< those that exist

    void Add(const std::string& line)
    {
        const std::lock_guard lock(mutex);
        log.push_back(line);
    }
    std::vector<std::string> Lines()
    {
        const std::lock_guard lock(mutex);
        return log;
    }
};
Record* record = nullptr;

/// Any of Word's objects: it knows all names, and logs what is called with what.
class Object final : public IDispatch
{
public:
    explicit Object(std::string name, std::int32_t from = 0, std::int32_t to = 0)
        : name_(std::move(name)), from_(from), to_(to)
    {
        ++record->objects;
    }
    virtual ~Object() { --record->objects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID type, void** object) override
    {
        if (type != __uuidof(IUnknown) && type != __uuidof(IDispatch))
            return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --references_;
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        static const std::vector<std::wstring> known{
            L"Visible", L"Documents", L"Open", L"ActiveDocument", L"Range", L"End", L"Text", L"Close", L"Quit"};
        for (std::size_t i = 0; count == 1 && i < known.size(); ++i) {
            if (known[i] == names[0]) {
                ids[0] = static_cast<DISPID>(i);
                return S_OK;
            }
        }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD kind, DISPPARAMS* given, VARIANT* result,
                                     EXCEPINFO* exception, UINT*) override
    {
        static const std::vector<std::string> names{"Visible", "Documents", "Open", "ActiveDocument", "Range", "End",
                                                    "Text",    "Close",     "Quit"};
        const std::string& name = names.at(static_cast<std::size_t>(member));
        std::string line = name_ + "." + name;
        for (UINT i = given->cArgs; i > 0; --i) {
            VARIANT text{};
            ::VariantChangeType(&text, &given->rgvarg[i - 1], VARIANT_ALPHABOOL, VT_BSTR);
            line += (kind & DISPATCH_PROPERTYPUT ? " = " : " ") + Narrow(text.bstrVal);
            ::VariantClear(&text);
        }
        record->Add(line);
        if (name == "Open") {
            while (record->openWaits)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (record->openFails != 0) {
                exception->scode = record->openFails;
                exception->bstrDescription = ::SysAllocString(L"Told by Word");
                return DISP_E_EXCEPTION;
            }
            return Give(new Object("Opened"), result);
        }
        if (name == "Documents")
            return Give(new Object("Documents"), result);
        if (name == "ActiveDocument")
            return Give(new Object("Document"), result);
        const auto size = static_cast<std::int32_t>(record->text.size());
        if (name == "Range")
            return Give(given->cArgs == 2 ? new Object("Range", given->rgvarg[1].lVal, given->rgvarg[0].lVal)
                                          : new Object("Range", 0, size),
                        result);
        if (name == "End") {
            result->vt = VT_I4;
            result->lVal = to_;
        }
        if (name == "Text") {
            const std::u16string part =
                record->text.substr(static_cast<std::size_t>(from_), static_cast<std::size_t>(to_ - from_));
            result->vt = VT_BSTR;
            result->bstrVal = part.empty() ? nullptr
                                           : ::SysAllocStringLen(reinterpret_cast<const wchar_t*>(part.data()),
                                                                 static_cast<UINT>(part.size()));
        }
        return S_OK;
    }

private:
    static HRESULT Give(Object* made, VARIANT* result)
    {
        if (!result) {
            made->Release();
            return S_OK;
        }
        result->vt = VT_DISPATCH;
        result->pdispVal = made;
        return S_OK;
    }

    const std::string name_;
    const std::int32_t from_;
    const std::int32_t to_;
    std::atomic<ULONG> references_ = 1;
};

class Factory final : public IClassFactory
{
public:
    virtual ~Factory() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID type, void** object) override
    {
        if (type != __uuidof(IUnknown) && type != __uuidof(IClassFactory))
            return E_NOINTERFACE;
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID type, void** object) override
    {
        record->Add("created");
        const ComObject<Object> made(new Object("Word"));
        return made->QueryInterface(type, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL) override { return S_OK; }
};

class AutomatedWordTest : public ::testing::Test
{
protected:
    Record own;
    AutomatedWord word;

    AutomatedWordTest()
    {
        record = &own;
        ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        ::CoRegisterClassObject(StandInClass, &factory_, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registered_);
        ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\Word.Application\\CLSID", nullptr, REG_SZ, ClassText,
                          static_cast<DWORD>((std::wcslen(ClassText) + 1) * sizeof(wchar_t)));
    }
    ~AutomatedWordTest() override
    {
        Remove();
        const auto last = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (own.objects > 0 && std::chrono::steady_clock::now() < last)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(own.objects, 0);
        ::CoRevokeClassObject(registered_);
        ::CoUninitialize();
    }
    static void Remove() { ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\Word.Application"); }
    static bool GoOn() { return true; }

private:
    Factory factory_;
    DWORD registered_ = 0;
};

TEST_F(AutomatedWordTest, ADocumentIsReadStepByStep)
{
    const std::unique_ptr<WordApplication> application = word.CreateWord();
    application->SetVisible(false);
    application->Open("C:\\B\xC3\xBC"
                      "cher\\a.doc",
                      GoOn);
    EXPECT_EQ(application->RangeEnd(), 25);
    EXPECT_EQ(application->RangeText(15, 19), "Tw\xC3\xB6 ");
    EXPECT_EQ(application->RangeText(3, 3), "");
    application->Close();
    application->Quit();
    EXPECT_THAT(own.Lines(),
                ElementsAre("created", "Word.Visible = False", "Word.Documents",
                            "Documents.Open C:\\B\xC3\xBC"
                            "cher\\a.doc",
                            "Word.ActiveDocument", "Document.Range", "Range.End", "Document.Range 15 19", "Range.Text",
                            "Document.Range 3 3", "Range.Text", "Document.Close", "Word.Quit"));
}

TEST_F(AutomatedWordTest, WithoutWordTheErrorIs429)
{
    Remove();
    try {
        word.CreateWord();
        FAIL() << "created";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 429);
        EXPECT_EQ(error.Description, "ActiveX component can't create object");
    }
}

TEST_F(AutomatedWordTest, AFailedCommandHasWordsOwnNumberAndWords)
{
    own.openFails = static_cast<SCODE>(0x800A1066);
    const std::unique_ptr<WordApplication> application = word.CreateWord();
    try {
        application->Open("a.doc", GoOn);
        FAIL() << "opened";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 4198);
        EXPECT_EQ(error.Description, "Told by Word");
    }
    application->Quit();
    EXPECT_EQ(own.Lines().back(), "Word.Quit");
}

TEST_F(AutomatedWordTest, TheProgramGoesOnWhileADocumentOpens)
{
    own.openWaits = true;
    int asked = 0;
    const std::unique_ptr<WordApplication> application = word.CreateWord();
    application->Open("a.doc", [&] {
        own.openWaits = ++asked < 3;
        return true;
    });
    EXPECT_GE(asked, 3);
    EXPECT_EQ(application->RangeEnd(), 25);
}

TEST_F(AutomatedWordTest, AnOpeningThatIsGivenUpIsNotWaitedForAndWordEndsAfterIt)
{
    own.openWaits = true;
    {
        const std::unique_ptr<WordApplication> application = word.CreateWord();
        try {
            application->Open("a.doc", [] { return false; });
            FAIL() << "opened";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number, 4198);
        }
        application->Quit();
    }
    EXPECT_EQ(own.Lines().back(), "Documents.Open a.doc");
    own.openWaits = false;
    const auto last = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (own.Lines().back() != "Word.Quit" && std::chrono::steady_clock::now() < last)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(own.Lines().back(), "Word.Quit");
}

TEST_F(AutomatedWordTest, WordEndsWithTheObject)
{
    word.CreateWord().reset();
    EXPECT_THAT(own.Lines(), ElementsAre("created", "Word.Quit"));
}

} // namespace
} // namespace voxmate::windows_platform
