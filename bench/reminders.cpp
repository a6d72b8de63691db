// Measures the largest number of reminders: loading and saving them, compared with plainly reading and writing the same
// bytes with the same waiting for the disk, and one scan of the list when nothing is due. What does not wait for the
// disk is measured in processor time: the files are in the system's cache, so the wall clock would add only the time of
// other programs.
//
// Usage: reminders [COUNT]   COUNT runs of each kind; the file is made in the folder for temporary files
#include "bench/Statistics.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/FakePlatform.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

using namespace voxmate;
using voxmate::bench::Median;
using voxmate::bench::NowMs;
using voxmate::bench::Report;

namespace
{

constexpr int most = 32767;

[[noreturn]] void Fail(const char* what)
{
    std::cerr << what << "\n";
    std::exit(1);
}

std::string Slots()
{
    std::string bytes;
    for (int i = 1; i <= most; ++i) {
        const std::string title = "Reminder number " + std::to_string(i);
        std::string slot =
            WriteReminder({title, "07", "03", "2104", "09", "05", "Something to be done, not too long.", "N"});
        slot.resize(ReminderSlotSize, '\0');
        bytes += slot;
    }
    return bytes;
}

// Reads the whole file at once into memory of its size.
void ReadPlainly(const std::string& path, std::size_t size)
{
    const int file = ::open(path.c_str(), O_RDONLY);
    std::string bytes(size, '\0');
    if (::read(file, bytes.data(), size) != static_cast<ssize_t>(size) || ::close(file) != 0)
        Fail("cannot read the file");
}

// Writes everything to a file beside the old one, syncs it, and gives it the old one's name.
void WritePlainly(const std::string& path, const std::string& beside, const std::string& bytes)
{
    const int file = ::open(beside.c_str(), O_RDWR | O_CREAT, 0600);
    const int folder = ::open(std::filesystem::path(path).parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) || ::fdatasync(file) != 0 ||
        ::fsync(folder) != 0 || ::close(file) != 0 || ::unlink(path.c_str()) != 0 ||
        ::rename(beside.c_str(), path.c_str()) != 0 || ::fsync(folder) != 0 || ::close(folder) != 0)
        Fail("cannot write the file");
}

/// The processor time this process has used, in milliseconds.
double ProcessorMs()
{
    struct timespec taken {
    };
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &taken);
    return 1e3 * static_cast<double>(taken.tv_sec) + 1e-6 * static_cast<double>(taken.tv_nsec);
}

template <class Body>
double Time(double (*clock)(), Body body)
{
    const double begin = clock();
    body();
    return clock() - begin;
}

void Compare(const char* what, const std::vector<double>& ours, const std::vector<double>& plain)
{
    Report(std::string(what) + ", plainly", plain, "ms");
    Report(what, ours, "ms");
    std::printf("%-48s %.2f times  aim: within 3 times\n", what, Median(ours) / Median(plain));
}

} // namespace

int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 25;
    if (count < 1)
        Fail("usage: reminders [COUNT]");
    std::string folder = (std::filesystem::temp_directory_path() / "voxmate-reminders-XXXXXX").string();
    if (!::mkdtemp(folder.data()))
        Fail("cannot make a folder for the file");

    fakes::FakePlatform fake;
    fakes::FakeMainWindow window(fake.log);
    linux_platform::LinuxFileSystem files;
    Platform platform{fake.store, fake.agent, fake.speech, fake.windows, files, fake.process, fake.clock, fake.word};
    const auto start = [&] {
        auto program = std::make_unique<Program>(platform);
        program->Main = &window;
        program->Reminders.File.ReminderFilePath = folder + "/VoxmateReminders.txt";
        program->Reminders.File.ReminderTempPath = folder + "/VoxmateReminders.tmp";
        return program;
    };
    const std::unique_ptr<Program> program = start();
    Reminders& reminders = program->Reminders;
    const std::string& path = reminders.File.ReminderFilePath;
    const std::string& beside = reminders.File.ReminderTempPath;
    const std::string bytes = Slots();
    std::ofstream(path, std::ios::binary) << bytes;

    std::vector<double> first;
    std::vector<double> load;
    std::vector<double> loadPlain;
    std::vector<double> save;
    std::vector<double> savePlain;
    std::vector<double> scan;
    // The measurements alternate, so that whatever else the machine does affects all alike. The first round warms up
    // and is not counted.
    for (int i = -1; i < count; ++i) {
        const double loaded = Time(ProcessorMs, [&] { reminders.LoadReminders(false, 0); });
        if (reminders.List.RemCount != most)
            Fail("the file could not be loaded");
        const double read = Time(ProcessorMs, [&] { ReadPlainly(path, bytes.size()); });
        const double written = Time(NowMs, [&] { reminders.File.WriteReminders(0); });
        const double plain = Time(NowMs, [&] { WritePlainly(path, beside, bytes); });
        fake.log.clear();
        const double scanned = Time(ProcessorMs, [&] { program->Scheduler.RemTimer_Timer(); });
        if (!fake.log.empty())
            Fail("something was due");
        if (i < 0)
            continue;
        load.push_back(loaded);
        loadPlain.push_back(read);
        save.push_back(written);
        savePlain.push_back(plain);
        scan.push_back(scanned);
    }
    // As at the program's start, when there is no memory to reuse.
    for (int i = 0; i < count; ++i) {
        const std::unique_ptr<Program> fresh = start();
        first.push_back(Time(ProcessorMs, [&] { fresh->Reminders.LoadReminders(false, 0); }));
    }
    Compare("32767 reminders: loaded into an empty list", first, loadPlain);
    Compare("32767 reminders: loaded", load, loadPlain);
    Compare("32767 reminders: saved", save, savePlain);
    Report("32767 reminders: one scan", scan, "ms", "below 1 ms");
    std::filesystem::remove_all(folder);
    return 0;
}
