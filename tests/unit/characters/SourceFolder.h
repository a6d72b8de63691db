// A small character's source in a temporary folder. Tests change it before it is read.
#pragma once

#include "characters/Source.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace voxmate::characters::test
{

class SourceFolder
{
public:
    QString drawing = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 40 30">
<g id="body"><circle cx="20" cy="16" r="10" fill="#ff0000"/></g>
<g id="arm"><rect x="4" y="12" width="6" height="4" fill="#0000ff"/></g>
<g id="mouth"><rect x="17" y="18" width="6" height="1" fill="#000000"/></g>
<g id="open"><rect x="17" y="17" width="6" height="3" fill="#ffffff"/></g>
</svg>)";
    QString description = R"({
"names": [{"name": "Dot"}], "guid": "{00112233-4455-6677-8899-aabbccddeeff}", "drawing": "dot.svg",
"parts": [
 {"name": "all"},
 {"name": "body", "parent": "all", "pivot": [20, 16], "drawing": "body"},
 {"name": "mouth", "parent": "body", "variants": {"shut": "mouth", "open": "open"}, "show": "shut"},
 {"name": "left", "parent": "body", "pivot": [10, 14], "drawing": "arm"},
 {"name": "right", "parent": "body", "mirrorOf": "left"}],
"mouths": {"part": "mouth", "closed": "shut", "wide1": "open", "wide2": "open", "wide3": "open", "wide4": "open",
 "medium": "open", "narrow": "open"},
"poses": {"up": {"left": {"rotate": 40}}},
"animations": {"RestPose": {"keys": [], "speaks": true}, "Hop": {"keys": [{"at": 12, "all": {"move": [0, -4]}},
 {"at": 24, "pose": "rest"}]}},
"states": {"Speaking": ["RestPose"]}
})";

    void Replace(const QString& old, const QString& with)
    {
        ASSERT_TRUE(description.contains(old)) << old.toStdString();
        description.replace(old, with);
    }
    Source Read() const
    {
        Write("dot.svg", drawing);
        Write("character.json", description);
        return ReadSource(folder_.path());
    }
    QString Path() const { return folder_.path(); }
    // Puts a file beside the description.
    void Write(const QString& name, const QString& text) const
    {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
    // The message of the SourceError that `work` raises, without the folder.
    template <typename Work>
    std::string ErrorOf(Work work) const
    {
        try {
            work();
        } catch (const SourceError& error) {
            return QString(error.what()).remove(folder_.path() + "/").toStdString();
        }
        return "no error";
    }

private:
    QTemporaryDir folder_;
};

} // namespace voxmate::characters::test
