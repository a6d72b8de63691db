// A program whose files are real ones, all else being fakes.
#pragma once

#include "platform/linux/files/LinuxFileSystem.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/ProgramTest.h"

namespace voxmate::linux_platform
{

struct RealFiles {
    fakes::FakePlatform fake;
    LinuxFileSystem files;
    Platform platform{fake.store, fake.agent, fake.speech, fake.windows, files, fake.process, fake.clock, fake.word};
    Program programOnFiles{platform};
    fakes::FakeMainWindow window{fake.log};

    RealFiles() { programOnFiles.Main = &window; }
};

} // namespace voxmate::linux_platform
