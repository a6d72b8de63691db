// The word processor, with stand-ins for LibreOffice: scripts that convert, hang, fail or leave files behind.
#include "tests/unit/linux/WordProcessorTest.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <utility>

using namespace voxmate;
using namespace voxmate::linux_platform;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

using Clock = std::chrono::steady_clock;

class LibreOfficeWordTest : public WordProcessorTest
{
};

} // namespace

TEST_F(LibreOfficeWordTest, CannotBeCreatedWithoutLibreOffice)
{
    try {
        Create();
        FAIL() << "created";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 429);
        EXPECT_EQ(error.Description, "ActiveX component can't create object");
    }
    Write(folder_ / "bin" / "soffice", "not a program");
    EXPECT_THROW(Create(), RuntimeError);
}

TEST_F(LibreOfficeWordTest, IsFoundInTheFirstFolderThatHasIt)
{
    Soffice(Gives("<text:p>Found.</text:p>"));
    const std::string folders = "relative::/nowhere:" + (folder_ / "bin").string() + ":/usr/bin";
    const auto word = LibreOfficeWord(folders).CreateWord();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeText(0, 6), "Found.");
}

TEST_F(LibreOfficeWordTest, GivesLengthAndRangesInCharacters)
{
    Soffice(Gives("<text:p>Grüße 😀</text:p><text:p>an alle</text:p>"));
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeEnd(), 16);
    EXPECT_EQ(word->RangeText(0, 16), "Grüße 😀\ran alle\r");
    EXPECT_EQ(word->RangeText(2, 5), "üße");
    EXPECT_EQ(word->RangeText(6, 8), "😀\r");
    EXPECT_EQ(word->RangeText(16, 16), "");
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, ARangeBeyondTheTextIsCutOff)
{
    Soffice(Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeText(2, 100), "c\r");
    EXPECT_EQ(word->RangeText(-5, 1), "a");
    EXPECT_EQ(word->RangeText(3, 1), "");
    EXPECT_EQ(word->RangeText(100, 200), "");
}

TEST_F(LibreOfficeWordTest, ADocumentWithoutTextHasNoLength)
{
    Soffice(Gives("<text:p/><text:p/>"));
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeEnd(), 0);
    EXPECT_EQ(word->RangeText(0, 0), "");
}

TEST_F(LibreOfficeWordTest, NothingIsToBeHadWithoutADocument)
{
    Soffice(Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    EXPECT_THROW(word->RangeEnd(), RuntimeError);
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeEnd(), 4);
    word->Close();
    EXPECT_THROW(word->RangeText(0, 1), RuntimeError);
    word->Open(Document().string(), GoOn);
    word->Quit();
    EXPECT_THROW(word->RangeEnd(), RuntimeError);
}

TEST_F(LibreOfficeWordTest, AnotherDocumentTakesThePlaceOfTheLast)
{
    Soffice("[ \"$(cat $document)\" = '{\\rtf1 Hello}' ] && " + Gives("<text:p>first</text:p>") +
            "[ \"$(cat $document)\" = '{\\rtf1 Hello}' ] || " + Gives("<text:p>second one</text:p>"));
    Write(folder_ / "other.doc", "{\\rtf1 Other}");
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeText(0, 5), "first");
    word->Open((folder_ / "other.doc").string(), GoOn);
    EXPECT_EQ(word->RangeText(0, 10), "second one");
}

