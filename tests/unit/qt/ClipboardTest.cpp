// The clipboard's text.
#include "tests/unit/qt/QtTest.h"

#include <QClipboard>
#include <QImage>
#include <QMimeData>
#include <QUrl>

namespace voxmate::qt
{

using ClipboardTest = QtTest;

TEST_F(ClipboardTest, TheClipboardGivesTheTextItHolds)
{
    windows.ClipboardSetText("Gr\u00FC\u00DFe \U0001F600");
    EXPECT_TRUE(windows.ClipboardGetFormat(vbCFText));
    EXPECT_EQ(windows.ClipboardGetText(), "Gr\u00FC\u00DFe \U0001F600");
    EXPECT_FALSE(windows.ClipboardGetFormat(2));
}

TEST_F(ClipboardTest, TheClipboardsTextMaySayHowItIsEncoded)
{
    for (const auto& [format, bytes] : std::vector<std::pair<const char*, QByteArray>>{
             {"text/plain;charset=utf-8", "Gr\xC3\xBC\xC3\x9F"
                                          "e"},
             {"text/plain; charset=\"UTF-8\"; format=flowed", "Gr\xC3\xBC\xC3\x9F"
                                                              "e"},
             {"text/plain;charset=ISO-8859-1", "Gr\xFC\xDF"
                                               "e"},
             {"text/plain;charset=utf-16le", QByteArray("G\0r\0\xFC\0\xDF\0e\0", 10)},
             {"text/plain;charset=no-such", "Gr\xC3\xBC\xC3\x9F"
                                            "e"}}) {
        auto* content = new QMimeData;
        content->setData(QString::fromLatin1(format), bytes);
        QGuiApplication::clipboard()->setMimeData(content);
        EXPECT_TRUE(windows.ClipboardGetFormat(vbCFText)) << format;
        EXPECT_EQ(windows.ClipboardGetText(), "Gr\u00FC\u00DFe") << format;
    }
    auto* content = new QMimeData;
    content->setData(QStringLiteral("text/plainer;charset=utf-8"), "no");
    content->setData(QStringLiteral("text/html"), "<b>no</b>");
    QGuiApplication::clipboard()->setMimeData(content);
    EXPECT_FALSE(windows.ClipboardGetFormat(vbCFText));
    EXPECT_EQ(windows.ClipboardGetText(), "");
}

TEST_F(ClipboardTest, AnEmptyClipboardHoldsNoText)
{
    windows.ClipboardSetText("before");
    windows.ClipboardClear();
    EXPECT_FALSE(windows.ClipboardGetFormat(vbCFText));
    EXPECT_EQ(windows.ClipboardGetText(), "");
}

TEST_F(ClipboardTest, APictureOnTheClipboardIsNoTextNorIsTheAddressItCameFrom)
{
    auto* content = new QMimeData;
    content->setImageData(QImage(4, 4, QImage::Format_RGB32));
    content->setUrls({QUrl("https://example.org/picture.png")});
    QGuiApplication::clipboard()->setMimeData(content);
    EXPECT_FALSE(windows.ClipboardGetFormat(vbCFText));
    EXPECT_EQ(windows.ClipboardGetText(), "");
}

} // namespace voxmate::qt
