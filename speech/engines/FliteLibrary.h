// Flite's functions, loaded from its shared library when the first Flite voice is used: the voice data is several
// megabytes, which users of other voices need not load.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

extern "C" {
#include <flite/cst_cg.h>
#include <flite/flite.h>
}

namespace voxmate::speech
{

/// The header fields of a voice file (.flitevox).
struct FlitevoxHead {
    std::string language; ///< "eng"
    std::string country;  ///< "USA"
    int sampleRate = 0;
};

/// Reads the header of a voice file; nothing when it is no voice file or is cut off within its header.
std::optional<FlitevoxHead> ReadFlitevoxHead(const std::filesystem::path& file);

class FliteLibrary
{
public:
    /// The folder of the installed library; empty when there is none. Loads only the small core library.
    static std::filesystem::path Folder();
    /// Whether the library of this voice ("slt") is installed.
    static bool HasVoice(const std::string& key);

    /// Loads the core functions; false when one is missing.
    bool Load();
    /// Loads a voice's own library and registers the voice; null when that fails. The voice stays loaded for the rest
    /// of the run.
    cst_voice* LoadVoice(const std::string& key) const;

    /// Loads an English voice from a file; null when that fails. The library trusts everything in the file, so a file
    /// is first tried in a separate process, because a damaged one could crash this one; that may take 20 seconds.
    /// `wanted` is polled meanwhile, and the attempt is given up when it returns false. A loaded voice stays for the
    /// rest of the run, and a file found damaged is not tried again.
    cst_voice* LoadFile(const std::filesystem::path& file, const std::function<bool()>& wanted);

    decltype(&::flite_voice_load) voiceLoad = nullptr;
    decltype(&::flite_add_lang) addLanguage = nullptr;
    decltype(&::flite_init) init = nullptr;
    decltype(&::flite_synth_text) synthText = nullptr;
    decltype(&::delete_utterance) deleteUtterance = nullptr;
    decltype(&::feat_set) featSet = nullptr;
    decltype(&::feat_set_float) featSetFloat = nullptr;
    decltype(&::feat_present) featPresent = nullptr;
    decltype(&::feat_val) featVal = nullptr;
    decltype(&::val_cg_db) valCgDb = nullptr;
    decltype(&::cg_db_val) cgDbVal = nullptr;
    decltype(&::new_audio_streaming_info) newStreamingInfo = nullptr;
    decltype(&::audio_streaming_info_val) streamingInfoVal = nullptr;
    decltype(&::utt_relation) uttRelation = nullptr;
    decltype(&::relation_head) relationHead = nullptr;
    decltype(&::item_next) itemNext = nullptr;
    decltype(&::flite_ffeature_string) featureString = nullptr;
    decltype(&::flite_ffeature_float) featureFloat = nullptr;
    decltype(&::flite_ffeature_int) featureInt = nullptr;

private:
    bool LoadEnglish();
    std::optional<bool> SpeaksWell(const std::filesystem::path& file, const std::function<bool()>& wanted) const;

    bool english_ = false;
    std::set<std::filesystem::path> damaged_; ///< files found not to be usable voices
};

} // namespace voxmate::speech
