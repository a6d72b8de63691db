// The functions of libsndfile that are used.
#pragma once

#include "platform/SharedLibrary.h"

#include <sndfile.h>

namespace voxmate::speech
{

struct SoundFileLibrary : LibraryFunctions {
    SoundFileLibrary() : LibraryFunctions("libsndfile.so.1") {}

    decltype(&::sf_open_virtual) Open = Need<decltype(&::sf_open_virtual)>("sf_open_virtual");
    decltype(&::sf_readf_float) Read = Need<decltype(&::sf_readf_float)>("sf_readf_float");
    decltype(&::sf_close) Close = Need<decltype(&::sf_close)>("sf_close");
};

/// Loads the library at the first call.
const SoundFileLibrary& SoundFiles();

} // namespace voxmate::speech
