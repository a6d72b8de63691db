#include "extras/MediaKeys.h"

#include <chrono>
#include <utility>

namespace voxmate
{

namespace
{

using std::chrono::microseconds;

/// Milliseconds after a document in which the next one of the row has begun.
constexpr int WithdrawInterval = 300;

microseconds Microseconds(double seconds)
{
    return std::chrono::duration_cast<microseconds>(std::chrono::duration<double>(seconds));
}

} // namespace

MediaKeys::MediaKeys(Form& form, Documents& documents, MediaControls& controls, Event stop, Event raise)
    : documents_(documents), controls_(controls), stop_(std::move(stop)), raise_(std::move(raise)),
      tmrMedia_(&form, "tmrMedia", WithdrawInterval, false)
{
    tmrMedia_.Tick = [this] {
        tmrMedia_.Enabled = false;
        shown_ = false;
        controls_.Withdraw();
    };
    documents_.Watch([this] { Look(); });
    controls_.Called = [this](MediaControls::Command command) { Do(command); };
    controls_.Sought = [this](microseconds position) {
        documents_.ReadFromTime(std::chrono::duration<double>(position).count());
    };
}

MediaKeys::~MediaKeys()
{
    controls_.Called = nullptr;
    controls_.Sought = nullptr;
}

void MediaKeys::Look()
{
    tmrMedia_.Enabled = shown_ && !documents_.HasDocument();
    if (!documents_.HasDocument())
        return;
    shown_ = true;
    MediaControls::State state{
        documents_.Name(), documents_.Number(), !documents_.Text().Paused(), !documents_.IsRecording(), {}, {}};
    if (const std::optional<Documents::Times> times = documents_.Estimate()) {
        state.Position = Microseconds(times->Spoken);
        state.Length = Microseconds(times->Spoken + times->Left);
    }
    controls_.Show(state);
}

// A paragraph is what a song is to a player: back goes to its beginning first, and a press of a headset's key is worth
// the while. For less than that there is the position.
void MediaKeys::Do(MediaControls::Command command)
{
    const bool paused = documents_.Text().Paused();
    switch (command) {
    case MediaControls::Command::Play:
    case MediaControls::Command::Pause:
        if (documents_.HasDocument() && paused == (command == MediaControls::Command::Play))
            documents_.PauseOrGoOn();
        break;
    case MediaControls::Command::PlayPause:
        if (documents_.HasDocument())
            documents_.PauseOrGoOn();
        break;
    case MediaControls::Command::Stop:
        if (documents_.HasDocument())
            stop_();
        break;
    case MediaControls::Command::Next:
        documents_.ByParagraph(true, Narrator::Pausing::Stays);
        break;
    case MediaControls::Command::Previous:
        documents_.ByParagraph(false, Narrator::Pausing::Stays);
        break;
    case MediaControls::Command::Raise:
        raise_();
        break;
    }
}

} // namespace voxmate
