// Stands in for PiperModel.cpp where the build found no headers of ONNX Runtime: no neural voices are listed.
#include "speech/engines/PiperModel.h"

namespace voxmate::speech
{

bool PiperModel::Available(const std::filesystem::path&)
{
    return false;
}

std::unique_ptr<PiperModel> PiperModel::Load(const std::filesystem::path&, const std::filesystem::path&,
                                             std::string& why)
{
    why = "This build of the program speaks no neural voices.";
    return nullptr;
}

} // namespace voxmate::speech
