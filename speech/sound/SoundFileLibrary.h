// The functions of libsndfile that are used.
#pragma once

#include "platform/SharedLibrary.h"

#include <sndfile.h>

namespace voxmate::speech
{

struct SoundFileLibrary : LibraryFunctions {
    SoundFileLibrary() : LibraryFunctions(SharedLibrary::FileName("sndfile", 1)) {}

    decltype(&::sf_open_virtual) Open = Need<decltype(&::sf_open_virtual)>("sf_open_virtual");
    decltype(&::sf_readf_float) Read = Need<decltype(&::sf_readf_float)>("sf_readf_float");
    decltype(&::sf_close) Close = Need<decltype(&::sf_close)>("sf_close");
    // For writing.
    decltype(&::sf_open) OpenFile = Need<decltype(&::sf_open)>("sf_open");
    decltype(&::sf_writef_short) Write = Need<decltype(&::sf_writef_short)>("sf_writef_short");
    decltype(&::sf_format_check) Checks = Need<decltype(&::sf_format_check)>("sf_format_check");
    decltype(&::sf_command) Command = Need<decltype(&::sf_command)>("sf_command");
    decltype(&::sf_set_string) SetString = Need<decltype(&::sf_set_string)>("sf_set_string");
    decltype(&::sf_error) Error = Need<decltype(&::sf_error)>("sf_error");
};

/// Loads the library at the first call.
const SoundFileLibrary& SoundFiles();

} // namespace voxmate::speech
