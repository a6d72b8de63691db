// The system's own dialogs for files and folders (IFileDialog).
#include "qt/dialogs/DesktopFileDialog.h"

#include "platform/windows/system/ComObject.h"
#include "platform/windows/system/WindowsApi.h"

#include <QCoreApplication>
#include <QDir>
#include <QPointer>
#include <QThread>
#include <QWindow>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <shobjidl.h>

namespace voxmate::windows_platform
{

namespace
{

template <class T>
ComObject<T> Create(const CLSID& type)
{
    ComObject<T> object;
    ::CoCreateInstance(type, nullptr, CLSCTX_INPROC_SERVER, __uuidof(T), Out(object));
    return object;
}

/// The question as the dialog takes it. The texts live as long as this.
struct Wording {
    std::wstring title;
    std::wstring folder;
    std::wstring name;
    std::wstring extension; ///< added to a name that has none
    std::vector<std::pair<std::wstring, std::wstring>> kinds;
    bool wantsFolder = false;
    bool saves = false;
};

Wording WordingOf(const qt::FileQuestion& question)
{
    Wording wording;
    wording.title = question.title.toStdWString();
    wording.folder = QDir::toNativeSeparators(question.folder).toStdWString();
    wording.name = question.saveAs.toStdWString();
    wording.wantsFolder = question.wantsFolder;
    wording.saves = !question.saveAs.isEmpty();
    for (const qt::FileQuestion::Kind& kind : question.kinds)
        wording.kinds.emplace_back(kind.name.toStdWString(), kind.patterns.join(u';').toStdWString());
    const qsizetype dot = question.saveAs.lastIndexOf(u'.');
    if (dot >= 0)
        wording.extension = question.saveAs.mid(dot + 1).toStdWString();
    return wording;
}

/// What the dialog came to: the path, or an empty one; nothing where it could not be shown.
std::optional<QString> Show(IFileDialog& dialog, const Wording& wording, HWND over)
{
    std::vector<COMDLG_FILTERSPEC> kinds;
    for (const auto& [name, patterns] : wording.kinds)
        kinds.push_back({name.c_str(), patterns.c_str()});
    dialog.SetTitle(wording.title.c_str());
    if (!kinds.empty())
        dialog.SetFileTypes(static_cast<UINT>(kinds.size()), kinds.data());
    if (wording.saves) {
        dialog.SetFileName(wording.name.c_str());
        dialog.SetDefaultExtension(wording.extension.c_str());
    }
    ComObject<IShellItem> folder;
    if (::SHCreateItemFromParsingName(wording.folder.c_str(), nullptr, __uuidof(IShellItem), Out(folder)) == S_OK)
        dialog.SetFolder(folder.get());
    FILEOPENDIALOGOPTIONS options = 0;
    dialog.GetOptions(&options);
    options |= FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR;
    if (wording.wantsFolder)
        options |= FOS_PICKFOLDERS;
    if (wording.saves)
        options |= FOS_OVERWRITEPROMPT;
    dialog.SetOptions(options);
    const HRESULT shown = dialog.Show(over);
    if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED))
        return QString();
    ComObject<IShellItem> item;
    if (shown != S_OK || dialog.GetResult(Out(item)) != S_OK)
        return std::nullopt;
    wchar_t* path = nullptr;
    if (item->GetDisplayName(SIGDN_FILESYSPATH, &path) != S_OK)
        return std::nullopt;
    QString text = QString::fromWCharArray(path);
    ::CoTaskMemFree(path);
    return text;
}

std::optional<QString> Run(const Wording& wording, HWND over)
{
    if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)))
        return std::nullopt;
    std::optional<QString> path;
    if (wording.saves) {
        if (const auto dialog = Create<IFileSaveDialog>(CLSID_FileSaveDialog))
            path = Show(*dialog, wording, over);
    } else if (const auto dialog = Create<IFileOpenDialog>(CLSID_FileOpenDialog)) {
        path = Show(*dialog, wording, over);
    }
    ::CoUninitialize();
    return path;
}

/// On a thread of its own, because the dialog runs an event loop of the system's that knows nothing of the toolkit's.
class NativeFileDialog : public qt::DesktopFileDialog
{
public:
    void Ask(const qt::FileQuestion& question, QWindow* over) override
    {
        HWND const owner = over ? reinterpret_cast<HWND>(over->winId()) : nullptr;
        QThread* const thread =
            QThread::create([receiver = QPointer<NativeFileDialog>(this), wording = WordingOf(question), owner] {
                const std::optional<QString> path = Run(wording, owner);
                QMetaObject::invokeMethod(
                    qApp,
                    [receiver, path] {
                        if (receiver)
                            receiver->Finish(path);
                    },
                    Qt::QueuedConnection);
            });
        QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        thread->start();
    }

private:
    void Finish(const std::optional<QString>& path)
    {
        if (path)
            Q_EMIT Answered(*path);
        else
            Q_EMIT Failed();
    }
};

} // namespace

} // namespace voxmate::windows_platform

namespace voxmate::qt
{

std::unique_ptr<DesktopFileDialog> DesktopFileDialog::Make()
{
    return std::make_unique<windows_platform::NativeFileDialog>();
}

} // namespace voxmate::qt
