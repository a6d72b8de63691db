// Remembers a voice that was chosen and is missing, such as a natural one while what it runs on is not installed: when
// it is there again, it is the chosen one again.
#pragma once

#include "forms/frmMain.h"
#include "modules/Program.h"
#include "platform/StateStore.h"

#include <string>

namespace voxmate
{

class KeptVoice
{
public:
    /// Before the program has started. The main window must outlive this object.
    KeptVoice(Program& program, frmMain& main, StateStore& state);
    /// Remembers the voice that was chosen if it is missing. When the program has started.
    void Remember();

private:
    Program& program_;
    StateStore& state_;
    bool chosen_ = false; ///< whether the user has chosen another since the start

    void BringBack();
    void Set(const std::string& missing, const std::string& instead);
};

} // namespace voxmate
