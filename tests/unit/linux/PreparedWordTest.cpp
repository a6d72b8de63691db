// What starts while a document is still being chosen, with stand-ins for LibreOffice.
#include "tests/unit/linux/WordProcessorTest.h"

#include <algorithm>
#include <sys/resource.h>
#include <sys/wait.h>
#include <utility>
#include <vector>

using namespace voxmate;
using namespace voxmate::linux_platform;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

using Clock = std::chrono::steady_clock;

class PreparedWordTest : public WordProcessorTest
{
protected:
    // Installs a stand-in that notes in "waiting" that it waits for documents, and in "converted" each document it is
    // handed, with its profile. `converts` is what it then does; without a LibreOffice that waits it does the same.
    void Waits(const std::string& converts, const std::string& starts = "")
    {
        Soffice(FindsSocket() + "if [ -z \"$out\" ]; then\n" + starts +
                "echo $$ $profile >> $record/waiting\ntouch $socket\nexec sleep 600\nfi\n"
                "printf '%s\\n' \"$(cat $document) $profile\" >> $record/converted\n" +
                converts);
    }
    LibreOfficeWord Automation(std::chrono::milliseconds ready = 1h, std::chrono::milliseconds limit = 30s) const
    {
        return LibreOfficeWord((folder_ / "bin").string(), limit, ready);
    }
    std::vector<std::string> Lines(const std::string& name) const
    {
        std::istringstream text(Record(name));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }
    void WaitForLines(const std::string& name, std::size_t count) const
    {
        for (int i = 0; i < 1000 && Lines(name).size() < count; ++i)
            std::this_thread::sleep_for(10ms);
        ASSERT_EQ(Lines(name).size(), count) << Record(name);
    }
    // The process that waits for documents, and whether it still does.
    pid_t Waiting() const { return static_cast<pid_t>(std::stol("0" + Record("waiting"))); }
    static std::string ProfileIn(const std::string& line) { return line.substr(line.find("file://")); }
    static std::string Text(WordApplication& word) { return word.RangeText(0, word.RangeEnd()); }

    void WaitUntilNothingIsLeft() const
    {
        for (int i = 0; i < 1000 && (Alive() > 0 || !fs::is_empty(folder_ / "temp")); ++i)
            std::this_thread::sleep_for(10ms);
        ExpectNothingLeft();
    }
};

TEST_F(PreparedWordTest, TheOneThatWaitsIsHandedTheDocument)
{
    Waits(Gives("<text:p>Hello.</text:p>"));
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    ASSERT_TRUE(preparation);
    WaitForLines("waiting", 1);
    EXPECT_EQ(Record("converted"), "");
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    ASSERT_EQ(Lines("waiting").size(), 1u);
    EXPECT_EQ(Lines("converted"), (std::vector<std::string>{"{\\rtf1 Hello} " + ProfileIn(Lines("waiting").front())}));
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, ItStartsQuietlyWithAPageAndNoConversionInAProfileOfItsOwn)
{
    Waits("exit 1\n",
          "printf '%s\\n' \"$@\" > $record/arguments\nnice > $record/nice\npwd > $record/folder\n"
          "readlink /proc/self/ns/net > $record/network\n"
          "cat ${profile#file://}/user/registrymodifications.xcu > $record/settings\ncat $last > $record/page\n");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    WaitForLines("waiting", 1);
    std::string work = Record("folder");
    work.pop_back();
    EXPECT_EQ(fs::path(work).parent_path(), folder_ / "temp");
    const std::string arguments = Record("arguments");
    EXPECT_NE(arguments.find("-env:UserInstallation=file://" + work + "/profile\n"), std::string::npos);
    EXPECT_NE(arguments.find("\n--headless\n"), std::string::npos);
    EXPECT_TRUE(arguments.ends_with("\n" + work + "/page.fodt\n")) << arguments;
    EXPECT_EQ(arguments.find("--convert-to"), std::string::npos);
    EXPECT_EQ(std::stoi(Record("nice")), std::min(19, ::getpriority(PRIO_PROCESS, 0) + 3));
    EXPECT_NE(Record("settings").find("DisableMacrosExecution"), std::string::npos);
    EXPECT_NE(Record("page").find("<text:p>"), std::string::npos);
}

