// acsbuild: makes a character file from a folder that contains its drawing and its character.json. See README.md.
#include "Assemble.h"
#include "Drawing.h"
#include "Sheet.h"
#include "Source.h"

#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QSaveFile>
#include <QTextStream>

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>

using namespace voxmate;
using namespace voxmate::characters;

namespace
{

constexpr const char* Usage = "Usage: acsbuild SOURCE-FOLDER OUT.acs\n"
                              "       acsbuild --sheet FILE.acs OUT.png [light|dark|checkered [SCALE [ANIMATION]]]\n"
                              "       acsbuild --contact FILE.acs OUT.png\n";

void Build(const QString& folder, const QString& out)
{
    const Source source = ReadSource(folder);
    const Drawing drawing(source);
    double error = 0;
    const agent::AcsDescription description = Assemble(source, drawing, error);
    const std::vector<std::uint8_t> bytes = agent::WriteAcs(description);
    // An invalid file must not be written, so the reader checks it first.
    agent::AcsFile::Parse(bytes, out.toStdString());
    QSaveFile file(out);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size())) < 0 ||
        !file.commit())
        throw SourceError(out + ": cannot be written: " + file.errorString());
    std::size_t frames = 0;
    for (const agent::Animation& animation : description.animations)
        frames += animation.frames.size();
    QTextStream(stdout) << QString("%1: %2 animations, %3 frames, %4 images, %5 bytes, mean colour error %6\n")
                               .arg(out)
                               .arg(description.animations.size())
                               .arg(frames)
                               .arg(description.images.size())
                               .arg(bytes.size())
                               .arg(error, 0, 'f', 2);
}

} // namespace

int main(int argc, char** argv)
{
    // Rendering needs no display. The labels of a sheet need fonts, which the "offscreen" platform provides without
    // one.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt's warnings about missing parts of a desktop's environment do not affect pictures.
    QLoggingCategory::setFilterRules("default.warning=false");
    const bool sheet = argc >= 4 && argc <= 7 && std::string_view(argv[1]) == "--sheet";
    const bool contact = argc == 4 && std::string_view(argv[1]) == "--contact";
    std::unique_ptr<QCoreApplication> application;
    if (sheet || contact)
        application = std::make_unique<QGuiApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    try {
        if (sheet || contact) {
            const QImage picture =
                contact ? DrawContactSheet(arguments[1])
                        : DrawSheet(arguments[1], arguments.value(3, "light"),
                                    std::clamp(arguments.value(4, "1").toInt(), 1, 4), arguments.value(5));
            if (!picture.save(arguments[2]))
                throw SourceError(arguments[2] + ": cannot be written");
            return 0;
        }
        if (arguments.size() == 2 && !arguments[0].startsWith("--")) {
            Build(arguments[0], arguments[1]);
            return 0;
        }
    } catch (const std::exception& error) {
        QTextStream(stderr) << "acsbuild: " << QString::fromStdString(error.what()) << "\n";
        return 1;
    }
    QTextStream(stderr) << Usage;
    return 2;
}
