// For builds without LayerShellQt.
#include "qt/system/LayerSurface.h"

namespace voxmate::qt
{

std::unique_ptr<LayerSurface> PutInLayer(QWindow& /*window*/)
{
    return nullptr;
}

} // namespace voxmate::qt