TEST_F(PreparedWordTest, NothingIsPreparedWithoutLibreOffice)
{
    EXPECT_EQ(Automation().Prepare(), nullptr);
}

TEST_F(PreparedWordTest, ADialogThatIsCancelledLeavesNothing)
{
    Waits("exit 1\n", "touch $TMPDIR/something\nsleep 600 & echo $! >> $record/pids\n");
    LibreOfficeWord automation = Automation();
    auto preparation = automation.Prepare();
    WaitForLines("waiting", 1);
    EXPECT_EQ(Alive(), 2);
    preparation.reset();
    WaitUntilNothingIsLeft();
    // The process that watched over it ends last.
    siginfo_t child{};
    for (int i = 0; i < 1000 && ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0; ++i)
        std::this_thread::sleep_for(10ms);
    EXPECT_EQ(::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT), -1) << "a process is still there";
}

TEST_F(PreparedWordTest, ADialogThatIsCancelledAtOnceLeavesNothing)
{
    Waits("exit 1\n");
    LibreOfficeWord automation = Automation();
    for (int i = 0; i < 20; ++i)
        automation.Prepare();
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, AfterItsTimeItIsEndedAndTheDocumentIsConvertedAllTheSame)
{
    Waits(Gives("<text:p>Hello.</text:p>"));
    LibreOfficeWord automation = Automation(1ms);
    const auto preparation = automation.Prepare();
    std::this_thread::sleep_for(100ms);
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, ItsTimeEndsItWhileTheDialogIsStillUp)
{
    Waits("exit 1\n");
    LibreOfficeWord automation = Automation(1500ms);
    const Clock::time_point start = Clock::now();
    const auto preparation = automation.Prepare();
    WaitForLines("waiting", 1);
    WaitUntilNothingIsLeft();
    EXPECT_GE(Clock::now() - start, 1500ms);
}

TEST_F(PreparedWordTest, TheDocumentsConversionMayTakeLongerThanThat)
{
    Waits("sleep 1.5\n" + Gives("<text:p>Hello.</text:p>"));
    LibreOfficeWord automation = Automation(1s);
    const auto preparation = automation.Prepare();
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    EXPECT_EQ(Lines("converted").size(), 1u);
}

TEST_F(PreparedWordTest, OneThatWasKilledIsReplaced)
{
    Waits(Gives("<text:p>Hello.</text:p>"));
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    WaitForLines("waiting", 1);
    ::kill(Waiting(), SIGKILL);
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, OneThatIsKilledInMidConversionIsReplaced)
{
    // The first conversion kills the one that waits and gives nothing.
    Waits("[ $(wc -l < $record/converted) -gt 1 ] && " + Gives("<text:p>Hello.</text:p>") +
          "[ $(wc -l < $record/converted) -gt 1 ] || kill -9 $(cut -d' ' -f1 $record/waiting)\n");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    WaitForLines("waiting", 1);
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    EXPECT_EQ(Lines("converted").size(), 2u);
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, OneThatCannotStartIsReplacedAndNotStartedAgainAndAgain)
{
    Waits(Gives("<text:p>Hello.</text:p>"), "exit 1\n");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    // One that failed to wait and one that converted.
    EXPECT_EQ(Lines("pids").size(), 2u);
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, WhatCannotBeConvertedIsTriedOnce)
{
    Waits("exit 0\n");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    EXPECT_EQ(ErrorOfOpening(*automation.CreateWord(), Document()), 4198);
    EXPECT_EQ(Lines("converted").size(), 1u);
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, BytesThatAreNoDocumentAreNotHandedToIt)
{
    Waits(Gives("<text:p>Hello.</text:p>"));
    Write(Document(), std::string(40, '\0'));
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    EXPECT_EQ(ErrorOfOpening(*automation.CreateWord(), Document()), 4198);
    EXPECT_EQ(Record("converted"), "");
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, LetsTheProgramLiveWhileItConverts)
{
    Waits("sleep 0.5\n" + Gives("<text:p>abc</text:p>"));
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    int calls = 0;
    automation.CreateWord()->Open(Document().string(), [&] { return ++calls > 0; });
    // Calls come about every 10 ms; a busy machine may be slower.
    EXPECT_GE(calls, 10);
}

