// Gives back what the toolkit keeps for assistive technology after it has gone.
#pragma once

#include <QAccessible>

#include <vector>

namespace voxmate::qt
{

/// Qt 6.4 makes another interface of a cell each time a screen reader, or a list on its behalf, asks for it, and keeps
/// them all until the program ends.
class AccessibleCells
{
public:
    /// Deletes the interfaces of cells whose list or row is gone.
    void DeleteDead();

private:
    std::vector<QAccessible::Id> living_; ///< cells that were still there at the last look
    QAccessible::Id looked_ = 0;          ///< the last interface that was looked at; 0: none yet
};

} // namespace voxmate::qt