TEST_F(LibreOfficeWordTest, IsStartedWithoutWindowsInAProfileOfItsOwn)
{
    ::setenv("DISPLAY", ":77", 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
    Soffice("printf '%s\\n' \"$@\" > $record/arguments\nenv > $record/environment\npwd > $record/folder\n"
            "cat ${profile#file://}/user/registrymodifications.xcu > $record/settings\n" +
            Gives("<text:p>abc</text:p>"));
    Create()->Open(Document().string(), GoOn);
    ::unsetenv("DISPLAY");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");

    std::string work = Record("folder");
    work.pop_back();
    EXPECT_EQ(fs::path(work).parent_path(), folder_ / "temp");
    const std::string arguments = Record("arguments");
    EXPECT_NE(arguments.find("-env:UserInstallation=file://" + work + "/profile\n"), std::string::npos);
    EXPECT_NE(arguments.find("\n--headless\n"), std::string::npos);
    EXPECT_NE(arguments.find("\n--norestore\n"), std::string::npos);
    const std::string environment = "\n" + Record("environment");
    EXPECT_NE(environment.find("HOME=" + work + "/home\n"), std::string::npos);
    EXPECT_NE(environment.find("TMPDIR=" + work + "/tmp\n"), std::string::npos);
    EXPECT_EQ(environment.find("DISPLAY="), std::string::npos);
    EXPECT_EQ(environment.find("DBUS_"), std::string::npos);
    for (const char* proxy : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy"})
        EXPECT_NE(environment.find(std::string("\n") + proxy + "=http://127.0.0.1:9\n"), std::string::npos) << proxy;
    EXPECT_EQ(environment.find("no_proxy"), std::string::npos);
    const std::string settings = Record("settings");
    EXPECT_NE(settings.find("<prop oor:name=\"DisableMacrosExecution\" oor:op=\"fuse\"><value>true</value>"),
              std::string::npos);
    EXPECT_NE(settings.find("<prop oor:name=\"BlockUntrustedRefererLinks\" oor:op=\"fuse\"><value>true</value>"),
              std::string::npos);
    EXPECT_NE(settings.find("<prop oor:name=\"ooInetProxyType\" oor:op=\"fuse\"><value>2</value>"), std::string::npos);
    EXPECT_NE(settings.find("<node oor:name=\"Local\" oor:op=\"replace\">"), std::string::npos);
    EXPECT_NE(settings.find("<prop oor:name=\"URLTemplate\" oor:op=\"fuse\"><value>file</value>"), std::string::npos);
    EXPECT_EQ(settings.find("<value>http</value>"), std::string::npos);
}

TEST_F(LibreOfficeWordTest, IsStartedWhereThereIsNoNetworkAndStaysTheSameUser)
{
    const pid_t probe = ::fork();
    if (probe == 0)
        ::_exit(::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 ? 0 : 1);
    int status = 0;
    ASSERT_EQ(::waitpid(probe, &status, 0), probe);
    if (status != 0)
        GTEST_SKIP() << "this system grants an ordinary user no network of one's own";
    // After two heading lines /proc/net/dev has one line per device.
    Soffice("readlink /proc/self/ns/net > $record/network\nsed 1,2d /proc/net/dev | cut -d: -f1 > $record/devices\n"
            "echo $(id -u) $(id -g) > $record/user\nstat -c '%u %g' $document > $record/owner\n" +
            Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeEnd(), 4);
    EXPECT_NE(Record("network"), "");
    EXPECT_NE(Record("network"), fs::read_symlink("/proc/self/ns/net").string() + "\n");
    EXPECT_TRUE(Record("devices").empty() || Record("devices") == "    lo\n") << Record("devices");
    EXPECT_EQ(Record("user"), std::to_string(::getuid()) + " " + std::to_string(::getgid()) + "\n");
    EXPECT_EQ(Record("owner"), Record("user"));
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, FilesThatWeHaveOpenAreNotHandedOn)
{
    const int held = ::open(Document().c_str(), O_RDONLY);
    constexpr int high = 200;
    ASSERT_GE(held, 0);
    ASSERT_EQ(::dup2(held, high), high);
    Soffice("echo $PPID $$ > $record/family\nwhile [ ! -e $record/seen ]; do sleep 0.01; done\n" +
            Gives("<text:p>abc</text:p>"));
    // Inspected from here, because from within its namespace it may not inspect other processes.
    std::string files;
    Create()->Open(Document().string(), [&] {
        std::istringstream family(Record("family"));
        if (files.empty() && Record("family").ends_with('\n')) {
            for (pid_t pid = 0; family >> pid;)
                for (const fs::directory_entry& file : fs::directory_iterator("/proc/" + std::to_string(pid) + "/fd")) {
                    std::error_code gone;
                    files += fs::read_symlink(file, gone).string() + "\n";
                }
            Write(folder_ / "record" / "seen", "");
        }
        return true;
    });
    ::close(held);
    ::close(high);
    EXPECT_NE(files.find("pipe:"), std::string::npos) << files;
    EXPECT_NE(files.find("/dev/null\n"), std::string::npos) << files;
    EXPECT_EQ(files.find(Document().string() + "\n"), std::string::npos) << files;
}

TEST_F(LibreOfficeWordTest, TakesADocumentWhateverItsNameAndWhereverItStands)
{
    Soffice("cp $document $record/content\n" + Gives("<text:p>abc</text:p>"));
    const fs::path folder = folder_ / "--a folder #1 100%20 'ü'";
    fs::create_directory(folder);
    Write(folder / "-my \"letter\" & more.DOC", "{\\rtf1 Mine}");
    const auto word = Create();
    word->Open((folder / "-my \"letter\" & more.DOC").string(), GoOn);
    EXPECT_EQ(Record("content"), "{\\rtf1 Mine}");
    const fs::path before = fs::current_path();
    fs::current_path(folder_);
    word->Open("document.doc", GoOn);
    fs::current_path(before);
    EXPECT_EQ(Record("content"), "{\\rtf1 Hello}");
}

TEST_F(LibreOfficeWordTest, ATemporaryFolderOfAnUnusualNameIsNotUsed)
{
    const fs::path unusual = folder_ / "temp" / "a folder";
    fs::create_directory(unusual);
    ::setenv("TMPDIR", unusual.c_str(), 1);
    Soffice("pwd > $record/folder\n" + Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeEnd(), 4);
    EXPECT_EQ(Record("folder").rfind("/tmp/voxmate-word-", 0), 0u) << Record("folder");
}

TEST_F(LibreOfficeWordTest, LetsTheProgramLiveWhileItConverts)
{
    Soffice("sleep 0.5\n" + Gives("<text:p>abc</text:p>"));
    int calls = 0;
    const auto word = Create();
    word->Open(Document().string(), [&] { return ++calls > 0; });
    EXPECT_EQ(word->RangeEnd(), 4);
    // Calls come about every 10 ms; a busy machine may be slower.
    EXPECT_GE(calls, 10);
}

TEST_F(LibreOfficeWordTest, TriesWhateverMayBeADocumentUnderItsName)
{
    Soffice("cp $document $record/content\n" + Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    for (const char* content : {"", "A text.", "<html>", "<?xml version=\"1.0\"?><a/>", "PK\x03\x04"}) {
        Write(folder_ / "other.doc", content);
        EXPECT_EQ(ErrorOfOpening(*word, folder_ / "other.doc"), 0) << content;
        const std::string mark =
            *content == 'A' || *content == '\0' || std::string(content) == "<html>" ? "\xEF\xBB\xBF" : "";
        EXPECT_EQ(Record("content"), mark + content);
    }
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, IsNotStartedForBytesThatAreNoDocument)
{
    Soffice(Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    for (const std::string& content : {std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16), std::string(40, '\0')}) {
        Write(folder_ / "wrong.doc", content);
        EXPECT_EQ(ErrorOfOpening(*word, folder_ / "wrong.doc"), 4198);
    }
    EXPECT_EQ(ErrorOfOpening(*word, folder_ / "nowhere.doc"), 4198);
    EXPECT_EQ(Record("pids"), "");
}

TEST_F(LibreOfficeWordTest, WhatCannotBeConvertedFailsAsACommand)
{
    const auto failure = [this](const std::string& script) {
        Soffice(script);
        return ErrorOfOpening(*Create(), Document());
    };
    EXPECT_EQ(failure("exit 1\n"), 4198);
    EXPECT_EQ(failure("exit 0\n"), 4198);
    EXPECT_EQ(failure("kill -SEGV $$\n"), 4198);
    EXPECT_EQ(failure(": > $out/document.fodt\n"), 4198);
    EXPECT_EQ(failure("printf '<office:document><office:body>' > $out/document.fodt\n"), 4198);
    ExpectNothingLeft();
    Write(folder_ / "bin" / "soffice", "\x7F"
                                       "ELF that is none");
    EXPECT_EQ(ErrorOfOpening(*Create(), Document()), 4198);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, AFailureSaysSoInWordsOwnWords)
{
    Soffice("exit 1\n");
    try {
        Create()->Open(Document().string(), GoOn);
        FAIL() << "opened";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Description, "Command failed");
    }
}

TEST_F(LibreOfficeWordTest, AConversionThatTakesTooLongIsEnded)
{
    Soffice("sleep 600 & echo $! >> $record/pids\nwait\n");
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(ErrorOfOpening(*Create(300ms), Document()), 4198);
    EXPECT_GE(Clock::now() - start, 300ms);
    EXPECT_LT(Clock::now() - start, 10s);
    EXPECT_NE(Record("pids"), "");
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, OnlyTheConvertersTimeCountsWhileTheProgramDoesOtherThings)
{
    // As when one of the program's message boxes waits for the user: the call that keeps the program responsive does
    // not return.
    constexpr std::chrono::milliseconds limit = 1500ms;
    Soffice("while [ ! -e $record/box ]; do sleep 0.01; done\n" + Gives("<text:p>abc</text:p>"));
    const auto word = Create(limit);
    bool stood = false;
    word->Open(Document().string(), [&] {
        if (!std::exchange(stood, true)) {
            Write(folder_ / "record" / "box", "is up");
            std::this_thread::sleep_for(2 * limit);
        }
        return true;
    });
    EXPECT_TRUE(stood);
    EXPECT_EQ(word->RangeEnd(), 4);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, AConverterThatHangsIsEndedThoughTheProgramDoesOtherThings)
{
    Soffice("sleep 600\n");
    int calls = 0;
    EXPECT_EQ(ErrorOfOpening(*Create(500ms), Document(),
                             [&] {
                                 ++calls;
                                 std::this_thread::sleep_for(150ms);
                                 return calls < 100;
                             }),
              4198);
    EXPECT_LT(calls, 100);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, AConversionThatIsBrokenOffIsEnded)
{
    Soffice("touch $TMPDIR/something ${profile#file://}/lock $out/half\necho ready > $record/ready\nsleep 600\n");
    bool asked = false;
    EXPECT_EQ(ErrorOfOpening(*Create(), Document(),
                             [&] {
                                 asked = Record("ready").empty();
                                 return asked;
                             }),
              4198);
    EXPECT_NE(Record("pids"), "");
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, OneThatWillNotEndIsEndedAllTheSame)
{
    Soffice("trap '' TERM INT HUP QUIT\necho ready > $record/ready\nwhile :; do sleep 0.05; done\n");
    EXPECT_EQ(ErrorOfOpening(*Create(), Document(), [this] { return Record("ready").empty(); }), 4198);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, ChildrenThatOutliveItAreEnded)
{
    Soffice("sleep 600 & echo $! >> $record/pids\n"
            "setsid sh -c 'echo $$ >> $0/pids; trap \"\" TERM; sleep 600 & echo $! >> $0/pids; wait' $record &\n"
            "while [ $(wc -l < $record/pids) -lt 4 ]; do sleep 0.01; done\n" +
            Gives("<text:p>abc</text:p>"));
    const auto word = Create();
    word->Open(Document().string(), GoOn);
    EXPECT_EQ(word->RangeEnd(), 4);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, AnErrorOfTheProgramsOwnPassesAndEndsTheConversion)
{
    Soffice("echo ready > $record/ready\nsleep 600\n");
    const auto word = Create();
    EXPECT_EQ(ErrorOfOpening(*word, Document(),
                             [this]() -> bool {
                                 if (!Record("ready").empty())
                                     throw RuntimeError(5, "Invalid procedure call or argument");
                                 return true;
                             }),
              5);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, TheSocketOfOneThatIsKilledIsRemoved)
{
    Soffice(FindsSocket() + "touch $socket\necho $socket > $record/socket\nsleep 600\n");
    for (int i = 0; i < 3; ++i) {
        fs::remove(folder_ / "record" / "socket");
        EXPECT_EQ(ErrorOfOpening(*Create(), Document(), [this] { return Record("socket").empty(); }), 4198);
        std::string socket = Record("socket");
        ASSERT_EQ(socket.rfind("/tmp/OSL_PIPE_", 0), 0u);
        socket.pop_back();
        EXPECT_FALSE(fs::exists(socket)) << socket;
    }
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, NothingIsLeftEvenWhenTheProgramItselfIsKilled)
{
    Soffice("sleep 600 & echo $! >> $record/pids\necho ready > $record/ready\nwait\n");
    // The program gets its own process group, which is killed as a whole, as a terminal does.
    const pid_t program = ::fork();
    if (program == 0) {
        ::setpgid(0, 0);
        ErrorOfOpening(*Create(), Document());
        ::_exit(0);
    }
    ASSERT_GT(program, 0);
    WaitForRecord("ready");
    EXPECT_EQ(Alive(), 2);
    ::kill(-program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    for (int i = 0; i < 1000 && (Alive() > 0 || !fs::is_empty(folder_ / "temp")); ++i)
        std::this_thread::sleep_for(10ms);
    ExpectNothingLeft();
}

TEST_F(LibreOfficeWordTest, TwoConvertAtTheSameTime)
{
    Soffice("cp $document $record/$(cut -c8-12 $document)\nsleep 0.2\n" + Gives("<text:p>abc</text:p>"));
    Write(folder_ / "other.doc", "{\\rtf1 Other}");
    const auto first = Create();
    const auto second = Create();
    bool nested = false;
    first->Open(Document().string(), [&] {
        if (!std::exchange(nested, true))
            second->Open((folder_ / "other.doc").string(), GoOn);
        return true;
    });
    EXPECT_EQ(first->RangeEnd(), 4);
    EXPECT_EQ(second->RangeEnd(), 4);
    EXPECT_EQ(Record("Hello"), "{\\rtf1 Hello}");
    EXPECT_EQ(Record("Other"), "{\\rtf1 Other}");
    ExpectNothingLeft();
}
