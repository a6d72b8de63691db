#include "qt/dialogs/RecentFolders.h"

#include "qt/widgets/QtText.h"

#include <QDir>
#include <QStringList>

namespace voxmate::qt
{

namespace
{

constexpr const char* Name = "open.folders"; // in the state store

} // namespace

std::string RecentFolders::Lines() const
{
    return state_ ? state_->Get(Name) : lines_;
}

std::vector<std::string> RecentFolders::Existing() const
{
    std::vector<std::string> folders;
    for (const QString& folder : ToQt(Lines()).split(u'\n', Qt::SkipEmptyParts)) {
        if (folders.size() < Most && QDir(folder).exists())
            folders.push_back(FromQt(folder));
    }
    return folders;
}

void RecentFolders::Put(const std::string& folder)
{
    const QString latest = ToQt(folder);
    // A name with a line's end in it cannot be kept in a line.
    if (latest.contains(u'\n'))
        return;
    QStringList folders = ToQt(Lines()).split(u'\n', Qt::SkipEmptyParts);
    folders.removeAll(latest);
    folders.prepend(latest);
    lines_ = FromQt(QStringList(folders.mid(0, qsizetype(Most))).join(u'\n'));
    if (state_)
        state_->Set(Name, lines_);
}

} // namespace voxmate::qt
