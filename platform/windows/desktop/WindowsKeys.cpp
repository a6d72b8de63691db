#include "platform/windows/desktop/WindowsKeys.h"

#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMetaObject>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

namespace voxmate::windows_platform
{

namespace
{

/// How long another program's text box may take to answer, and another program to copy what is selected.
constexpr UINT AnswerPatience = 500;
constexpr std::chrono::milliseconds CopyPatience{500};
constexpr std::chrono::milliseconds LookEvery{10};
/// More is not read aloud at the press of a key.
constexpr DWORD_PTR Longest = 16U << 20;

std::optional<DWORD_PTR> Ask(HWND window, UINT message, WPARAM wide, LPARAM last)
{
    DWORD_PTR answer = 0;
    if (::SendMessageTimeoutW(window, message, wide, last, SMTO_ABORTIFHUNG, AnswerPatience, &answer) == 0)
        return std::nullopt;
    return answer;
}

HWND Focus()
{
    GUITHREADINFO thread{};
    thread.cbSize = sizeof thread;
    HWND const front = ::GetForegroundWindow();
    if (!front || !::GetGUIThreadInfo(::GetWindowThreadProcessId(front, nullptr), &thread))
        return nullptr;
    return thread.hwndFocus;
}

/// What is selected in one of the system's own text boxes; nothing where the window is none.
std::optional<std::string> SelectedIn(HWND box)
{
    std::array<wchar_t, 64> name{};
    ::GetClassNameW(box, name.data(), static_cast<int>(name.size()));
    if (std::wstring_view(name.data()) != L"Edit")
        return std::nullopt;
    const std::optional<DWORD_PTR> length = Ask(box, WM_GETTEXTLENGTH, 0, 0);
    if (!length || *length > Longest)
        return std::string();
    // The system carries these two numbers across, as it does for all of its own messages to text boxes.
    DWORD first = 0;
    DWORD last = 0;
    if (!Ask(box, EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&last)))
        return std::string();
    std::wstring text(*length + 1, L'\0');
    const std::optional<DWORD_PTR> got = Ask(box, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(std::min<std::size_t>(got.value_or(0), text.size()));
    last = std::min<DWORD>(last, static_cast<DWORD>(text.size()));
    return first < last ? Narrow(std::wstring_view(text).substr(first, last - first)) : std::string();
}

INPUT Stroke(int key, bool up)
{
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = static_cast<WORD>(key);
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    return input;
}

/// Presses Ctrl+C for the program with the keyboard. The keys that the user still holds are let go first: with Alt it
/// would be another command.
void PressCopy()
{
    std::vector<INPUT> strokes;
    for (const int key : {VK_MENU, VK_SHIFT, VK_LWIN, VK_RWIN, VK_CONTROL}) {
        if (::GetAsyncKeyState(key) < 0)
            strokes.push_back(Stroke(key, true));
    }
    for (const auto& [key, up] :
         {std::pair<int, bool>{VK_CONTROL, false}, {'C', false}, {'C', true}, {VK_CONTROL, true}})
        strokes.push_back(Stroke(key, up));
    ::SendInput(static_cast<UINT>(strokes.size()), strokes.data(), sizeof(INPUT));
}

} // namespace

std::optional<KeyCode> ParseTrigger(std::string_view trigger)
{
    KeyCode code;
    for (std::size_t plus = trigger.find('+'); plus != std::string_view::npos; plus = trigger.find('+')) {
        const std::string_view part = trigger.substr(0, plus);
        const unsigned modifier = part == "Ctrl"    ? MOD_CONTROL
                                  : part == "Alt"   ? MOD_ALT
                                  : part == "Shift" ? MOD_SHIFT
                                  : part == "Meta"  ? MOD_WIN
                                                    : 0;
        if (modifier == 0)
            return std::nullopt;
        code.modifiers |= modifier;
        trigger.remove_prefix(plus + 1);
    }
    // The code of a letter's key is the capital letter.
    if (trigger.size() != 1 || trigger[0] < 'A' || trigger[0] > 'Z')
        return std::nullopt;
    code.key = static_cast<unsigned char>(trigger[0]);
    return code;
}

WindowsKeys::WindowsKeys()
    : window_(L"Voxmate keys",
              [this](unsigned message, std::uintptr_t number, std::intptr_t /*last*/) -> std::optional<std::intptr_t> {
                  if (message != WM_HOTKEY || number >= held_.size())
                      return std::nullopt;
                  QMetaObject::invokeMethod(
                      QCoreApplication::instance(),
                      [this, name = held_[number].Name] {
                          if (Pressed)
                              Pressed(name);
                      },
                      Qt::QueuedConnection);
                  return 0;
              })
{
}

WindowsKeys::~WindowsKeys()
{
    Release();
}

void WindowsKeys::Release()
{
    for (std::size_t number = 0; number < held_.size(); ++number)
        ::UnregisterHotKey(static_cast<HWND>(window_.Handle()), static_cast<int>(number));
    held_.clear();
}

void WindowsKeys::Hold(const std::vector<Key>& keys)
{
    if (keys == held_)
        return;
    Release();
    held_ = keys;
    for (std::size_t number = 0; number < keys.size(); ++number) {
        const std::optional<KeyCode> code = ParseTrigger(keys[number].Trigger);
        const Outcome outcome = !window_.Handle() || !code ? Outcome::None
                                : ::RegisterHotKey(static_cast<HWND>(window_.Handle()), static_cast<int>(number),
                                                   code->modifiers | MOD_NOREPEAT, code->key)
                                    ? Outcome::Held
                                    : Outcome::Taken;
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [this, key = keys[number], outcome] {
                if (Answered)
                    Answered(key.Name, outcome, key.Trigger);
            },
            Qt::QueuedConnection);
    }
}

std::string WindowsKeys::SelectedText()
{
    HWND const focus = Focus();
    if (!focus)
        return {};
    if (const std::optional<std::string> selected = SelectedIn(focus))
        return *selected;
    QClipboard* const clipboard = QGuiApplication::clipboard();
    const QString before = clipboard->text();
    const DWORD number = ::GetClipboardSequenceNumber();
    PressCopy();
    const auto last = std::chrono::steady_clock::now() + CopyPatience;
    while (::GetClipboardSequenceNumber() == number && std::chrono::steady_clock::now() < last)
        std::this_thread::sleep_for(LookEvery);
    if (::GetClipboardSequenceNumber() == number)
        return {};
    std::string text = clipboard->text().toStdString();
    clipboard->setText(before);
    return text;
}

} // namespace voxmate::windows_platform
