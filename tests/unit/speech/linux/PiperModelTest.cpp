// Networks divided into two parts, and, where ONNX Runtime is installed, heard in pieces.
#include "speech/engines/PiperModel.h"
#include "PiperNetwork.h"
#include "speech/engines/OnnxGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>

#include <stdlib.h>

namespace voxmate::speech
{
namespace
{

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::Pointwise;

constexpr const char* LastPart = "/dec/";
constexpr const char* Entry = "/dec/conv_pre/Conv";

std::string Model(const std::string& graph)
{
    return network::Whole(1, 7) + network::Field(7, graph) + network::Field(8, network::Whole(2, 13));
}

std::string Weight(const std::string& name)
{
    return network::Weights<float>(name, {1}, {1});
}

std::string Output(const std::string& name)
{
    return network::Field(12, network::Field(1, name));
}

std::string Given(const std::string& name)
{
    return network::Field(11, network::Field(1, name) + network::Field(2, network::Field(1, network::Whole(1, 1))));
}

TEST(OnnxGraphTest, ANetworkIsDividedBeforeItsLastPart)
{
    const std::string in = network::Value(11, "input", 1, 1);
    const std::string first = network::Node("Add", "/enc/Add", {"input", "w1"}, {"z"});
    const std::string told = network::Node("Ceil", "/enc/Ceil", {"input"}, {"steps"});
    const std::string style = network::Node("Mul", "/emb/Mul", {"input", "w1"}, {"g"});
    const std::string pre = network::Node("Conv", Entry, {"z", "w2"}, {"a"});
    const std::string post = network::Node("Add", "/dec/Add", {"a", "g"}, {"output"});
    const std::string model = Model(in + first + told + style + pre + post + network::Field(2, "name") + Weight("w1") +
                                    Weight("w2") + network::Value(12, "output", 1, 3));
    const std::optional<DividedNetwork> divided = DivideNetwork(model, LastPart, Entry, "steps");
    ASSERT_TRUE(divided);
    EXPECT_THAT(divided->between, ElementsAre("z", "g"));
    const std::string around = network::Whole(1, 7) + network::Field(8, network::Whole(2, 13));
    EXPECT_EQ(divided->first,
              around + network::Field(7, in + first + told + style + network::Field(2, "name") + Weight("w1") +
                                             Output("z") + Output("g") + Output("steps")));
    EXPECT_EQ(divided->second, around + network::Field(7, pre + post + network::Field(2, "name") + Weight("w2") +
                                                              Given("z") + Given("g") + Output("output")));
    // A value that is not asked for is not made.
    const std::optional<DividedNetwork> untold = DivideNetwork(model, LastPart, Entry, "");
    ASSERT_TRUE(untold);
    EXPECT_EQ(untold->first, around + network::Field(7, in + first + style + network::Field(2, "name") + Weight("w1") +
                                                            Output("z") + Output("g")));
}

TEST(OnnxGraphTest, ANetworkThatCannotBeDividedThereIsLeftWhole)
{
    const std::string in = network::Value(11, "input", 1, 1);
    const std::string out = network::Value(12, "output", 1, 3);
    const std::string first = network::Node("Add", "/enc/Add", {"input", "w1"}, {"z"});
    const auto divides = [&](const std::string& nodes) {
        return DivideNetwork(Model(in + nodes + Weight("w1") + out), LastPart, Entry, "").has_value();
    };
    EXPECT_TRUE(divides(first + network::Node("Conv", Entry, {"z", "w1"}, {"output"})));
    // Without an entry, or with one that works on a weight.
    EXPECT_FALSE(divides(first + network::Node("Conv", "/dec/Conv", {"z", "w1"}, {"output"})));
    EXPECT_FALSE(divides(first + network::Node("Conv", Entry, {"w1", "w1"}, {"output"})));
    EXPECT_FALSE(divides(first + network::Node("Conv", Entry, {}, {"output"})));
    // Where something behind the part takes an input of the whole.
    EXPECT_FALSE(divides(first + network::Node("Conv", Entry, {"z", "w1"}, {"a"}) +
                         network::Node("Add", "/Add", {"a", "input"}, {"output"})));
    // Where the first part needs what the last one makes.
    EXPECT_FALSE(divides(first + network::Node("Add", "/dec/Add", {"z", "w1"}, {"early"}) +
                         network::Node("Add", "/flow/Add", {"early", "w1"}, {"late"}) +
                         network::Node("Conv", Entry, {"late", "w1"}, {"output"})));
    // Where a node holds a graph of its own, which may take any value.
    EXPECT_FALSE(divides(
        first +
        network::Node("If", "/If", {"z"}, {"y"},
                      network::Field(5, network::Field(1, "then") + network::Field(6, network::Field(2, "inner")))) +
        network::Node("Conv", Entry, {"z", "w1"}, {"output"})));
}

TEST(OnnxGraphTest, AFileThatBreaksOffIsNotDivided)
{
    const std::string model = network::Voice(LastPart, true);
    ASSERT_TRUE(DivideNetwork(model, LastPart, Entry, "long"));
    std::size_t divided = 0;
    for (std::size_t size = 0; size < model.size(); ++size)
        divided += DivideNetwork(std::string_view(model).substr(0, size), LastPart, Entry, "long") ? 1 : 0;
    EXPECT_EQ(divided, 0U);
    // Bytes that were changed: nothing may be read beyond the end, whatever comes of it.
    for (std::size_t at = 0; at < model.size(); ++at) {
        std::string changed = model;
        changed[at] = '\xff';
        const auto parts = DivideNetwork(changed, LastPart, Entry, "long");
        EXPECT_TRUE(!parts || !parts->between.empty()) << at;
    }
}

/// Networks in files, spoken by the runtime.
class PiperModelTest : public ::testing::Test
{
protected:
    struct Heard {
        std::vector<float> samples;
        std::vector<std::size_t> pieces; ///< the lengths of the pieces
        std::vector<float> steps;
        std::size_t all = 0;
        bool done = false;
    };

