// The questions whose answers tell whether the user wants to be left alone. They are asked one after the other, until
// one is answered with yes.
#pragma once

#include "platform/Quiet.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

namespace voxmate::linux_platform
{

/// Lives in the thread of the application object.
class QuietQuestions : public QObject
{
    Q_OBJECT

public:
    QuietQuestions(Quiet& owner, QObject* parent);
    void Detach() { owner_ = nullptr; }

    void Ask();

private:
    void AskServer();
    void AskDesktop();
    void AskXfce();
    void AskGnome();
    void AskBus(const QDBusMessage& question, const std::function<void()>& next);
    void Answer(bool quiet);

    Quiet* owner_;
    std::optional<QDBusConnection> bus_;
    bool asked_ = false;
    QTimer deadline_; ///< the bus itself may hang
};

} // namespace voxmate::linux_platform
