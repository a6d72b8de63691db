#include "qt/widgets/AccessibleRole.h"

#include <QAccessibleWidget>
#include <QTimer>
#include <QVariant>

#include <utility>

namespace voxmate::qt
{

namespace
{

constexpr const char* RoleProperty = "voxmateAccessibleRole";
constexpr const char* PressProperty = "voxmateAccessiblePress";

class OwnWidget : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;
    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (widget()->property(PressProperty).isValid())
            names.prepend(pressAction());
        return names;
    }
    void doAction(const QString& action) override
    {
        // Deferred, because the screen reader waits for its call to return.
        if (action == pressAction())
            QTimer::singleShot(0, widget(), widget()->property(PressProperty).value<std::function<void()>>());
        else
            QAccessibleWidget::doAction(action);
    }
};

QAccessibleInterface* WithItsRole(const QString& /*className*/, QObject* object)
{
    if (!object || !object->isWidgetType())
        return nullptr;
    const QVariant role = object->property(RoleProperty);
    return role.isValid() ? new OwnWidget(static_cast<QWidget*>(object), static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}

} // namespace

void SetAccessibleRole(QWidget& widget, QAccessible::Role role)
{
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(WithItsRole);
        return true;
    }();
    widget.setProperty(RoleProperty, static_cast<int>(role));
}

void SetAccessiblePress(QWidget& widget, const std::function<void()>& press)
{
    widget.setProperty(PressProperty, QVariant::fromValue(press));
}

} // namespace voxmate::qt