    void SetUp() override
    {
        std::string form = (fs::temp_directory_path() / "piperXXXXXX").string();
        ASSERT_NE(mkdtemp(form.data()), nullptr);
        folder = form;
        // Under the name that is looked for, whatever the library's own is.
        if (const char* library = getenv("VOXMATE_TEST_RUNTIME"))
            fs::create_symlink(library, folder / "libonnxruntime.so.1");
        runtime = folder;
        if (!PiperModel::Available(runtime))
            GTEST_SKIP() << "ONNX Runtime is not installed.";
    }
    void TearDown() override
    {
        if (!folder.empty())
            fs::remove_all(folder);
    }

    std::unique_ptr<PiperModel> Load(const std::string& network)
    {
        const fs::path file = folder / "voice.onnx";
        std::ofstream(file, std::ios::binary) << network;
        return PiperModel::Load(file, runtime, why);
    }

    static Heard Speak(PiperModel& model, std::size_t numbers, std::int64_t speaker = 0, std::size_t mostPieces = 1000)
    {
        std::vector<std::int64_t> text(numbers);
        for (std::size_t i = 0; i < numbers; ++i)
            text[i] = static_cast<std::int64_t>(i * 5 % 7);
        Heard heard;
        heard.done = model.Speak(
            text, {0.5F, 1.5F, 0.5F}, speaker, [] { return true; },
            [&](const PiperModel::Piece& piece) {
                heard.samples.insert(heard.samples.end(), piece.samples.begin(), piece.samples.end());
                heard.pieces.push_back(piece.samples.size());
                heard.steps.assign(piece.steps.begin(), piece.steps.end());
                heard.all = piece.all;
                return heard.pieces.size() < mostPieces;
            });
        return heard;
    }

