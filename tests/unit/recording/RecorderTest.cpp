// What is saved is what is heard: the samples that the sound output gets are compared with those of the file.
#include "recording/Recorder.h"

#include "agent/text/Markup.h"
#include "extras/Spoken.h"
#include "recording/Names.h"
#include "speech/player/VoicePlayer.h"
#include "speech/sound/Recording.h"
#include "speech/sound/SoundWriter.h"
#include "tests/fakes/FakeAudioOutput.h"
#include "tests/fakes/FakeDocuments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace voxmate::recording
{
namespace
{

namespace fs = std::filesystem;
using readers::Block;
using readers::BlockKind;
using readers::Refusal;
using Kind = News::Kind;
using Samples = std::vector<std::int16_t>;
using Names = std::set<std::string>;

/// The catalogue of all engines, which hold their libraries for the whole process.
speech::VoiceCatalog& Voices()
{
    static speech::VoiceCatalog voices = [] {
        std::vector<std::unique_ptr<speech::Engine>> engines;
        engines.push_back(speech::CreateEspeakEngine());
        engines.push_back(speech::CreateFliteEngine());
        return speech::VoiceCatalog(std::move(engines), "en_GB");
    }();
    return voices;
}

std::string VoiceOf(const std::string& name)
{
    speech::VoiceCatalog& voices = Voices();
    for (int i = 1; i <= voices.CountEngines(); ++i)
        if (voices.ModeName(i).starts_with(name))
            return voices.ModeID(i);
    ADD_FAILURE() << name << " is not installed";
    return "";
}

Samples ReadSound(const std::string& path)
{
    Samples all;
    if (const auto reader = speech::OpenRecording(path))
        for (auto samples = reader->Next(); !samples.empty(); samples = reader->Next())
            all.insert(all.end(), samples.begin(), samples.end());
    return all;
}

class RecorderTest : public ::testing::Test
{
protected:
    RecorderTest() : folder_(fs::temp_directory_path() / ("voxmate-recorder-" + std::to_string(getpid())))
    {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        job.title = "Book";
        job.kind = "wav";
        job.prefix = "\\Pit=100\\ \\Spd=170\\";
        job.path = Path("Book.wav");
        job.temporary = Path(".Book.part");
    }
    ~RecorderTest() override
    {
        fs::permissions(folder_, fs::perms::owner_all);
        fs::remove_all(folder_);
    }

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    Names In(const std::string& name = "") const
    {
        Names names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_ / name))
            names.insert(entry.path().filename().string());
        return names;
    }
    /// Does the job; the last news.
    News Do()
    {
        told.clear();
        Record(
            job, Voices(), [this](const std::string& path) { return documents.Read(path); },
            [this](const News& news) {
                told.push_back(news);
                return listens;
            });
        return told.empty() ? News{} : told.back();
    }
    void Document(const std::vector<readers::Frame>& frames)
    {
        job.document = "Book.odt";
        std::vector<readers::Frame>& told = documents.told[job.document];
        told = {readers::Kind::Odt};
        told.insert(told.end(), frames.begin(), frames.end());
    }
    static Block Paragraph(const std::string& text) { return {BlockKind::Paragraph, 0, "", text, ""}; }
    static Block Heading(const std::string& text, int level = 1) { return {BlockKind::Heading, level, "", text, ""}; }
    static Block Chapter(const std::string& title) { return {BlockKind::Chapter, 0, title, "", ""}; }

    /// What the sound output gets of a text with tags.
    Samples Heard(const std::string& markup)
    {
        fakes::FakeAudioOutput output;
        speech::VoicePlayer player(Voices(), output);
        const agent::ParsedText marked = agent::ParseMarkup(markup);
        bool ok = false;
        speech::Utterance utterance;
        utterance.modeId = job.voice;
        utterance.segments = marked.segments;
        utterance.shownWords = marked.words;
        speech::VoiceEvents events;
        events.Ended = [&ok](bool good) { ok = good; };
        player.Start(std::move(utterance), std::move(events));
        EXPECT_TRUE(fakes::Eventually([&output] {
            while (output.Play(4096) > 0)
                ;
            return output.openStreams == 0;
        }));
        EXPECT_TRUE(ok);
        return output.played;
    }

    Job job;
    fakes::FakeDocuments documents;
    std::vector<News> told;
    bool listens = true;

private:
    fs::path folder_;
};

