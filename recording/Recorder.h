// Speaks a text or a document into sound files, as fast as the engine can, with just the voice that is heard.
#pragma once

#include "readers/Reading.h"
#include "recording/Job.h"
#include "recording/News.h"
#include "speech/VoiceCatalog.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace voxmate::recording
{

/// Takes news as it comes; false when nobody wants the recording any more.
using Tell = std::function<bool(const News& news)>;
/// Begins to read a document.
using Read = std::function<std::unique_ptr<readers::Reading>(const std::string& path)>;

/// Does the job. The last news tells how that ended, unless nobody wanted it. Files have their names only when all is
/// saved; otherwise nothing is left of them. What has been read ahead of the voice takes some 16 MB at most.
void Record(const Job& job, speech::VoiceCatalog& voices, const Read& read, const Tell& tell);

} // namespace voxmate::recording
