#include "Sheet.h"

#include "Source.h"
#include "ToImage.h"

#include "platform/agent/AcsFile.h"

#include <QPainter>

#include <algorithm>

namespace voxmate::characters
{

namespace
{

struct Cell {
    const agent::Frame* frame;
    int mouth;
    QString label;
};

std::vector<Cell> Cells(const agent::AcsFile& file, const QString& wanted)
{
    std::vector<Cell> cells;
    for (const agent::Animation& animation : file.animations) {
        const QString name = QString::fromStdString(animation.name);
        if (!wanted.isEmpty() && name.compare(wanted, Qt::CaseInsensitive) != 0)
            continue;
        for (std::size_t i = 0; i < animation.frames.size(); ++i) {
            const agent::Frame& frame = animation.frames[i];
            const QString label = QString("%1 %2 %3%4")
                                      .arg(name)
                                      .arg(i)
                                      .arg(frame.duration)
                                      .arg(frame.exitFrame < 0 ? QString() : QString(" x%1").arg(frame.exitFrame));
            cells.push_back({&frame, -1, label});
            for (const agent::Overlay& overlay : frame.overlays)
                if (name == "RestPose" || !wanted.isEmpty())
                    cells.push_back({&frame, overlay.mouth, QString("%1 mouth %2").arg(name).arg(overlay.mouth)});
        }
    }
    return cells;
}

} // namespace

QImage DrawSheet(const QString& acsFile, const QString& background, int scale, const QString& animation)
{
    const auto file = agent::AcsFile::Open(acsFile.toStdString());
    const std::vector<Cell> cells = Cells(*file, animation);
    if (cells.empty())
        throw SourceError(acsFile + ": there is no animation \"" + animation + "\"");
    const int columns = std::min<int>(scale > 1 ? 6 : 12, static_cast<int>(cells.size()));
    const int rows = (static_cast<int>(cells.size()) + columns - 1) / columns;
    const int width = file->width * scale;
    const int height = file->height * scale + 14;
    QImage sheet(columns * width, rows * height, QImage::Format_RGB32);
    sheet.fill(background == "dark" ? QColor(28, 30, 36) : QColor(236, 240, 244));
    QPainter painter(&sheet);
    if (background == "checkered")
        for (int y = 0; y < sheet.height(); y += 8)
            for (int x = 0; x < sheet.width(); x += 8)
                if ((x / 8 + y / 8) % 2 == 0)
                    painter.fillRect(x, y, 8, 8, QColor(150, 160, 150));
    painter.setPen(background == "dark" ? Qt::white : Qt::black);
    QFont font;
    font.setPixelSize(11);
    painter.setFont(font);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const int x = static_cast<int>(i) % columns * width;
        const int y = static_cast<int>(i) / columns * height;
        QImage picture = ToImage(agent::ComposeFrame(*file, *cells[i].frame, cells[i].mouth));
        if (scale > 1)
            picture = picture.scaled(width, file->height * scale, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        painter.drawImage(x, y, picture);
        painter.drawText(x + 4, y + height - 3, cells[i].label);
    }
    return sheet;
}

} // namespace voxmate::characters
