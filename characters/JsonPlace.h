// A value of a JSON file that knows its place, so that every error message can name it.
#pragma once

#include "Source.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>

namespace voxmate::characters
{

class JsonPlace
{
public:
    JsonPlace(QJsonValue value, QString file, QString path)
        : value_(std::move(value)), file_(std::move(file)), path_(std::move(path))
    {
    }

    [[noreturn]] void Fail(const QString& what) const
    {
        throw SourceError(file_ + ": " + (path_.isEmpty() ? QString() : path_ + ": ") + what);
    }
    bool Exists() const { return !value_.isUndefined(); }
    bool IsArray() const { return value_.isArray(); }
    bool IsString() const { return value_.isString(); }

    /// The member `key` of an object; a place that does not exist if there is no such member.
    JsonPlace operator[](const QString& key) const
    {
        return {Object().value(key), file_, path_.isEmpty() ? key : path_ + "." + key};
    }
    QStringList Keys() const { return Object().keys(); }
    /// Fails for members that are not among `known`; otherwise a misspelt one would go unnoticed.
    void OnlyKeys(const QStringList& known) const
    {
        for (const QString& key : Keys())
            if (key != "comment" && !known.contains(key))
                Fail("there is no setting \"" + key + "\" here, only " + known.join(", "));
    }
    std::vector<JsonPlace> Items() const
    {
        if (!value_.isArray())
            Fail(Exists() ? "a list in brackets is needed" : "is missing");
        std::vector<JsonPlace> items;
        const QJsonArray array = value_.toArray();
        for (qsizetype i = 0; i < array.size(); ++i)
            items.emplace_back(array.at(i), file_, path_ + "[" + QString::number(i) + "]");
        return items;
    }
    QString Text() const
    {
        if (!value_.isString())
            Fail(Exists() ? "a text in quotes is needed" : "is missing");
        return value_.toString();
    }
    QString Text(const QString& absent) const { return Exists() ? Text() : absent; }
    double Number() const
    {
        if (!value_.isDouble())
            Fail(Exists() ? "a number is needed" : "is missing");
        return value_.toDouble();
    }
    int Whole(int least, int most) const
    {
        const double number = Number();
        if (number < least || number > most || number != static_cast<int>(number))
            Fail(QString("a whole number from %1 to %2 is needed").arg(least).arg(most));
        return static_cast<int>(number);
    }
    int Whole(int least, int most, int absent) const { return Exists() ? Whole(least, most) : absent; }
    bool YesNo(bool absent) const
    {
        if (!Exists())
            return absent;
        if (!value_.isBool())
            Fail("true or false is needed");
        return value_.toBool();
    }
    /// Two numbers: [x, y].
    QPointF Pair() const
    {
        const auto items = Items();
        if (items.size() != 2)
            Fail("two numbers are needed");
        return {items[0].Number(), items[1].Number()};
    }

private:
    QJsonObject Object() const
    {
        if (!value_.isObject())
            Fail(Exists() ? "settings in braces are needed" : "is missing");
        return value_.toObject();
    }

    QJsonValue value_;
    QString file_;
    QString path_;
};

} // namespace voxmate::characters
