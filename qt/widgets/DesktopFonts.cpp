#include "qt/widgets/DesktopFonts.h"

#include <QApplication>
#include <QFileInfo>
#include <QFont>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

#include <initializer_list>

namespace voxmate::qt
{

namespace
{

/// Looks for the desktop's name in the session's list, as the toolkit does.
bool IsKde()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QStringLiteral("KDE"));
}

QString SettingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/kdeglobals");
}

/// A font is stored as parts separated by commas, which QSettings reads as a list.
QString FontText(const QSettings& settings, const char* key)
{
    return settings.value(QLatin1String(key)).toStringList().join(u',');
}

} // namespace

DesktopFonts::DesktopFonts() : file_(IsKde() ? SettingsFile() : QString())
{
    if (file_.isEmpty())
        return;
    const QSettings settings(file_, QSettings::IniFormat);
    general_ = FontText(settings, "font");
    menus_ = FontText(settings, "menuFont");
    const auto changed = [this] {
        Watch();
        Read();
    };
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, changed);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, changed);
    Watch();
}

// When the settings are saved, the file is either replaced by another of the same name, which the watch on the folder
// reports, or rewritten in place, which the watch on the file reports.
void DesktopFonts::Watch()
{
    watcher_.addPaths({QFileInfo(file_).path(), file_});
}

void DesktopFonts::Read()
{
    const QSettings settings(file_, QSettings::IniFormat);
    const auto take = [&settings](const char* key, QString& known, std::initializer_list<const char*> classes) {
        const QString text = FontText(settings, key);
        QFont font;
        if (text.isEmpty() || text == known || !font.fromString(text))
            return;
        known = text;
        for (const char* name : classes)
            QApplication::setFont(font, name);
    };
    take("font", general_, {nullptr});
    take("menuFont", menus_, {"QMenu", "QMenuBar"});
}

} // namespace voxmate::qt
