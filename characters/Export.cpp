#include "Export.h"

#include "Source.h"
#include "ToImage.h"

#include <QDir>
#include <QFile>
#include <QHash>

namespace voxmate::characters
{

namespace
{

QString FileName(const std::string& animation)
{
    QString name = QString::fromStdString(animation);
    for (QChar& c : name)
        if (!c.isLetterOrNumber() && !QStringLiteral("_-. ").contains(c))
            c = '_';
    return name;
}

QString Numbered(const QString& name, std::size_t number, const QString& extension)
{
    return QString("%1_%2.%3").arg(name).arg(number, 3, 10, QChar('0')).arg(extension);
}

void WriteBytes(const QString& path, std::span<const std::uint8_t> bytes)
{
    QFile out(path);
    const auto size = static_cast<qint64>(bytes.size());
    if (!out.open(QIODevice::WriteOnly) || out.write(reinterpret_cast<const char*>(bytes.data()), size) != size ||
        !out.flush())
        throw SourceError(path + ": cannot be written: " + out.errorString());
}

} // namespace

void Export(const agent::AcsFile& file, const QString& folder)
{
    const QDir target(folder);
    if (!target.mkpath("."))
        throw SourceError(folder + ": the folder cannot be made");
    QHash<QString, int> uses; // by lower-case name, because some file systems ignore case
    for (const agent::Animation& animation : file.animations) {
        QString name = FileName(animation.name);
        if (const int use = ++uses[name.toLower()]; use > 1)
            name += QString("~%1").arg(use);
        for (std::size_t i = 0; i < animation.frames.size(); ++i) {
            const QString path = target.filePath(Numbered(name, i, "png"));
            if (!ToImage(agent::ComposeFrame(file, animation.frames[i], -1)).save(path, "PNG"))
                throw SourceError(path + ": cannot be written");
        }
    }
    for (std::size_t i = 0; i < file.SoundCount(); ++i)
        WriteBytes(target.filePath(Numbered("sound", i, "wav")), file.Sound(i));
}

} // namespace voxmate::characters
