#include "platform/qt/QtWindowSystem.h"

#include "platform/qt/MessageBox.h"
#include "platform/qt/QtFormPeer.h"
#include "platform/qt/QtText.h"

#include <QApplication>
#include <QClipboard>

namespace voxmate::qt
{

QtWindowSystem::QtWindowSystem(const std::string& shareDirectory)
    : icons_(ToQt(shareDirectory) + QStringLiteral("/icons"))
{
    QApplication::setWindowIcon(icons_.Icon(QStringLiteral("voxmate")));
}

std::unique_ptr<FormPeer> QtWindowSystem::CreateFormPeer(Form& form)
{
    auto peer = std::make_unique<QtFormPeer>(form, icons_, main_);
    if (!form.MenuBar.empty())
        main_ = peer->Window();
    return peer;
}

int QtWindowSystem::MsgBox(const std::string& text, int style, const std::string& title)
{
    return ShowMessageBox(main_, &icons_, text, style, title);
}

void QtWindowSystem::DoEvents()
{
    QCoreApplication::processEvents();
}

void QtWindowSystem::ClipboardClear()
{
    QGuiApplication::clipboard()->clear();
}

void QtWindowSystem::ClipboardSetText(const std::string& text)
{
    QGuiApplication::clipboard()->setText(ToQt(text));
}

bool QtWindowSystem::Shell_NotifyIconA(std::uint32_t message, const TrayIconData& data)
{
    return tray_.Notify(message, data, main_);
}

} // namespace voxmate::qt
