#include "platform/speech/FliteLibrary.h"

#include <dlfcn.h>

namespace voxmate::speech
{

namespace
{

constexpr const char* Core = "libflite.so.1";

std::string VoiceLibrary(const std::string& key)
{
    return "libflite_cmu_us_" + key + ".so.1";
}

void* OpenCore()
{
    static void* const handle = dlopen(Core, RTLD_LAZY | RTLD_LOCAL);
    return handle;
}

} // namespace

std::filesystem::path FliteLibrary::Folder()
{
    void* const handle = OpenCore();
    void* const function = handle ? dlsym(handle, "flite_init") : nullptr;
    Dl_info info{};
    if (!function || !dladdr(function, &info) || !info.dli_fname)
        return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

bool FliteLibrary::HasVoice(const std::string& key)
{
    const std::filesystem::path folder = Folder();
    std::error_code error;
    return !folder.empty() && std::filesystem::exists(folder / VoiceLibrary(key), error);
}

bool FliteLibrary::Load()
{
    void* const handle = OpenCore();
    if (!handle)
        return false;
    bool complete = true;
    const auto load = [&]<typename Function>(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(handle, name));
        complete = complete && function;
    };
    load(init, "flite_init");
    load(synthText, "flite_synth_text");
    load(deleteUtterance, "delete_utterance");
    load(featSet, "feat_set");
    load(featSetFloat, "feat_set_float");
    load(featPresent, "feat_present");
    load(featVal, "feat_val");
    load(valCgDb, "val_cg_db");
    load(cgDbVal, "cg_db_val");
    load(newStreamingInfo, "new_audio_streaming_info");
    load(streamingInfoVal, "audio_streaming_info_val");
    load(uttRelation, "utt_relation");
    load(relationHead, "relation_head");
    load(itemNext, "item_next");
    load(featureString, "flite_ffeature_string");
    load(featureFloat, "flite_ffeature_float");
    load(featureInt, "flite_ffeature_int");
    if (complete)
        init();
    return complete;
}

cst_voice* FliteLibrary::LoadVoice(const std::string& key) const
{
    void* const handle = dlopen((Folder() / VoiceLibrary(key)).c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle)
        return nullptr;
    using Register = cst_voice* (*)(const char* folder);
    const auto registerVoice = reinterpret_cast<Register>(dlsym(handle, ("register_cmu_us_" + key).c_str()));
    return registerVoice ? registerVoice(nullptr) : nullptr;
}

} // namespace voxmate::speech
