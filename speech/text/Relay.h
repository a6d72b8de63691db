// Speaks an utterance with more than one voice: words in a script that the chosen voice cannot read go to a voice that
// can, in their place and with the same prosody, so that no part of a text stays silent; and, where that is wanted,
// each paragraph to a voice of its language.
#pragma once

#include "speech/VoiceCatalog.h"

#include <span>

namespace voxmate::speech
{

/// Speaks the segments as Engine::Synthesize does, with `chosen` and at its sample rate. Stretches in a script it
/// cannot read are spoken by the catalogue's reader of that script; a word in two scripts is divided. If a reader
/// fails, its stretch is left out. If the chosen voice fails, the catalogue's reader of Latin script takes its place
/// from the first word on that was not said; false when that one fails, too. With `byLanguage` a paragraph whose
/// language can be told, and is not that of `chosen`, is spoken by the catalogue's speaker of it; one that cannot be
/// told by the voice before it.
bool SpeakInTurns(const VoiceCatalog& catalog, const VoiceCatalog::Entry& chosen, std::span<const Segment> segments,
                  SampleSink& sink, bool byLanguage = false);

} // namespace voxmate::speech
