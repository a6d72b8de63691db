#include "platform/linux/desktop/DesktopQuiet.h"

#include "platform/linux/desktop/LaterBus.h"
#include "platform/linux/desktop/QuietQuestions.h"
#include "qt/system/Desktop.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QProcess>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

/// Milliseconds that each question may take; a program that does not answer does not say that it is on.
constexpr int Patience = 1000;
constexpr int LongestPatience = 3000;

// Windows in full screen cover a screen by definition, so the state is enough.
bool FullScreenHasKeyboard()
{
    const qt::DesktopState desktop = qt::LookAtDesktop({});
    return std::ranges::any_of(desktop.windows, [](const qt::ListedWindow& window) {
        return window.fullScreen && window.active && !window.own;
    });
}

bool DesktopIs(const char* name)
{
    const QStringList names = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    return names.contains(QLatin1String(name), Qt::CaseInsensitive);
}

} // namespace

QuietQuestions::QuietQuestions(Quiet& owner, QObject* parent) : QObject(parent), owner_(&owner)
{
    deadline_.setSingleShot(true);
    deadline_.callOnTimeout([this] { Answer(false); });
}

void QuietQuestions::Ask()
{
    asked_ = true;
    deadline_.start(LongestPatience);
    if (FullScreenHasKeyboard()) {
        QTimer::singleShot(0, this, [this] { Answer(true); });
    } else if (bus_) {
        AskServer();
    } else {
        ConnectLater(QLatin1String(NotificationBus), this, [this](const QDBusConnection& bus) {
            bus_ = bus;
            AskServer();
        });
    }
}

// Plasma's notification server tells it itself; others do not have this property.
void QuietQuestions::AskServer()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(QLatin1String(NotificationService), QLatin1String(NotificationPath),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QLatin1String(NotificationService) << QStringLiteral("Inhibited");
    AskBus(question, [this] { AskDesktop(); });
}

void QuietQuestions::AskDesktop()
{
    if (DesktopIs("XFCE"))
        AskXfce();
    else if (DesktopIs("GNOME"))
        AskGnome();
    else
        Answer(false);
}

void QuietQuestions::AskXfce()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(QStringLiteral("org.xfce.Xfconf"), QStringLiteral("/org/xfce/Xfconf"),
                                       QStringLiteral("org.xfce.Xfconf"), QStringLiteral("GetProperty"));
    question << QStringLiteral("xfce4-notifyd") << QStringLiteral("/do-not-disturb");
    AskBus(question, [this] { Answer(false); });
}

// A question whose answer is one truth value. Nobody is started to answer it.
void QuietQuestions::AskBus(const QDBusMessage& question, const std::function<void()>& next)
{
    QDBusMessage call = question;
    call.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(call, Patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, next] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError() && reply.value().variant().toBool())
            Answer(true);
        else
            next();
    });
}

// GNOME's do-not-disturb switches its banners off. Its settings are in a file that only its own library reads, which
// this program of it does.
void QuietQuestions::AskGnome()
{
    auto* settings = new QProcess(this);
    const auto answer = [this, settings](bool quiet) {
        settings->disconnect(this);
        settings->deleteLater();
        Answer(quiet);
    };
    connect(settings, &QProcess::finished, this,
            [answer, settings] { answer(settings->readAllStandardOutput().trimmed() == "false"); });
    connect(settings, &QProcess::errorOccurred, this, [answer] { answer(false); });
    QTimer::singleShot(Patience, settings, &QProcess::kill);
    settings->start(
        QStringLiteral("gsettings"),
        {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.notifications"), QStringLiteral("show-banners")});
}

void QuietQuestions::Answer(bool quiet)
{
    deadline_.stop();
    if (std::exchange(asked_, false) && owner_ && owner_->Answered)
        owner_->Answered(quiet);
}

DesktopQuiet::DesktopQuiet() : object_(new QuietQuestions(*this, QCoreApplication::instance())) {}

DesktopQuiet::~DesktopQuiet()
{
    static_cast<QuietQuestions*>(object_)->Detach();
}

void DesktopQuiet::Ask()
{
    static_cast<QuietQuestions*>(object_)->Ask();
}

} // namespace voxmate::linux_platform
