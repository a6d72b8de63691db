// All interfaces through which the program reaches the outside. main() fills one with the implementations of its
// platform, a test fills one with fakes.
#pragma once

#include "platform/Agent.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/Process.h"
#include "platform/SettingsStore.h"
#include "platform/SpeechControl.h"
#include "platform/WindowSystem.h"
#include "platform/Word.h"

namespace voxmate
{

struct Platform {
    SettingsStore& Settings;
    AgentControl& Agent;
    SpeechControl& Speech;
    WindowSystem& Windows;
    FileSystem& Files;
    Process& System;
    Clock& Time;
    WordAutomation& Word;
};

} // namespace voxmate
