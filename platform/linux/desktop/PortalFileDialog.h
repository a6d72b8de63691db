// The dialog for files that a desktop offers to programs over the session's bus.
#pragma once

#include "qt/dialogs/DesktopFileDialog.h"

#include <QDBusServiceWatcher>
#include <QVariantMap>

#include <optional>

namespace voxmate::linux_platform
{

/// Asks org.freedesktop.portal.FileChooser, whose answer comes as a signal of an object made for the question.
class PortalFileDialog : public qt::DesktopFileDialog
{
    Q_OBJECT

public:
    PortalFileDialog();
    /// Takes the dialog away if it is still open. The portal does so itself when the program ends.
    ~PortalFileDialog() override;

    void Ask(const qt::FileQuestion& question, QWindow* over) override;

private Q_SLOTS:
    void Respond(uint response, const QVariantMap& results);

private:
    void Listen(const QString& request);
    void Close();
    /// The question is over. Only the first call counts.
    void Finish(const std::optional<QString>& path);

    QString request_; ///< path of the question's object; empty once it is over
    QDBusServiceWatcher portal_;
};

} // namespace voxmate::linux_platform