    fs::path folder;
    fs::path runtime;
    std::string why;
};

TEST_F(PiperModelTest, InPiecesItSoundsAsInOne)
{
    for (const bool speakers : {false, true}) {
        const auto whole = Load(network::Voice("/other/", speakers));
        ASSERT_TRUE(whole) << why;
        const auto divided = Load(network::Voice(LastPart, speakers));
        ASSERT_TRUE(divided) << why;
        for (const std::size_t numbers : {1U, 2U, 5U, 9U, 10U, 31U}) {
            const Heard one = Speak(*whole, numbers, 3);
            const Heard pieces = Speak(*divided, numbers, 3);
            ASSERT_TRUE(one.done && pieces.done) << numbers;
            EXPECT_THAT(pieces.samples, Pointwise(::testing::FloatNear(1e-6F), one.samples)) << numbers;
            EXPECT_EQ(one.samples.size(), numbers * network::Steps * network::SamplesPerStep);
            EXPECT_THAT(one.pieces, ElementsAre(one.samples.size()));
            EXPECT_EQ(pieces.all, one.samples.size());
            EXPECT_EQ(pieces.steps, one.steps);
        }
    }
}

TEST_F(PiperModelTest, TheFirstPieceIsShortAndNoneIsVeryShort)
{
    const auto model = Load(network::Voice(LastPart, false));
    ASSERT_TRUE(model) << why;
    const auto lengths = [&](std::size_t numbers) {
        std::vector<std::size_t> steps = Speak(*model, numbers).pieces;
        for (std::size_t& length : steps)
            length /= network::SamplesPerStep;
        return steps;
    };
    EXPECT_THAT(lengths(1), ElementsAre(50)); // a rest of 2 is not worth a run
    EXPECT_THAT(lengths(2), ElementsAre(48, 52));
    EXPECT_THAT(lengths(3), ElementsAre(48, 102));
    EXPECT_THAT(lengths(10), ElementsAre(48, 96, 192, 164));
}

TEST_F(PiperModelTest, EachNumberTellsItsLength)
{
    const auto model = Load(network::Voice(LastPart, false));
    ASSERT_TRUE(model) << why;
    EXPECT_THAT(Speak(*model, 4).steps, ElementsAre(0, 7.5F, 4.5F, 1.5F)); // 0, 5, 3 and 1, each one and a half times
}

TEST_F(PiperModelTest, TheSpeakerIsHeard)
{
    const auto model = Load(network::Voice(LastPart, true));
    ASSERT_TRUE(model) << why;
    EXPECT_EQ(Speak(*model, 3, 1).samples, Speak(*model, 3, 1).samples);
    EXPECT_NE(Speak(*model, 3, 1).samples, Speak(*model, 3, 2).samples);
}

TEST_F(PiperModelTest, ItEndsWithThePieceAfterWhichNoMoreIsTaken)
{
    const auto model = Load(network::Voice(LastPart, false));
    ASSERT_TRUE(model) << why;
    const Heard heard = Speak(*model, 10, 0, 2);
    EXPECT_FALSE(heard.done);
    EXPECT_EQ(heard.pieces.size(), 2U);
    EXPECT_EQ(Speak(*model, 10).pieces.size(), 4U);
}

TEST_F(PiperModelTest, WhatIsNoVoiceIsRefusedWithItsReason)
{
    const std::string file = (folder / "voice.onnx").string();
    EXPECT_FALSE(Load("This is no network."));
    EXPECT_TRUE(why.starts_with(file + ": it cannot be used: ")) << why;
    EXPECT_FALSE(Load(""));
    EXPECT_EQ(why, file + ": its size is not that of a voice.");
    std::string other = network::Voice(LastPart, false);
    for (std::size_t at = 0; (at = other.find("scales", at)) != std::string::npos; ++at)
        other.replace(at, 6, "Scales");
    EXPECT_FALSE(Load(other));
    EXPECT_EQ(why, file + ": it cannot be used: it is a network of another kind");
    // What the runtime says of it may have lines without end.
    other = network::Voice(LastPart, false);
    for (std::size_t place = 0; (place = other.find("Tanh", place)) != std::string::npos;)
        other.replace(place, 4, "Tan\n");
    EXPECT_FALSE(Load(other));
    EXPECT_TRUE(why.starts_with(file + ": it cannot be used: ")) << why;
    EXPECT_EQ(why.find('\n'), std::string::npos) << why;
    EXPECT_LT(why.size(), file.size() + 250) << why;
}

} // namespace
} // namespace voxmate::speech
