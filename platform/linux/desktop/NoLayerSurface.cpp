// For builds without LayerShellQt.
#include "qt/system/LayerSurface.h"

namespace voxmate::qt
{

bool PutInLayer(QWindow& /*window*/)
{
    return false;
}

} // namespace voxmate::qt