TEST_F(PreparedWordTest, AConversionThatIsBrokenOffOrTakesTooLongIsEnded)
{
    Waits("echo ready > $record/ready\nsleep 600\n");
    for (const auto limit : {30'000ms, 300ms}) {
        fs::remove(folder_ / "record" / "ready");
        LibreOfficeWord automation = Automation(1h, limit);
        const auto preparation = automation.Prepare();
        const bool stops = limit > 1s;
        EXPECT_EQ(
            ErrorOfOpening(*automation.CreateWord(), Document(), [&] { return !stops || Record("ready").empty(); }),
            4198);
        WaitUntilNothingIsLeft();
    }
}

TEST_F(PreparedWordTest, AnErrorOfTheProgramsOwnPassesAndEndsTheConversion)
{
    Waits("echo ready > $record/ready\nsleep 600\n");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    EXPECT_EQ(ErrorOfOpening(*automation.CreateWord(), Document(),
                             [this]() -> bool {
                                 if (!Record("ready").empty())
                                     throw RuntimeError(5, "Invalid procedure call or argument");
                                 return true;
                             }),
              5);
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, AnExpectedDocumentIsConvertedInAdvanceAndOnce)
{
    Waits(Gives("<text:p>Hello.</text:p>") + "echo done >> $record/done\n");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    preparation->Expect(Document().string());
    preparation->Expect(Document().string());
    WaitForLines("done", 1);
    WaitUntilNothingIsLeft();
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "Hello.\r");
    EXPECT_EQ(Lines("converted").size(), 1u);
    EXPECT_EQ(Lines("waiting").size(), 1u);
}

TEST_F(PreparedWordTest, AnExpectedDocumentThatIsOpenedMeanwhileIsConvertedOnce)
{
    Waits("while [ ! -e $record/go ]; do sleep 0.01; done\n" + Gives("<text:p>Hello.</text:p>"));
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    preparation->Expect(Document().string());
    WaitForLines("converted", 1);
    const auto word = automation.CreateWord();
    word->Open(Document().string(), [this] {
        Write(folder_ / "record" / "go", "");
        return true;
    });
    EXPECT_EQ(Text(*word), "Hello.\r");
    EXPECT_EQ(Lines("converted").size(), 1u);
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, AnotherDocumentBreaksOffTheExpectedOneAndGetsALibreOfficeOfItsOwn)
{
    Waits("[ \"$(cat $document)\" = '{\\rtf1 Hello}' ] && sleep 600\n" + Gives("<text:p>Other.</text:p>"));
    Write(folder_ / "other.doc", "{\\rtf1 Other}");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    preparation->Expect(Document().string());
    WaitForLines("converted", 1);
    const auto word = automation.CreateWord();
    word->Open((folder_ / "other.doc").string(), GoOn);
    EXPECT_EQ(Text(*word), "Other.\r");
    ASSERT_EQ(Lines("converted").size(), 2u);
    EXPECT_NE(ProfileIn(Lines("converted")[0]), ProfileIn(Lines("converted")[1]));
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, TheNextExpectedDocumentHasItsLibreOfficeStartedAtOnce)
{
    Waits(Gives("<text:p>Hello.</text:p>"));
    Write(folder_ / "other.doc", "{\\rtf1 Other}");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    preparation->Expect(Document().string());
    WaitForLines("converted", 1);
    WaitUntilNothingIsLeft();
    preparation->Expect((folder_ / "other.doc").string());
    WaitForLines("converted", 2);
    EXPECT_NE(ProfileIn(Lines("waiting")[0]), ProfileIn(Lines("waiting")[1]));
}

