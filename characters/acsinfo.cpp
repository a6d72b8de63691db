// acsinfo: tells what is in a character file, takes its pictures and sounds out, checks it wholly. See README.md.
#include "Describe.h"
#include "Export.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>
#include <exception>
#include <set>
#include <tuple>

using namespace voxmate;
using namespace voxmate::characters;

namespace
{

constexpr const char* Usage = "Usage: acsinfo FILE.acs                 says what is in it, as JSON\n"
                              "       acsinfo --export FOLDER FILE.acs  writes its frames and sounds as files\n"
                              "       acsinfo --check FILE.acs...       decodes every image and says what is wrong\n";

void Print(FILE* to, const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), to);
}

// Every image, and those that several entries share once. Frames are made of nothing else, so they can be drawn then.
void DecodeAll(const agent::AcsFile& file)
{
    std::set<std::tuple<std::uint32_t, std::uint32_t, std::uint16_t, std::uint16_t>> decoded;
    for (std::size_t i = 0; i < file.ImageCount(); ++i) {
        const agent::StoredImage& stored = file.Stored(i);
        if (decoded.insert({stored.offset, stored.size, stored.width, stored.height}).second)
            file.DecodeImage(i);
    }
}

int Check(const QStringList& paths)
{
    int refused = 0;
    for (const QString& path : paths) {
        std::string answer = path.toStdString() + ": sound";
        try {
            DecodeAll(*agent::AcsFile::Open(path.toStdString()));
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
            Export(*agent::AcsFile::Open(arguments[2].toStdString()), arguments[1]);
            return 0;
        }
        if (arguments.size() == 1 && !arguments[0].startsWith("--")) {
            const auto file = agent::AcsFile::Open(arguments[0].toStdString());
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