/// How loud each frame of 20 ms is.
std::vector<double> Frames(const Samples& samples, int rate)
{
    const auto size = static_cast<std::size_t>(rate / 50);
    std::vector<double> levels;
    for (std::size_t at = 0; at + size <= samples.size(); at += size) {
        double energy = 0;
        for (std::size_t i = at; i < at + size; ++i)
            energy += static_cast<double>(samples[i]) * samples[i];
        levels.push_back(std::sqrt(energy / static_cast<double>(size)));
    }
    return levels;
}

/// How alike two sounds are, frame by frame: the correlation of their loudness, at most 1.
double Likeness(const Samples& one, const Samples& other, int rate)
{
    const std::vector<double> a = Frames(one, rate);
    const std::vector<double> b = Frames(other, rate);
    const std::size_t count = std::min(a.size(), b.size());
    double meanA = 0;
    double meanB = 0;
    for (std::size_t i = 0; i < count; ++i) {
        meanA += a[i] / static_cast<double>(count);
        meanB += b[i] / static_cast<double>(count);
    }
    double product = 0;
    double squareA = 0;
    double squareB = 0;
    for (std::size_t i = 0; i < count; ++i) {
        product += (a[i] - meanA) * (b[i] - meanB);
        squareA += (a[i] - meanA) * (a[i] - meanA);
        squareB += (b[i] - meanB) * (b[i] - meanB);
    }
    return squareA > 0 && squareB > 0 ? product / std::sqrt(squareA * squareB) : 0;
}

struct Tested {
    const char* name;
    int rate;
    double seconds; ///< how much longer or shorter a sentence may be
    bool exact; ///< it says a text with the same samples each time; the breath of Flite's statistical voices is random
};
/// A frame is 20 ms. eSpeak NG says the same sentence up to 25 ms longer or shorter each time, also where it is heard
/// twice.
constexpr Tested TestedVoices[] = {{"eSpeak English (Great Britain)", 22050, 0.030, false},
                                   {"Flite SLT", 16000, 0.020, false},
                                   {"Flite KAL", 8000, 0.020, true}};

/// The sounds are the same: as long, and as loud from moment to moment.
void ExpectSame(const Samples& heard, const Samples& saved, const Tested& voice, const std::string& what)
{
    EXPECT_NEAR(static_cast<double>(saved.size()), static_cast<double>(heard.size()), voice.rate * voice.seconds)
        << voice.name << " " << what;
    EXPECT_GT(Likeness(heard, saved, voice.rate), 0.95) << voice.name << " " << what;
}

TEST_F(RecorderTest, AFileHoldsWhatIsHeardToOneFrame)
{
    const std::string tags[] = {"\\Pit=50\\ \\Spd=156\\", "\\Pit=220\\ \\Spd=320\\", "\\Pit=100\\ \\Spd=60\\",
                                "\\Chr=\"WHISPER\"\\ \\Pit=100\\ \\Spd=170\\"};
    const std::vector<Block> blocks{Heading("The beginning"), Paragraph("He said \\nothing!")};
    for (const Tested& voice : TestedVoices) {
        job.voice = VoiceOf(voice.name);
        for (const std::string& prefix : tags)
            for (const Block& block : blocks) {
                job.prefix = prefix;
                Document({block, Refusal::None});
                Samples heard;
                for (const SpokenPart& part : PartsOf(block)) {
                    const Samples more = Heard(MarkupOf(part, prefix));
                    heard.insert(heard.end(), more.begin(), more.end());
                }
                ASSERT_EQ(Do().kind, Kind::Done) << voice.name << " " << prefix;
                const Samples saved = ReadSound(job.path);
                ExpectSame(heard, saved, voice, prefix + block.text);
                EXPECT_TRUE(!voice.exact || saved == heard) << voice.name << " " << prefix;
            }
    }
}

