#include "Sheet.h"

#include "Palette.h"
#include "Source.h"
#include "ToImage.h"

#include "agent/file/AcsFile.h"

#include <QPainter>

#include <algorithm>
#include <utility>

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
            if (frame.duration == 0)
                continue; // never drawn
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

namespace
{

// Contact sheet: two animations side by side, with this many pictures of each at half size.
constexpr int ContactColumns = 2;
constexpr int ContactPictures = 8;
constexpr int ContactGap = 12;
constexpr int ContactTitle = 22;

// The frames that are visible when an animation plays to its end, each with its duration in 1/100 s.
std::vector<std::pair<const agent::Frame*, int>> Played(const agent::Animation& animation)
{
    std::vector<std::pair<const agent::Frame*, int>> seen;
    std::vector<bool> passed(animation.frames.size());
    for (std::size_t at = 0; at < animation.frames.size() && !passed[at];) {
        const agent::Frame& frame = animation.frames[at];
        passed[at] = true;
        if (frame.duration > 0)
            seen.emplace_back(&frame, frame.duration);
        at = !frame.branches.empty() && frame.branches[0].percent == 100 ? frame.branches[0].frame : at + 1;
    }
    return seen;
}

// The frame shown `time` (1/100 s) after the start.
const agent::Frame& FrameAt(const std::vector<std::pair<const agent::Frame*, int>>& played, int time)
{
    for (const auto& [frame, duration] : played)
        if ((time -= duration) < 0)
            return *frame;
    return *played.back().first;
}

// The picture in 256 colours. The character itself has no more, and the file becomes far smaller.
QImage FewColours(const QImage& picture)
{
    Palette palette;
    palette.Count(picture);
    palette.Choose();
    const std::vector<std::uint8_t> indices = palette.Indices(picture);
    QImage few(picture.size(), QImage::Format_Indexed8);
    QList<QRgb> colours;
    for (const agent::Colour& colour : palette.Colours())
        colours.push_back(qRgb(colour.red, colour.green, colour.blue));
    few.setColorTable(colours);
    for (int y = 0; y < few.height(); ++y)
        std::copy_n(indices.begin() + static_cast<std::ptrdiff_t>(y) * few.width(), few.width(), few.scanLine(y));
    return few;
}

} // namespace

QImage DrawContactSheet(const QString& acsFile)
{
    const auto file = agent::AcsFile::Open(acsFile.toStdString());
    const int width = file->width / 2;
    const int height = file->height / 2;
    const int cardWidth = ContactPictures * width + ContactGap;
    const int cardHeight = height + ContactTitle;
    const int rows = (static_cast<int>(file->animations.size()) + ContactColumns - 1) / ContactColumns;
    QImage sheet(ContactColumns * (cardWidth + ContactGap) + ContactGap, rows * (cardHeight + ContactGap) + ContactGap,
                 QImage::Format_RGB32);
    sheet.fill(QColor(0xC9, 0xD6, 0xDF));
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font;
    font.setPixelSize(13);
    for (std::size_t i = 0; i < file->animations.size(); ++i) {
        const agent::Animation& animation = file->animations[i];
        const int x = ContactGap + static_cast<int>(i) % ContactColumns * (cardWidth + ContactGap);
        const int y = ContactGap + static_cast<int>(i) / ContactColumns * (cardHeight + ContactGap);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0xF4, 0xF7, 0xF9));
        painter.drawRoundedRect(x, y, cardWidth, cardHeight, 8, 8);
        const auto played = Played(animation);
        int length = 0;
        for (const auto& [frame, duration] : played)
            length += duration;
        painter.setPen(QColor(0x22, 0x30, 0x3C));
        font.setBold(true);
        painter.setFont(font);
        const QString name = QString::fromStdString(animation.name);
        painter.drawText(x + ContactGap, y + 17, name);
        const int after = painter.fontMetrics().horizontalAdvance(name) + 8;
        font.setBold(false);
        painter.setFont(font);
        painter.setPen(QColor(0x6B, 0x7C, 0x88));
        painter.drawText(x + ContactGap + after, y + 17, QString("%1 s").arg(length / 100.0, 0, 'f', 1));
        const int count = std::min<int>(ContactPictures, static_cast<int>(played.size()));
        for (int k = 0; k < count; ++k) {
            // From the first picture to the last; those between are spaced evenly in time.
            const int time = count == 1 ? 0 : static_cast<int>(std::int64_t{length - 1} * k / (count - 1));
            const QImage picture = ToImage(agent::ComposeFrame(*file, FrameAt(played, time), -1))
                                       .convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                       .scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            painter.drawImage(x + ContactGap / 2 + k * width, y + ContactTitle - 4, picture);
        }
    }
    painter.end();
    return FewColours(sheet);
}

} // namespace voxmate::characters
