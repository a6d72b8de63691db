// The functions of eSpeak NG's library that are used.
#pragma once

#include "platform/SharedLibrary.h"

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

namespace voxmate::speech
{

struct EspeakLibrary : LibraryFunctions {
    EspeakLibrary() : LibraryFunctions(SharedLibrary::FileName("espeak-ng", 1)) {}

    decltype(&::espeak_Info) Info = Need<decltype(&::espeak_Info)>("espeak_Info");
    decltype(&::espeak_Initialize) Initialize = Need<decltype(&::espeak_Initialize)>("espeak_Initialize");
    decltype(&::espeak_ListVoices) ListVoices = Need<decltype(&::espeak_ListVoices)>("espeak_ListVoices");
    decltype(&::espeak_SetParameter) SetParameter = Need<decltype(&::espeak_SetParameter)>("espeak_SetParameter");
    decltype(&::espeak_SetSynthCallback) SetSynthCallback =
        Need<decltype(&::espeak_SetSynthCallback)>("espeak_SetSynthCallback");
    decltype(&::espeak_SetVoiceByName) SetVoiceByName =
        Need<decltype(&::espeak_SetVoiceByName)>("espeak_SetVoiceByName");
    decltype(&::espeak_Synth) Synth = Need<decltype(&::espeak_Synth)>("espeak_Synth");
    decltype(&::espeak_TextToPhonemes) TextToPhonemes =
        Need<decltype(&::espeak_TextToPhonemes)>("espeak_TextToPhonemes");
    /// From 1.52 on; null before. `terminator` receives what ended the clause.
    using WithTerminator = const char* (*)(const void** text, int encoding, int phonemes, int* terminator);
    WithTerminator TextToPhonemesWithTerminator = Find<WithTerminator>("espeak_TextToPhonemesWithTerminator");
    decltype(&::espeak_ng_InitializePath) InitializePath =
        Need<decltype(&::espeak_ng_InitializePath)>("espeak_ng_InitializePath");
    decltype(&::espeak_ng_SetVoiceByFile) SetVoiceByFile =
        Need<decltype(&::espeak_ng_SetVoiceByFile)>("espeak_ng_SetVoiceByFile");
};

/// Loads the library at the first call.
const EspeakLibrary& Espeak();

/// Makes the library ready to speak, once in a run; false when that fails. The voice that is set is any afterwards.
bool InitialiseEspeak();

} // namespace voxmate::speech