// A reader takes over within the sentence. It is eSpeak NG here, so the samples are not the same.
TEST_F(RecorderTest, WhatTheVoiceCannotReadIsSavedInTheVoiceOfItsReader)
{
    const Tested& kal = TestedVoices[2];
    job.voice = VoiceOf(kal.name);
    job.text = job.prefix + "Mixed with Привет it is.";
    const Samples heard = Heard(job.text);
    ASSERT_EQ(Do().kind, Kind::Done);
    ExpectSame(heard, ReadSound(job.path), kal, job.text);
    job.text = job.prefix + "Mixed with it is.";
    ASSERT_EQ(Do().kind, Kind::Done);
    EXPECT_GT(static_cast<double>(heard.size()), 1.2 * static_cast<double>(ReadSound(job.path).size()));
}

TEST_F(RecorderTest, WordsAreSaidByTheRules)
{
    job.voice = VoiceOf("Flite KAL");
    job.text = job.prefix + "My NAS.";
    job.rules = {{"NAS", "network storage"}};
    ASSERT_EQ(Do().kind, Kind::Done);
    const Samples said = ReadSound(job.path);
    EXPECT_TRUE(said == Heard(job.prefix + "My network storage."));
}

TEST_F(RecorderTest, ATextIsSavedAsItIsHeard)
{
    job.voice = VoiceOf("Flite KAL");
    job.text = job.prefix + "A first sentence.\r\nAnd one \\\\with a backslash.";
    const News news = Do();
    const Samples heard = Heard(job.text);
    EXPECT_EQ(news, (News{Kind::Done, 0, 0, heard.size() * 1000 / 8000, 1, Refusal::None}));
    EXPECT_TRUE(ReadSound(job.path) == heard);
    EXPECT_EQ(In(), Names{"Book.wav"});
}

TEST_F(RecorderTest, EveryKindOfFileHoldsTheSoundToOneFrame)
{
    job.text = job.prefix + "Every kind of file holds the same sound.";
    for (const Tested& voice : TestedVoices) {
        job.voice = VoiceOf(voice.name);
        const Samples heard = Heard(job.text);
        for (const std::string& kind : speech::WritableSounds()) {
            job.kind = kind;
            job.path = Path("Book." + kind);
            ASSERT_EQ(Do().kind, Kind::Done) << kind;
            ExpectSame(heard, ReadSound(job.path), voice, kind);
        }
    }
}

TEST_F(RecorderTest, ChaptersBecomeFilesOfTheirOwn)
{
    job.chapters = true;
    job.path = Path("Book");
    job.voice = VoiceOf("Flite KAL");
    Document({Paragraph("Before."), Chapter("I"), Heading("The way out"), Paragraph("One."), Heading("A part", 2),
              Paragraph("Two."), Chapter(""), Chapter("II"), Paragraph("Three."), Heading("Who/what?"),
              Paragraph("Four."), Refusal::None});
    const News news = Do();
    EXPECT_EQ(news.kind, Kind::Done);
    EXPECT_EQ(news.files, 4);
    EXPECT_EQ(In(), Names{"Book"});
    EXPECT_EQ(In("Book"), (Names{"01 Book.wav", "02 I.wav", "03 II.wav", "04 Who-what-.wav"}));
    EXPECT_TRUE(ReadSound(Path("Book/03 II.wav")) == Heard(MarkupOf(PartsOf(Paragraph("Three."))[0], job.prefix)));
}

TEST_F(RecorderTest, ADocumentThatCannotBeReadLeavesNothing)
{
    Document({Refusal::Protected});
    EXPECT_EQ(Do(), (News{Kind::Refused, 0, 0, 0, 0, Refusal::Protected}));
    Document({Block{BlockKind::Page, 0, "1", "", ""}, Refusal::None});
    EXPECT_EQ(Do(), (News{Kind::Refused, 0, 0, 0, 0, Refusal::NoText}));
    EXPECT_EQ(In(), Names{});
}

TEST_F(RecorderTest, WhatCouldBeReadOfADamagedDocumentIsSaved)
{
    Document({Paragraph("One."), Refusal::Damaged});
    const News news = Do();
    EXPECT_EQ(news.kind, Kind::Done);
    EXPECT_EQ(news.refusal, Refusal::Damaged);
    EXPECT_EQ(In(), Names{"Book.wav"});
}

TEST_F(RecorderTest, BlocksThatTheWordProcessorHasReadAreSpokenInPlaceOfTheFile)
{
    job.document = "Old.doc";
    job.blocks = {Paragraph("One."), Paragraph("Two.")};
    EXPECT_EQ(Do().kind, Kind::Done);
    EXPECT_EQ(documents.begun, std::vector<std::string>{});
    EXPECT_EQ(In(), Names{"Book.wav"});
}