TEST_F(PreparedWordTest, AnExpectedDocumentThatIsWrittenToBeforeItIsOpenedIsConvertedAgain)
{
    Waits("cp $document $out/document.fodt\n");
    Write(Document(), "{\\rtf1 old}");
    LibreOfficeWord automation = Automation();
    const auto preparation = automation.Prepare();
    preparation->Expect(Document().string());
    WaitForLines("converted", 1);
    WaitUntilNothingIsLeft();
    Waits(Gives("<text:p>New.</text:p>"));
    Write(Document(), "{\\rtf1 new and longer}");
    const auto word = automation.CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(Text(*word), "New.\r");
}

TEST_F(PreparedWordTest, AnExpectedDocumentsConversionIsEndedWithTheDialog)
{
    Waits("echo $$ >> $record/pids\nsleep 600\n");
    LibreOfficeWord automation = Automation();
    auto preparation = automation.Prepare();
    preparation->Expect(Document().string());
    WaitForLines("converted", 1);
    preparation.reset();
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, EachDialogHasItsOwnAndTheSecondDocumentOfAWordProcessorIsConvertedWithout)
{
    Waits(Gives("<text:p>Hello.</text:p>"));
    LibreOfficeWord automation = Automation();
    for (int i = 1; i <= 3; ++i) {
        const auto preparation = automation.Prepare();
        WaitForLines("waiting", static_cast<std::size_t>(i));
        const auto word = automation.CreateWord();
        word->Open(Document().string(), GoOn);
        EXPECT_EQ(Text(*word), "Hello.\r");
        EXPECT_EQ(ProfileIn(Lines("converted").back()), ProfileIn(Lines("waiting").back()));
        word->Open(Document().string(), GoOn);
        EXPECT_EQ(Text(*word), "Hello.\r");
        EXPECT_NE(ProfileIn(Lines("converted").back()), ProfileIn(Lines("waiting").back()));
    }
    WaitUntilNothingIsLeft();
}

TEST_F(PreparedWordTest, ASecondDialogEndsWhatTheFirstHadPrepared)
{
    Waits("exit 1\n");
    LibreOfficeWord automation = Automation();
    const auto first = automation.Prepare();
    WaitForLines("waiting", 1);
    const auto second = automation.Prepare();
    WaitForLines("waiting", 2);
    for (int i = 0; i < 1000 && Alive() > 1; ++i)
        std::this_thread::sleep_for(10ms);
    EXPECT_EQ(Alive(), 1);
}

TEST_F(PreparedWordTest, NothingIsLeftWhenTheProgramEnds)
{
    Waits("exit 1\n");
    {
        LibreOfficeWord automation = Automation();
        const auto preparation = automation.Prepare();
        WaitForLines("waiting", 1);
    }
    ExpectNothingLeft();
}

TEST_F(PreparedWordTest, NothingIsLeftEvenWhenTheProgramItselfIsKilled)
{
    Waits("echo ready > $record/ready\nsleep 600\n", "sleep 600 & echo $! >> $record/pids\n");
    for (const bool converting : {false, true}) {
        fs::remove(folder_ / "record" / "waiting");
        // The program gets its own process group, which is killed as a whole, as a terminal does.
        const pid_t program = ::fork();
        if (program == 0) {
            ::setpgid(0, 0);
            LibreOfficeWord automation = Automation();
            const auto preparation = automation.Prepare();
            if (converting)
                preparation->Expect(Document().string());
            std::this_thread::sleep_for(1h);
            ::_exit(0);
        }
        ASSERT_GT(program, 0);
        WaitForRecord(converting ? "ready" : "waiting");
        EXPECT_GE(Alive(), 2);
        ::kill(-program, SIGKILL);
        ::waitpid(program, nullptr, 0);
        WaitUntilNothingIsLeft();
    }
}

} // namespace
