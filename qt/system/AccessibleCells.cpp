#include "qt/system/AccessibleCells.h"

#include <QWidget>

#include <climits>
#include <utility>

namespace voxmate::qt
{

void AccessibleCells::DeleteDead()
{
    std::vector<QAccessible::Id> living;
    const auto look = [&living](QAccessible::Id id) {
        QAccessibleInterface* const cell = QAccessible::accessibleInterface(id);
        // A cell has no object of its own, and asks its list whether it is still in there.
        if (!cell || cell->object())
            return;
        if (cell->isValid())
            living.push_back(id);
        else
            QAccessible::deleteAccessibleInterface(id);
    };
    // Interfaces are numbered in the order in which they are made, so the latest one has the last number.
    QWidget latest;
    const QAccessible::Id last = QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&latest));
    for (const QAccessible::Id id : std::exchange(living_, {}))
        look(id);
    const QAccessible::Id first = looked_ == 0 || looked_ > last ? QAccessible::Id(INT_MAX) + 1 : looked_ + 1;
    for (QAccessible::Id id = first; id < last; ++id)
        look(id);
    looked_ = last;
    living_ = std::move(living);
}

} // namespace voxmate::qt
