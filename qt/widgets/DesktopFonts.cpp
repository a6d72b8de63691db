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

/// The desktop's name among those of the session, as the toolkit looks for it.
bool IsKde()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QStringLiteral("KDE"));
}

QString SettingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/kdeglobals");
}

/// A font is written as its parts with commas between them, which are read as a list.
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

// The file is replaced by another of its name when it is saved: the folder tells of that, the file of being written
// into.
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
