// A stand-in for LibreOffice: a script that converts, hangs, fails or leaves files behind.
#pragma once

#include "base/RuntimeError.h"
#include "platform/linux/word/LibreOfficeWord.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>

namespace voxmate::linux_platform
{

class WordProcessorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = "/tmp/voxmate-test-XXXXXX";
        folder_ = ::mkdtemp(name.data());
        for (const char* part : {"bin", "temp", "record"})
            std::filesystem::create_directory(folder_ / part);
        ::setenv("TMPDIR", (folder_ / "temp").c_str(), 1);
        Write(Document(), "{\\rtf1 Hello}");
    }
    void TearDown() override
    {
        ::unsetenv("TMPDIR");
        std::filesystem::remove_all(folder_);
    }

    static void Write(const std::filesystem::path& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string Read(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path Document() const { return folder_ / "document.doc"; }
    std::string Record(const std::string& name) const { return Read(folder_ / "record" / name); }

    // Installs a stand-in for soffice. Its script has these variables: $out, the folder for its output; $document, the
    // file to convert; $profile, the address of its profile; and $record, a folder for notes. It has already noted its
    // process number in "pids".
    void Soffice(const std::string& body)
    {
        const std::filesystem::path script = folder_ / "bin" / "soffice";
        Write(script, "#!/bin/sh\nrecord=" + (folder_ / "record").string() +
                          "\nfor argument; do\n  [ \"$last\" = --outdir ] && out=$argument\n"
                          "  case $argument in -env:UserInstallation=*) profile=${argument#*=};; esac\n"
                          "  last=$argument\ndone\ndocument=$last\necho $$ >> $record/pids\n" +
                          body);
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    }

    static std::string Flat(const std::string& body)
    {
        return "<office:document><office:body><office:text>" + body + "</office:text></office:body></office:document>";
    }

    // A line of the stand-in's script that writes a document with this body.
    static std::string Gives(const std::string& body)
    {
        return "printf '%s' '" + Flat(body) + "' > $out/document.fodt\n";
    }

    std::unique_ptr<WordApplication> Create(std::chrono::milliseconds limit = std::chrono::seconds(30))
    {
        std::unique_ptr<WordApplication> word = LibreOfficeWord((folder_ / "bin").string(), limit).CreateWord();
        word->SetVisible(false);
        return word;
    }

    static bool GoOn() { return true; }

    // The number of the run-time error that opening raises; 0 for none.
    static int ErrorOfOpening(WordApplication& word, const std::filesystem::path& document,
                              const std::function<bool()>& goOn = GoOn)
    {
        try {
            word.Open(document.string(), goOn);
            return 0;
        } catch (const RuntimeError& error) {
            return error.Number;
        }
    }

    void WaitForRecord(const std::string& name) const
    {
        for (int i = 0; i < 1000 && Record(name).empty(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ASSERT_NE(Record(name), "");
    }

    // The number of processes that noted their numbers and are still running.
    int Alive() const
    {
        std::istringstream pids(Record("pids"));
        int alive = 0;
        for (pid_t pid = 0; pids >> pid;)
            alive += ::kill(pid, 0) == 0 || errno != ESRCH ? 1 : 0;
        return alive;
    }

    // Shell code that sets $socket: what one listens on for a second one with the same profile. LibreOffice writes each
    // byte of the digest in its name without a leading zero.
    static std::string FindsSocket()
    {
        return "digest=$(printf %s $profile | iconv -t UTF-16LE | md5sum | cut -d' ' -f1)\n"
               "socket=/tmp/OSL_PIPE_$(id -u)_SingleOfficeIPC_$(echo $digest | sed 's/../& /g; s/\\b0//g; s/ //g')\n";
    }

    void ExpectNothingLeft() const
    {
        EXPECT_EQ(Alive(), 0);
        EXPECT_TRUE(std::filesystem::is_empty(folder_ / "temp"));
    }

    std::filesystem::path folder_;
};

} // namespace voxmate::linux_platform