TEST_F(RecorderTest, WhenNobodyListensAnyMoreNothingIsLeftAndAnOlderFileStays)
{
    std::ofstream(job.path) << "older";
    listens = false;
    for (int i = 0; i < 200; ++i)
        job.text += "This text takes longer than the time between two pieces of news. ";
    Do();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].kind, Kind::Progress);
    EXPECT_EQ(In(), Names{"Book.wav"});
    EXPECT_EQ(fs::file_size(job.path), 5U);
}

TEST_F(RecorderTest, AFileThatExistsIsReplacedWhenTheNewOneIsComplete)
{
    std::ofstream(job.path) << "older";
    job.text = "New.";
    EXPECT_EQ(Do().kind, Kind::Done);
    EXPECT_FALSE(ReadSound(job.path).empty());
}

TEST_F(RecorderTest, WhereNothingCanBeWrittenItSaysSo)
{
    job.text = "Nowhere.";
    job.path = Path("missing/Book.wav");
    job.temporary = Path("missing/.Book.part");
    EXPECT_EQ(Do().kind, Kind::NotWritten);
    job.path = Path("missing/Book");
    job.chapters = true;
    EXPECT_EQ(Do().kind, Kind::NotWritten);
    EXPECT_EQ(In(), Names{});
}

TEST_F(RecorderTest, TellsHowFarItIsOnceAllIsRead)
{
    for (int i = 0; i < 20; ++i)
        job.blocks.push_back(Paragraph("A sentence of a paragraph that is spoken. And another one behind it."));
    job.document = "Book.odt";
    Do();
    ASSERT_GE(told.size(), 2U);
    std::uint64_t before = 0;
    for (const News& news : told) {
        if (news.kind != Kind::Progress)
            continue;
        EXPECT_EQ(news.all, 20 * job.blocks[0].text.size());
        EXPECT_GE(news.spoken, before);
        EXPECT_LE(news.spoken, news.all);
        before = news.spoken;
    }
}

TEST(JobTest, AJobIsTheSameAfterItsWay)
{
    Job job;
    job.text = "Two\nlines and a \"quote\"";
    job.path = "/tmp/12\nfiles";
    job.chapters = true;
    job.shortens = true;
    job.byLanguage = true;
    job.rules = {{"a", "b"}, {"c = d", ""}};
    job.blocks = {{BlockKind::Heading, 1, "1.", "A title", "en"}, {BlockKind::Paragraph, 0, "", "\u00e4", ""}};
    const std::string bytes = EncodeJob(job);
    EXPECT_EQ(DecodeJob(bytes), job);
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5}, std::size_t{20}})
        EXPECT_EQ(DecodeJob(bytes.substr(0, size)), std::nullopt) << size;
}

TEST(NewsTest, NewsIsTheSameAfterItsWay)
{
    const News news{Kind::Done, 1, 2, 3, 4, Refusal::Damaged, true};
    EXPECT_EQ(EncodeNews(news), "1 1 2 3 4 4 1\n");
    EXPECT_EQ(DecodeNews("1 1 2 3 4 4 1"), news);
    for (const char* line : {"", "1", "1 2 3 4 5 0", "9 0 0 0 0 0 0", "1 0 0 0 0 99 0", "1 0 0 0 0 0 2",
                             "1 0 0 0 0 0 0 0", "a 0 0 0 0 0 0"})
        EXPECT_EQ(DecodeNews(line), std::nullopt) << line;
}

TEST(NamesTest, ATitleBecomesANameThatEverySystemTakes)
{
    EXPECT_EQ(FileTitle(" A \n title: \"one/two\"? "), "A title- -one-two--");
    EXPECT_EQ(FileTitle("..."), "");
    EXPECT_EQ(FileTitle(std::string(119, 'a') + "\u00e4\u00e4"), std::string(119, 'a'));
    EXPECT_EQ(ChapterName(1, "The Beginning.", "ogg"), "01 The Beginning.ogg");
    EXPECT_EQ(ChapterName(123, "", "mp3"), "123.mp3");
}

} // namespace
} // namespace voxmate::recording
