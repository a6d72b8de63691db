#include "platform/linux/desktop/PortalFileDialog.h"

#include "platform/linux/desktop/Portal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>

#include <utility>

namespace voxmate::linux_platform
{

// One pattern of a kind of file, and a kind with its patterns, as the interface's "filters" want them: (us) and
// (sa(us)). 0: the pattern is for names.
struct PortalPattern {
    uint type = 0;
    QString pattern;
};
struct PortalFilter {
    QString name;
    QList<PortalPattern> patterns;
};

} // namespace voxmate::linux_platform

Q_DECLARE_METATYPE(voxmate::linux_platform::PortalPattern)
Q_DECLARE_METATYPE(voxmate::linux_platform::PortalFilter)

namespace voxmate::linux_platform
{

QDBusArgument& operator<<(QDBusArgument& out, const PortalPattern& pattern)
{
    out.beginStructure();
    out << pattern.type << pattern.pattern;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, PortalPattern& pattern)
{
    in.beginStructure();
    in >> pattern.type >> pattern.pattern;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const PortalFilter& filter)
{
    out.beginStructure();
    out << filter.name << filter.patterns;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, PortalFilter& filter)
{
    in.beginStructure();
    in >> filter.name >> filter.patterns;
    in.endStructure();
    return in;
}

namespace
{

constexpr QLatin1String Interface("org.freedesktop.portal.FileChooser");
/// Milliseconds for the portal to take the question; it may have to be started for it. The user then takes his time.
constexpr int Patience = 5000;

/// A portal that has failed once is not waited for again.
bool failed = false;

/// Whether the program runs in a desktop's session; without a desktop a portal would have nothing to show its dialog
/// with. Whether there is a portal only its answer tells: asking the bus for it would hold the windows up.
bool MayBeThere()
{
    return !failed && !qEnvironmentVariableIsEmpty("XDG_CURRENT_DESKTOP") &&
           QDBusConnection::sessionBus().isConnected();
}

QVariantMap Options(const qt::FileQuestion& question, const QString& token)
{
    QVariantMap options{{QStringLiteral("handle_token"), token}, {QStringLiteral("modal"), true}};
    if (question.wantsFolder)
        options[QStringLiteral("directory")] = true;
    if (!question.folder.isEmpty()) // a path ends in a NUL there
        options[QStringLiteral("current_folder")] = QFile::encodeName(question.folder).append('\0');
    if (!question.saveAs.isEmpty())
        options[QStringLiteral("current_name")] = question.saveAs;
    QList<PortalFilter> filters;
    for (const qt::FileQuestion::Kind& kind : question.kinds) {
        PortalFilter filter{kind.name, {}};
        for (const QString& pattern : kind.patterns)
            filter.patterns.append({0, pattern});
        filters.append(filter);
    }
    if (!filters.isEmpty())
        options[QStringLiteral("filters")] = QVariant::fromValue(filters);
    return options;
}

} // namespace

PortalFileDialog::PortalFileDialog()
{
    qDBusRegisterMetaType<PortalPattern>();
    qDBusRegisterMetaType<QList<PortalPattern>>();
    qDBusRegisterMetaType<PortalFilter>();
    qDBusRegisterMetaType<QList<PortalFilter>>();
    // Its dialog goes with it, and nobody would answer.
    portal_.setConnection(QDBusConnection::sessionBus());
    portal_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    portal_.addWatchedService(PortalService);
    connect(&portal_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { Finish(QString()); });
}

PortalFileDialog::~PortalFileDialog()
{
    if (!request_.isEmpty())
        Close();
}

void PortalFileDialog::Close()
{
    QDBusConnection::sessionBus().send(PortalCall(request_, PortalRequest, QLatin1String("Close")));
}

void PortalFileDialog::Listen(const QString& request)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QString signal = QStringLiteral("Response");
    if (!request_.isEmpty())
        bus.disconnect(QString(), request_, PortalRequest, signal, this, SLOT(Respond(uint, QVariantMap)));
    request_ = request;
    bus.connect(QString(), request_, PortalRequest, signal, this, SLOT(Respond(uint, QVariantMap)));
}

void PortalFileDialog::Ask(const qt::FileQuestion& question, QWindow* over)
{
    static int asked = 0;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QString token = QStringLiteral("voxmate%1").arg(++asked);
    Listen(PortalRequestPath(bus, token));
    const bool x11 = QGuiApplication::platformName() == QLatin1String("xcb");
    const QString parent = over && x11 ? QStringLiteral("x11:%1").arg(over->winId(), 0, 16) : QString();
    QDBusMessage open =
        PortalCall(PortalPath, Interface, QLatin1String(question.saveAs.isEmpty() ? "OpenFile" : "SaveFile"));
    open << parent << question.title << Options(question, token);
    auto* reply = new QDBusPendingCallWatcher(bus.asyncCall(open, Patience), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> told = *reply;
        if (told.isError()) {
            failed = true;
            Close();
            Finish(std::nullopt);
        } else if (!request_.isEmpty() && told.value().path() != request_) {
            Listen(told.value().path());
        }
    });
}

void PortalFileDialog::Respond(uint response, const QVariantMap& results)
{
    constexpr uint Chosen = 0;
    const QStringList addresses = results.value(QStringLiteral("uris")).toStringList();
    Finish(response == Chosen && !addresses.isEmpty() ? QUrl(addresses.front()).toLocalFile() : QString());
}

void PortalFileDialog::Finish(const std::optional<QString>& path)
{
    if (std::exchange(request_, QString()).isEmpty())
        return;
    if (path)
        Q_EMIT Answered(*path);
    else
        Q_EMIT Failed();
}

} // namespace voxmate::linux_platform

namespace voxmate::qt
{

std::unique_ptr<DesktopFileDialog> DesktopFileDialog::Make()
{
    if (!linux_platform::MayBeThere())
        return nullptr;
    return std::make_unique<linux_platform::PortalFileDialog>();
}

} // namespace voxmate::qt
