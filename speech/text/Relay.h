// Speaks an utterance with more than one voice: words in a script that the chosen voice cannot read go to a voice that
// can, in their place and with the same prosody, so that no part of a text stays silent.
#pragma once

#include "speech/VoiceCatalog.h"

#include <span>

namespace voxmate::speech
{

/// Speaks the segments as Engine::Synthesize does, with `chosen` and at its sample rate. Stretches in a script it
/// cannot read are spoken by the catalogue's reader of that script; a word in two scripts is divided. If a reader
/// fails, its stretch is left out. If the chosen voice fails before any sound, the catalogue's reader of Latin script
/// takes its place; false when that one fails, too.
bool SpeakInTurns(const VoiceCatalog& catalog, const VoiceCatalog::Entry& chosen, std::span<const Segment> segments,
                  SampleSink& sink);

} // namespace voxmate::speech
