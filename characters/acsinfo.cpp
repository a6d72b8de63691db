// acsinfo: describes a character file, exports its pictures and sounds, or checks it completely. See README.md.
#include "Describe.h"
#include "Export.h"
#include "Film.h"

#include "agent/file/PictureCheck.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>

using namespace voxmate;
using namespace voxmate::characters;

namespace
{

constexpr const char* Usage =
    "Usage: acsinfo FILE.acs                 says what is in it, as JSON\n"
    "       acsinfo --export FOLDER FILE.acs  writes its frames and sounds as files\n"
    "       acsinfo --film OUT.gif ANIMATION FILE.acs  shows one animation as an animated picture\n"
    "       acsinfo --check FILE.acs...       says of each file whether it is sound, or what is wrong\n";

void Print(FILE* to, const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), to);
}

// Opens a file and checks that all its images decode. Frames consist only of images, so all of them can then be drawn.
std::shared_ptr<const agent::AcsFile> OpenSound(const QString& path)
{
    auto file = agent::AcsFile::Open(path.toStdString());
    if (const std::string fault = agent::CheckPictures(*file).first; !fault.empty())
        throw std::runtime_error(fault);
    return file;
}

void WriteFilm(const QString& out, const QString& name, const QString& path)
{
    const auto file = OpenSound(path);
    const agent::Animation* animation = file->FindAnimation(name.toStdString());
    if (animation == nullptr)
        throw std::runtime_error(path.toStdString() + ": there is no animation \"" + name.toStdString() + "\"");
    const QByteArray film = Film(*file, *animation);
    QFile picture(out);
    if (!picture.open(QIODevice::WriteOnly) || picture.write(film) != film.size() || !picture.flush())
        throw std::runtime_error(out.toStdString() + ": cannot be written: " + picture.errorString().toStdString());
}

int Check(const QStringList& paths)
{
    int refused = 0;
    for (const QString& path : paths) {
        std::string answer = path.toStdString() + ": sound";
        try {
            OpenSound(path);
        } catch (const std::exception& error) {
            answer = error.what();
            refused = 1;
        }
        Print(stdout, answer + "\n");
    }
    return refused;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    try {
        if (arguments.size() >= 2 && arguments[0] == "--check")
            return Check(arguments.mid(1));
        if (arguments.size() == 3 && arguments[0] == "--export") {
            Export(*OpenSound(arguments[2]), arguments[1]);
            return 0;
        }
        if (arguments.size() == 4 && arguments[0] == "--film") {
            WriteFilm(arguments[1], arguments[2], arguments[3]);
            return 0;
        }
        if (arguments.size() == 1 && !arguments[0].startsWith("--")) {
            const auto file = OpenSound(arguments[0]);
            Print(stdout, Describe(*file, static_cast<std::uint64_t>(QFileInfo(arguments[0]).size())));
            return 0;
        }
    } catch (const std::exception& error) {
        Print(stderr, std::string("acsinfo: ") + error.what() + "\n");
        return 1;
    }
    Print(stderr, Usage);
    return 2;
}
