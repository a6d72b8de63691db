// Measures reading a text file line by line into one text, as the program does it, compared with a plain read of the
// same file into one string. Each read is done once in its own process, which reports its time and its peak memory. The
// time is processor time: the files are in the system's cache, so the wall clock would add only the time of other
// programs.
//
// Usage: text_file [COUNT]   COUNT runs of each kind; files of 1 MB and 100 MB in several encodings are made for it
#include "bench/Statistics.h"
#include "modules/Functions.h"
#include "platform/linux/files/LinuxFileSystem.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

using namespace voxmate;
using voxmate::bench::Median;
using voxmate::bench::Report;

namespace
{

constexpr double kMiB = 1024 * 1024;

struct Sample {
    const char* name;
    std::vector<std::string> lines; ///< repeated until the file is full
    std::string mark;
};

/// The processor time this process has used, in milliseconds.
double ProcessorMs()
{
    return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

std::string InUtf16(std::string_view ascii)
{
    std::string bytes;
    for (const char c : ascii)
        bytes += {c, '\0'};
    return bytes;
}

std::vector<Sample> Samples()
{
    const std::string prose = "It was the best of times, it was the worst of times, it was the age of wisdom.";
    return {{"ASCII", {prose + "\r\n", "   It was the age of foolishness.\r\n", "\r\n"}, ""},
            {"UTF-8, German",
             {"Grüße aus Köln: fünf schöne Bäume, süße Äpfel und ein müder Löwe über den Dächern.\r\n", "\r\n"},
             ""},
            {"UTF-8, Russian", {"Все счастливые семьи похожи друг на друга, каждая несчастлива по-своему.\n"}, ""},
            {"Windows-1252",
             {"Gr\xFC\xDF"
              "e aus K\xF6ln: f\xFCnf sch\xF6ne B\xE4ume und ein m\xFC"
              "der L\xF6we.\r\n"},
             ""},
            {"UTF-16", {InUtf16(prose + "\r\n")}, "\xFF\xFE"}};
}

void MakeFile(const std::string& path, const Sample& sample, std::size_t size)
{
    std::ofstream file(path, std::ios::binary);
    file << sample.mark;
    for (std::size_t written = 0, i = 0; written < size; written += sample.lines[i].size(), ++i) {
        i %= sample.lines.size();
        file << sample.lines[i];
    }
    if (!file.flush()) {
        std::cerr << "cannot write " << path << "\n";
        std::exit(1);
    }
}

// Makes one measurement in a child process and prints "MILLISECONDS PEAK_BYTES TEXT_BYTES".
int Measure(const std::string& manner, const std::string& path)
{
    std::string text;
    const double begin = ProcessorMs();
    if (manner == "lines") {
        linux_platform::LinuxFileSystem files;
        text = ReadTextDocument(*files.OpenTextFile(path));
    } else if (manner == "plain") {
        std::ifstream file(path, std::ios::binary);
        text.resize(std::filesystem::file_size(path));
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
    }
    const double taken = ProcessorMs() - begin;
    struct rusage usage {
    };
    ::getrusage(RUSAGE_SELF, &usage);
    std::cout << taken << " " << usage.ru_maxrss * 1024 << " " << text.size() << "\n";
    return manner == "nothing" || !text.empty() ? 0 : 1;
}

struct Cost {
    std::vector<double> milliseconds;
    std::vector<double> mebibytes;
};

void RunChild(const std::string& program, const std::string& manner, const std::string& path, Cost& cost)
{
    FILE* child = ::popen(("'" + program + "' " + manner + " '" + path + "'").c_str(), "r");
    double taken = 0;
    double peak = 0;
    if (!child || std::fscanf(child, "%lf %lf", &taken, &peak) != 2 || ::pclose(child) != 0) {
        std::cerr << "a measurement failed\n";
        std::exit(1);
    }
    cost.milliseconds.push_back(taken);
    cost.mebibytes.push_back(peak / kMiB);
}

void Compare(const std::string& program, const Sample& sample, std::size_t size, int count, const std::string& path)
{
    MakeFile(path, sample, size);
    Cost lines;
    Cost plain;
    Cost nothing;
    // The first of each warms the system's cache and is not counted. They alternate, so that whatever else the machine
    // does affects all alike.
    for (int i = -1; i < count; ++i) {
        Cost warming;
        RunChild(program, "nothing", path, i < 0 ? warming : nothing);
        RunChild(program, "plain", path, i < 0 ? warming : plain);
        RunChild(program, "lines", path, i < 0 ? warming : lines);
    }
    const std::string what = std::to_string(size / 1000000) + " MB " + sample.name;
    Report(what + ", plain read", plain.milliseconds, "ms ");
    Report(what + ", line by line", lines.milliseconds, "ms ");
    Report(what + ", plain read, peak memory", plain.mebibytes, "MiB");
    Report(what + ", line by line, peak memory", lines.mebibytes, "MiB");
    const double empty = Median(nothing.mebibytes);
    std::printf(
        "%-48s time %.2f times, peak memory %.2f times (%.2f times without the %.1f MiB of a process that reads "
        "nothing)  aim: both within 3 times\n",
        what.c_str(), Median(lines.milliseconds) / Median(plain.milliseconds),
        Median(lines.mebibytes) / Median(plain.mebibytes),
        (Median(lines.mebibytes) - empty) / (Median(plain.mebibytes) - empty), empty);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3)
        return Measure(argv[1], argv[2]);
    const int count = argc > 1 ? std::atoi(argv[1]) : 15;
    if (count < 1) {
        std::cerr << "usage: text_file [COUNT]\n";
        return 1;
    }
    std::string folder = (std::filesystem::temp_directory_path() / "voxmate-text-XXXXXX").string();
    if (!::mkdtemp(folder.data())) {
        std::cerr << "cannot make a folder for the files\n";
        return 1;
    }
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    for (const Sample& sample : Samples())
        for (const std::size_t size : {std::size_t{1000000}, std::size_t{100000000}})
            Compare(program, sample, size, count, folder + "/sample.txt");
    std::filesystem::remove_all(folder);
    return 0;
}
