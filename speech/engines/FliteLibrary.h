// Flite's functions, taken from its shared library when the first Flite voice is used: the voices' data is several
// megabytes that a user of another voice need not carry.
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

/// What the head of a voice file (.flitevox) says of it.
struct FlitevoxHead {
    std::string language; ///< "eng"
    std::string country;  ///< "USA"
    int sampleRate = 0;
};

/// Reads the head of a voice file; none when it is not one, or one that ends in its head.
std::optional<FlitevoxHead> ReadFlitevoxHead(const std::filesystem::path& file);

class FliteLibrary
{
public:
    /// The folder that holds the installed library, empty when there is none. Loads the small core library only.
    static std::filesystem::path Folder();
    /// True when the library of this voice ("slt") is installed.
    static bool HasVoice(const std::string& key);

    /// Loads the core functions; false when one is missing.
    bool Load();
    /// Loads a voice's own library and registers it; null when that fails. The voice stays for the rest of the run.
    cst_voice* LoadVoice(const std::string& key) const;

    /// Loads an English voice from a file; null when that fails. The library believes all that a file says, so one that
    /// is damaged is tried in a process of its own first, which may take 20 seconds; it is given up when `wanted`,
    /// asked again and again, is false. The voice stays for the rest of the run, and so does the knowledge that it is
    /// none.
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
    std::set<std::filesystem::path> damaged_; ///< files that are no voice
};

} // namespace voxmate::speech
