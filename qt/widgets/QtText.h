// Converts between the program's UTF-8 text and Qt's.
#pragma once

#include <QString>

#include <string>

namespace voxmate::qt
{

inline QString ToQt(const std::string& text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}
inline std::string FromQt(const QString& text)
{
    return text.toStdString();
}

/// A caption as shown: without the ampersand that marks its access key; "&&" becomes one ampersand.
inline QString WithoutAccessKey(const QString& caption)
{
    QString plain;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == u'&' && ++i == caption.size())
            break;
        plain += caption[i];
    }
    return plain;
}

} // namespace voxmate::qt
