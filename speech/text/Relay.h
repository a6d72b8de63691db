// An utterance spoken by more than one voice: a word in a writing that the chosen voice cannot say goes to one that
// can, in its turn and in the same manner, so that nothing of a text falls silent.
#pragma once

#include "speech/VoiceCatalog.h"

#include <span>

namespace voxmate::speech
{

/// Speaks the segments with `chosen`, at its sample rate, as Engine::Synthesize does; stretches that it cannot say are
/// spoken by the catalogue's reader of their writing. A word that holds two writings is divided. A reader that fails
/// leaves its stretch out. Where the chosen voice fails before a sound, the one that would be first on the desktop
/// takes its place; false when that one fails, too.
bool SpeakInTurns(const VoiceCatalog& catalog, const VoiceCatalog::Entry& chosen, std::span<const Segment> segments,
                  SampleSink& sink);

} // namespace voxmate::speech
