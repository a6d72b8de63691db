// Where the program's windows and their controls are, from the toolkit.
#pragma once

#include "platform/WindowPlaces.h"

#include <QObject>
#include <QTimer>

namespace voxmate::qt
{

class QtWindowPlaces : public QObject, public WindowPlaces
{
public:
    /// Watches the application's events. The application object must exist, and outlive this object.
    QtWindowPlaces();

    bool Known() const override;
    std::vector<WindowPlace> Windows() override;
    Rect WorkArea(Point point) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Tell();

    QTimer changes_; ///< collects the several events of one change
};

} // namespace voxmate::qt
